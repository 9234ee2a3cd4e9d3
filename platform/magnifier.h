// The filtered view of what lies beneath a window on the screen.
#pragma once

#include <string>

#include "engine/effect_matrix.h"
#include "platform/geometry.h"
#include "platform/window.h"

namespace tintora::platform {

// Makes the service ready; false where the desktop does not have it.
bool startMagnifier();

// Lets the service go; once, after it was started.
void stopMagnifier();

// Creates the view as a child of a window, with bounds in its client area; null where it cannot be
// had.
Window* createMagnifier(Window* parent, const std::string& title, const Rect& bounds);

// Shows everything at its own size.
void setUnmagnified(Window* magnifier);

// The part of the screen to show.
void setMagnifierSource(Window* magnifier, const Rect& source);

// The matrix to show it through.
void setColourEffect(Window* magnifier, const EffectMatrix& matrix);

// Bounds in the parent's client area.
void fitMagnifier(Window* magnifier, const Rect& bounds);

// Has the view drawn anew.
void invalidateMagnifier(Window* magnifier);

}  // namespace tintora::platform
