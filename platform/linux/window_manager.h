// Requests to the window manager beyond Qt's, and facts that only the window manager knows.
#pragma once

#include <xcb/xcb.h>

#include "platform/linux/handles.h"

namespace tintora::platform {

// Returns true if a window manager supports requests for full screen, and leaves the other windows
// shown meanwhile.
bool managerMakesFullScreen();

// Returns true if a window manager hides all windows but the one that is in full screen.
bool managerHidesOthers();

// Returns true if a window manager announces the frame of a window before it is shown.
bool managerTellsFrames();

// Requests that tiling window managers leave the window's size and place alone. Call it again after
// changing Qt's flags of the window.
void floatWindow(Window* window);

// Requests a window's place and size without its frame, on the root.
void requestGeometry(const Window* window, const QRect& inner);

// Returns true if the window manager has maximised the window or made it fill the screen.
bool isFilled(const Window* window);

// Returns true if a window manager manages the window. One that is busy notes late that the window
// was shown or hidden.
bool isManaged(const Window* window);

// Returns true if the server sends keys to a window, wherever the mouse is.
bool anyWindowHasFocus();

// Keeps a window above another one that fills the screen.
void setWindowAbove(Window* window, const Window* parent);

// Passes mouse input through the window and every frame around it, or stops doing so.
void shapeInput(Window* window);

// From now on, corrects the input shape and the bounds of windows when their frames change.
void followWindowManager();

// Waits until the server has handled all of Qt's requests.
void finishQtRequests();

}  // namespace tintora::platform
