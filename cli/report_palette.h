// The part of a report about one palette: its colours, what is lost, and every pair.
#pragma once

#include <string>

#include "cli/check_command.h"

namespace tintora::cli {

std::string palettePart(const CheckedInput& checked, const std::string& heading,
                        const CheckLimits& limits);

}  // namespace tintora::cli
