// The magnifier control, which shows the filtered view.
#pragma once

#include <windows.h>

namespace tintora::platform {

// Returns the magnifier control, or null if it has not been created yet.
HWND viewWindow();

// Has the view read the screen again at its latest source rectangle.
void refreshView();

}  // namespace tintora::platform
