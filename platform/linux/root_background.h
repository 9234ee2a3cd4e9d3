// The background that the X server paints on the root window.
#pragma once

#include <xcb/xcb.h>

#include <QRect>

namespace tintora::platform {

// Returns the pixmap that a background setter offers to other programs, or XCB_NONE. It belongs to
// the setter and is repeated over the root.
xcb_pixmap_t namedBackground();

// Returns true if the server paints anything on the root.
bool paintsBackground();

// Copies a part of the root's background to the same place in a pixmap.
void copyBackground(xcb_pixmap_t target, const QRect& part);

}  // namespace tintora::platform
