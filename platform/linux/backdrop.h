// The root window's background: what the screen shows where no window is.
#pragma once

#include <xcb/xcb.h>

#include <QRect>

namespace tintora::platform {

// Has the background read again before it is next painted.
void forgetBackdrop();

// Paints it into a pixmap that shows the root from a place on.
void paintBackdrop(xcb_pixmap_t target, const QPoint& origin, const QRect& part);

}  // namespace tintora::platform
