// What the tool says to people on standard error.
#pragma once

#include <string_view>

namespace tintora::cli {

// Writes one line, with the tool's name before it and without control characters.
void complain(std::string_view message);

}  // namespace tintora::cli
