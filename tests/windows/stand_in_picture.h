// Draws the picture of the stand-in magnifier.
#pragma once

#include <windows.h>

#include "colour_effect.h"

namespace tintora::windows_test {

using expected::ColourEffect;
using expected::identityEffect;

// Draws a part of the screen beneath the magnifier's top-level window into its client area,
// unscaled, through a colour effect. A late picture is shown only when the next one is drawn or the
// desktop composes; until then the previous one stays.
void showBeneath(HWND magnifier, HDC target, const RECT& source, const ColourEffect& effect,
                 bool late);

// Shows the late picture, if there is one.
void showDrawn();

}  // namespace tintora::windows_test
