// The pixels of the windows on the screen, kept apart from it by the server.
#pragma once

#include <QRect>

#include "platform/linux/window_stack.h"

namespace tintora::platform {

// Asks for what was drawn in the windows beneath, as far as they reach into a part of the root, and
// adds it to what changed.
void collectDamage(const QRect& part);

// Lets them go.
void releasePixels(TopLevel& topLevel);

// Sees to it that a window's pixels can be read; false where it has none.
bool holdPixels(TopLevel& topLevel);

}  // namespace tintora::platform
