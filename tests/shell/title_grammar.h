// What the main window can be titled, whatever the user has done since the start.
#pragma once

#include <string>
#include <vector>

namespace tintora {

// Whether a title is one of the program's. Names of custom transforms must hold no digits.
bool canBeTitle(const std::string& title, const std::vector<std::string>& customNames);

}  // namespace tintora
