#include "platform/linux/window_pixels.h"

#include <xcb/composite.h>

#include "platform/linux/x_server.h"

namespace tintora::platform {

bool isOpaque(const TopLevel& topLevel) {
  return topLevel.depth == xServer.screen->root_depth && topLevel.opacity == 0xFFFFFFFF;
}

void releasePixels(TopLevel& topLevel) {
  if (topLevel.picture != XCB_NONE) xcb_render_free_picture(x(), topLevel.picture);
  if (topLevel.pixmap != XCB_NONE) xcb_free_pixmap(x(), topLevel.pixmap);
  topLevel.picture = XCB_NONE;
  topLevel.pixmap = XCB_NONE;
}

bool holdPixels(TopLevel& topLevel) {
  if (!topLevel.mapped || !topLevel.hasPixels) return false;
  if (topLevel.pixmap != XCB_NONE) return true;
  topLevel.pixmap = xcb_generate_id(x());
  xcb_composite_name_window_pixmap(x(), topLevel.window, topLevel.pixmap);
  if (isOpaque(topLevel)) return true;
  if (topLevel.format == nullptr) return false;
  topLevel.picture = xcb_generate_id(x());
  xcb_render_create_picture(x(), topLevel.picture, topLevel.pixmap, topLevel.format->format, 0,
                            nullptr);
  return true;
}

}  // namespace tintora::platform
