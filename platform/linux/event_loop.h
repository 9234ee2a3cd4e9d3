// Translates Qt's events to the program's, and runs the event loop.
#pragma once

#include <xcb/xcb.h>

#include "platform/window.h"

namespace tintora::platform {

// Sets the handler of the program's events. With null, nothing is handled.
void setEventHandler(EventHandler handler);

// From now on, passes the window's events to the handler.
void translateEvents(Window* window);

// Tells the program, if it has windows, that the session ends. Does so at once, because the process
// may be ended as soon as this returns.
void tellSessionEnds();

// Returns the program's window with this identifier of the X server, or null.
Window* windowOf(xcb_window_t id);

// Returns true while the left button is held that was pressed inside one of the program's windows,
// and so not on a frame.
bool isDraggedInside();

// Passes an event to the program. Returns true if the desktop must not handle it as well.
bool handOver(const Event& event);

}  // namespace tintora::platform
