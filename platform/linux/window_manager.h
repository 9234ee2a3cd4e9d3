// What the program asks of the window manager beyond what Qt does, and what only it tells.
#pragma once

#include <xcb/xcb.h>

#include "platform/linux/handles.h"

namespace tintora::platform {

// Returns true if a window manager makes windows fill the screen when it is asked to.
bool managerMakesFullScreen();

// Returns true if a window manager tells the frame of a window that is not yet shown.
bool managerTellsFrames();

// Asks tiling window managers to leave the window at its own size and place. Call it again after
// Qt's flags of the window have changed.
void floatWindow(Window* window);

// Asks for a window's place and size without its frame, on the root.
void requestGeometry(const Window* window, const QRect& inner);

// Returns true if the window manager has maximised the window or fills the screen with it.
bool isFilled(const Window* window);

// Keeps a window above another one that fills the screen. With null, stops doing so.
void setWindowAbove(Window* window, const Window* parent);

// Passes mouse input through the window and every frame around it, or stops doing so.
void shapeInput(Window* window);

// From now on, keeps the input shape and the bounds of windows right when their frames change.
void followWindowManager();

// Waits until the server has done what Qt has asked of it.
void finishQtRequests();

}  // namespace tintora::platform
