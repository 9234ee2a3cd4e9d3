// What was drawn in the windows beneath the main one.
#pragma once

#include <QRect>

namespace tintora::platform {

// Reads what was drawn in the windows that reach into a part of the root, and adds it to the
// stack's changes.
void collectDamage(const QRect& part);

}  // namespace tintora::platform
