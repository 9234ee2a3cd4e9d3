// The picture that the stand-in magnifier shows.
#pragma once

#include <windows.h>

#include "colour_effect.h"

namespace tintora::windows_test {

using expected::ColourEffect;
using expected::identityEffect;

// Draws into a magnifier's client area what lies beneath its top-level window in a part of the
// screen, at its own size, through a colour effect.
void showBeneath(HWND magnifier, HDC target, const RECT& source, const ColourEffect& effect);

}  // namespace tintora::windows_test
