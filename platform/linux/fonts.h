// The program's only typeface.
#pragma once

#include <QFont>

namespace tintora::platform {

// Returns the font for lines of this height in pixels, ascent and descent together, in the intended
// typeface. A substitute has letters of the same size, but its lines may be taller.
QFont fontOfHeight(int height);

// Returns the distance in pixels from the top of such a line to its baseline in the intended
// typeface. The letters of a taller substitute then stay within the line.
int baselineOfHeight(int height);

}  // namespace tintora::platform
