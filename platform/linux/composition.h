// The picture of what lies beneath the main window, put together from the windows' own pixels.
#pragma once

#include <xcb/xcb.h>

#include <QRect>

namespace tintora::platform {

// Draws a part of the root, without the main window and what is above it, into a pixmap that shows
// the root from a place on.
void compose(xcb_pixmap_t target, xcb_gcontext_t copying, const QPoint& origin, const QRect& part);

// Lets go what composing keeps for a target.
void forgetTarget();

}  // namespace tintora::platform
