// Handles the events of the program's windows.
#pragma once

#include "platform/window.h"

namespace tintora {

// Handles an event of any window. Returns true if the desktop must not handle it as well.
bool handleEvent(const platform::Event& event);

}  // namespace tintora
