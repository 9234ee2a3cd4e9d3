// The frame that a window manager puts around a window.
#pragma once

#include <QRect>

#include "platform/linux/handles.h"

namespace tintora::platform {

// Asks the window manager for the frame that it will put around a window which it has not seen yet.
// Returns without one where it does not say at once.
void askForFrame(Window* window);

// The window's bounds with the frame that it has, or in its form will have: a window manager takes
// its time.
QRect outerBounds(const Window* window);

// What is left for the window itself of such bounds.
QRect innerBounds(const Window* window, const QRect& outer);

// Keeps the frame in mind for the time after the window has had none.
void rememberFrame(Window* window);

}  // namespace tintora::platform
