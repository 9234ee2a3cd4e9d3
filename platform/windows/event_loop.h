// What Windows sends to the program's windows, in the seam's terms.
#pragma once

#include <windows.h>

#include "platform/window.h"

namespace tintora::platform {

// From now on, passes the events of known windows to the handler.
void setEventHandler(EventHandler handler);

// From now on, passes a window's events on: the program knows the window.
void translateEvents(HWND window, WindowKind kind);

LRESULT CALLBACK windowProcedure(HWND window, UINT message, WPARAM first, LPARAM second);

}  // namespace tintora::platform
