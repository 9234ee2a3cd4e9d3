// From Qt's events to the program's, and the loop they come in.
#pragma once

#include <xcb/xcb.h>

#include "platform/window.h"

namespace tintora::platform {

// Who takes the program's events; nobody while it is null.
void setEventHandler(EventHandler handler);

// Has what happens to a window handed to the handler from now on.
void translateEvents(Window* window);

// Tells the program that its session ends, if it has windows: at once, because the process may be
// ended as soon as this returns.
void tellSessionEnds();

// Returns the program's window with an identifier of the X server, or null.
Window* windowOf(xcb_window_t id);

// Hands an event to the program; true where the desktop's own handling must not follow.
bool handOver(const Event& event);

}  // namespace tintora::platform
