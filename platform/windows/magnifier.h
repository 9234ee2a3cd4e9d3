// The window of the filtered view.
#pragma once

#include <windows.h>

namespace tintora::platform {

// Returns the magnifier control; null before it is created.
HWND viewWindow();

// Has the view read the screen again, at the place it was last aimed at.
void refreshView();

}  // namespace tintora::platform
