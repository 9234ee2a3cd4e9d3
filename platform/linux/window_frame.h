// The frame that a window manager puts around a window.
#pragma once

#include <QRect>

#include "platform/linux/handles.h"

namespace tintora::platform {

// Asks the window manager for the frame that it will put around a window which it has not seen yet.
// Returns without one where it does not say at once.
void askForFrame(Window* window);

// Where it did not, asks for the same outer bounds once more when the window has its frame.
void allowForFrame(Window* window);

// The window's bounds with the frame that it has, or in its form will have: a window manager takes
// its time.
QRect outerBounds(const Window* window);

// The same, or what was asked for and may still be on its way: for a while older places come back
// as events, and must not be taken for the window's.
QRect boundsAskedFor(const Window* window);

// What is left for the window itself of such bounds.
QRect withoutFrame(const Window* window, const QRect& outer);

// Asks for outer bounds.
void askForBounds(Window* window, const QRect& outer);

// For the control window, which has no sizing frame.
void fixSize(Window* window, const QSize& size);

// On whose behalf a window has come to where it is. A place that the program never asked for ends
// what it asked for before.
enum class Mover { Program, WindowManager, User };
Mover moverOf(Window* window);

// Keeps the frame in mind for the time after the window has had none.
void rememberFrame(Window* window);

}  // namespace tintora::platform
