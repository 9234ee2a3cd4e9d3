// Translates window messages into the platform layer's events.
#pragma once

#include <windows.h>

#include "platform/window.h"

namespace tintora::platform {

// From now on, passes the events of known windows to the handler.
void setEventHandler(EventHandler handler);

// From now on, passes this window's events to the handler.
void translateEvents(HWND window, WindowKind kind);

LRESULT CALLBACK windowProcedure(HWND window, UINT message, WPARAM first, LPARAM second);

}  // namespace tintora::platform
