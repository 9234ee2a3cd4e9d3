#include "platform/linux/window_pixels.h"

#include <xcb/composite.h>

#include "platform/linux/compositing.h"
#include "platform/linux/x_server.h"

namespace tintora::platform {

Drawing drawingOf(const TopLevel& topLevel) {
  const bool sameDepth = topLevel.depth == xServer.screen->root_depth;
  if (isComposited() && (!sameDepth || topLevel.opacity != 0xFFFFFFFF)) return Drawing::Blend;
  return sameDepth ? Drawing::Copy : Drawing::Convert;
}

bool isOpaque(const TopLevel& topLevel) {
  return drawingOf(topLevel) != Drawing::Blend;
}

bool holdPixels(TopLevel& topLevel) {
  if (!topLevel.mapped || !topLevel.hasPixels) return false;
  const bool copied = drawingOf(topLevel) == Drawing::Copy;
  if (!copied && topLevel.format == nullptr) return false;
  if (topLevel.pixmap == XCB_NONE) {
    topLevel.pixmap = xcb_generate_id(x());
    xcb_composite_name_window_pixmap(x(), topLevel.window, topLevel.pixmap);
  }
  if (!copied && topLevel.picture == XCB_NONE) {
    topLevel.picture = xcb_generate_id(x());
    xcb_render_create_picture(x(), topLevel.picture, topLevel.pixmap, topLevel.format->format, 0,
                              nullptr);
  }
  return true;
}

void releasePixels(TopLevel& topLevel) {
  if (topLevel.picture != XCB_NONE) xcb_render_free_picture(x(), topLevel.picture);
  if (topLevel.pixmap != XCB_NONE) xcb_free_pixmap(x(), topLevel.pixmap);
  topLevel.picture = XCB_NONE;
  topLevel.pixmap = XCB_NONE;
}

}  // namespace tintora::platform
