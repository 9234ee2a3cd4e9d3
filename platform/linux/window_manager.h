// What the program asks of the window manager beyond what Qt does, and what only it tells.
#pragma once

#include <xcb/xcb.h>

#include "platform/linux/handles.h"

namespace tintora::platform {

// Returns true if a window manager makes windows fill the screen when it is asked to.
bool managerMakesFullScreen();

// Returns true if a window manager tells the frame of a window that is not yet shown.
bool managerTellsFrames();

// Has tiling window managers leave the window at its own size and place. To be repeated after Qt's
// flags of the window have changed.
void floatWindow(Window* window);

// Asks for a window's place and size without its frame, on the root.
void requestGeometry(const Window* window, const QRect& inner);

// Returns true if the window manager has maximised the window or fills the screen with it.
bool isFilled(const Window* window);

// Keeps a window above another one that fills the screen, or with null no longer.
void setWindowAbove(Window* window, const Window* parent);

// Lets mouse input through the window and every frame around it, or stops that.
void shapeInput(Window* window);

// From now on, keeps the input shape and the bounds of windows right when their frames change.
void followWindowManager();

// Returns after the server has done what Qt has asked of it.
void finishQtRequests();

}  // namespace tintora::platform
