// The one typeface of the program.
#pragma once

#include <QFont>

namespace tintora::platform {

// The font whose lines are so many pixels high, ascent and descent together.
QFont fontOfHeight(int height);

}  // namespace tintora::platform
