// The places where windows were requested to be and where they are, including the frame that a
// window manager puts around them. All areas are on the root.
#pragma once

#include <QRect>

#include "platform/linux/handles.h"

namespace tintora::platform {

// Requests the frame that the window manager will put around a window that it does not know yet.
// Returns without one if there is no quick answer.
void askForFrame(Window* window);

// Notes outer bounds that the window is about to have.
void expectBounds(Window* window, const QRect& outer);

// Requests outer bounds.
void askForBounds(Window* window, const QRect& outer);

// Fits the main window and its view to the primary monitor after the monitor has changed.
void onMonitorsChanged();

// Gives the focus to the control window if the main one fills the screen and would cover it.
void keepControlAbove();

// Lets the mouse through the main window if that waited until the control window is on the screen.
void noteControlAppeared();

// Requests the same outer bounds again if the window manager has changed the frame since.
void allowForFrame(Window* window);

// Returns the window's bounds with its frame, or with the frame that its form will have.
QRect outerBounds(const Window* window);

// Returns the requested bounds while the request may still be on its way, else the outer bounds.
// For a while, events report older places, which must not be used.
QRect boundsAskedFor(const Window* window);

// Fixes the size of the control window, which cannot be resized.
void fixSize(Window* window, const QSize& size);

// Who caused a window's move.
enum class Mover { Program, WindowManager, User };
Mover moverOf(Window* window);

// Notes that the window has appeared. If it is in the requested place, it may be moved from there.
void noteAppearance(Window* window);

// Notes that the main window moves, so that windows that follow it do not count as moved by the
// user.
void noteMainMoved();

// Remembers the frame for when the window has had none for a while.
void rememberFrame(Window* window);

}  // namespace tintora::platform
