// The one typeface of the program.
#pragma once

#include <QFont>

namespace tintora::platform {

// Returns the font for lines of a height in pixels, ascent and descent together, as the font meant
// has them: a substitute has letters of the same size, and may have taller lines.
QFont fontOfHeight(int height);

// Returns how far below the top of such a line its letters stand, in pixels, as the font meant has
// it: the letters of a taller substitute stay within the line.
int baselineOfHeight(int height);

}  // namespace tintora::platform
