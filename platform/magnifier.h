// The filtered view of what lies beneath a window on the screen.
#pragma once

#include <string>

#include "engine/effect_matrix.h"
#include "platform/geometry.h"
#include "platform/window.h"

namespace tintora::platform {

// Starts the service. Returns false if the desktop does not have it.
bool startMagnifier();

// Stops the service. Call it once for each successful start.
void stopMagnifier();

// Creates the view as a child of a window, with bounds in its client area. Returns null on
// failure.
Window* createMagnifier(Window* parent, const std::string& title, const Rect& bounds);

// Sets the view to show everything at its own size.
void setUnmagnified(Window* magnifier);

// Sets the part of the screen to show.
void setMagnifierSource(Window* magnifier, const Rect& area);

// Sets the matrix through which the view shows it.
void setColourEffect(Window* magnifier, const EffectMatrix& matrix);

// Moves and sizes the view. The bounds are in the parent's client area.
void fitMagnifier(Window* magnifier, const Rect& bounds);

// Requests that the view is drawn again.
void invalidateMagnifier(Window* magnifier);

}  // namespace tintora::platform
