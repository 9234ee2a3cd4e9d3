// Completions of the tool's command line for shells.
#pragma once

#include <string>

#include "cli/documents/declared_tool.h"

namespace tintora::cli {

std::string bashCompletion(const DeclaredTool& tool);
std::string zshCompletion(const DeclaredTool& tool);
std::string fishCompletion(const DeclaredTool& tool);

}  // namespace tintora::cli
