// The background that the X server paints on the root window.
#pragma once

#include <xcb/xcb.h>

namespace tintora::platform {

// Returns the pixmap that a background setter left for others to read, or XCB_NONE. It belongs to
// the setter, and is repeated over the root.
xcb_pixmap_t namedBackground();

// Returns a copy of what the server paints on the root, the size of the root and the caller's own;
// XCB_NONE if it paints nothing there.
xcb_pixmap_t copyOfPaintedBackground();

}  // namespace tintora::platform
