// What the program does when something happens to one of its windows.
#pragma once

#include "platform/window.h"

namespace tintora {

// Handles an event of any of the windows; true where the desktop's own handling must not follow.
bool handleEvent(const platform::Event& event);

}  // namespace tintora
