// The titles that the main window can have, whatever the user does.
#pragma once

#include <string>
#include <vector>

namespace tintora {

// Returns true for the program's titles. Names of custom transforms must hold no digits.
bool canBeTitle(const std::string& title, const std::vector<std::string>& customNames);

}  // namespace tintora
