// Where windows were asked to be and where they are, with the frame that a window manager puts
// around them. All areas are on the root.
#pragma once

#include <QRect>

#include "platform/linux/handles.h"

namespace tintora::platform {

// Asks the window manager for the frame that it will put around a window which it has not seen yet.
// Returns without one if it does not answer at once.
void askForFrame(Window* window);

// Notes outer bounds that the window is on its way to.
void expectBounds(Window* window, const QRect& outer);

// Asks for outer bounds.
void askForBounds(Window* window, const QRect& outer);

// Fits the main window and its view to the primary monitor after that has changed.
void onMonitorsChanged();

// Asks once more if the window manager has given the window another frame since.
void allowForFrame(Window* window);

// Returns the window's bounds with the frame that it has, or will have in its form.
QRect outerBounds(const Window* window);

// Returns the bounds that were asked for while the request may still be on its way, else the outer
// bounds. For a while, events tell of older places, which must not be taken for the window's.
QRect boundsAskedFor(const Window* window);

// Fixes the size of the control window, which has no sizing frame.
void fixSize(Window* window, const QSize& size);

// On whose behalf a window has come to where it is.
enum class Mover { Program, WindowManager, User };
Mover moverOf(Window* window);

// Notes that the window is seen: if it stands where it was asked to, it may be moved from there.
void noteAppearance(Window* window);

// Notes that the main window moves: what follows it is not moved by the user.
void noteMainMoved();

// Remembers the frame for the time after the window has had none.
void rememberFrame(Window* window);

}  // namespace tintora::platform
