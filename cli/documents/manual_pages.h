// Manual pages for man(7).
#pragma once

#include <string>
#include <vector>

#include "cli/documents/declared_tool.h"

namespace tintora::cli {

struct ManualPage {
  std::string name;  // "tintora-cli-filter"
  std::string contents;
};

// Returns the page of the tool and one for each command, in section 1. Throws std::runtime_error
// for a command without a text and for an example that the parser refuses.
std::vector<ManualPage> manualPages(const DeclaredTool& tool);

}  // namespace tintora::cli
