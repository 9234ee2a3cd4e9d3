// The tests' window managers, and how to start each without a user's settings.
#pragma once

#include <string>
#include <vector>

#include "x_display.h"

namespace tintora::desktop_test {

struct ManagerCommand {
  std::vector<std::string> command;
  bool composites = false;  // it is the compositing manager too
};

// Writes a manager's settings into a folder, and returns the command that starts it with them.
ManagerCommand commandOf(Manager manager, const std::string& folder);

}  // namespace tintora::desktop_test
