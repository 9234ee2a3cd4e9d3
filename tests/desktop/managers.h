// The window managers of the tests, and how each is started without settings of the user's.
#pragma once

#include <string>
#include <vector>

#include "x_display.h"

namespace tintora::desktop_test {

struct ManagerCommand {
  std::vector<std::string> command;
  bool composites = false;  // is the compositing manager too
};

// Writes a manager's settings into a folder, and says how it is started with them.
ManagerCommand commandOf(Manager manager, const std::string& folder);

}  // namespace tintora::desktop_test
