// The picture that the stand-in magnifier shows.
#pragma once

#include <windows.h>

#include "colour_effect.h"

namespace tintora::windows_test {

using expected::ColourEffect;
using expected::identityEffect;

// Draws into a magnifier's client area what lies beneath its top-level window in a part of the
// screen, at its own size, through a colour effect. A late picture is kept until the next one is
// drawn or the desktop is asked to compose; the one before is shown meanwhile.
void showBeneath(HWND magnifier, HDC target, const RECT& source, const ColourEffect& effect,
                 bool late);

// Shows the picture that is kept, if there is one.
void showDrawn();

}  // namespace tintora::windows_test
