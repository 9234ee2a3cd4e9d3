#include "platform/linux/window_pixels.h"

#include <xcb/composite.h>
#include <xcb/damage.h>
#include <xcb/xfixes.h>

#include <cstddef>
#include <span>
#include <vector>

#include "platform/linux/x_server.h"

namespace tintora::platform {

namespace {

xcb_connection_t* x() {
  return xServer.connection;
}

xcb_xfixes_region_t emptyRegion() {
  const xcb_xfixes_region_t region = xcb_generate_id(x());
  xcb_xfixes_create_region(x(), region, 0, nullptr);
  return region;
}

}  // namespace

bool TopLevel::isOpaque() const {
  return depth == xServer.screen->root_depth && opacity == 0xFFFFFFFF;
}

void releasePixels(TopLevel& topLevel) {
  if (topLevel.picture != XCB_NONE) xcb_render_free_picture(x(), topLevel.picture);
  if (topLevel.pixmap != XCB_NONE) xcb_free_pixmap(x(), topLevel.pixmap);
  topLevel.picture = XCB_NONE;
  topLevel.pixmap = XCB_NONE;
}

void collectDamage(const QRect& part) {
  struct Question {
    const TopLevel* topLevel;
    xcb_xfixes_fetch_region_cookie_t cookie;
  };
  // One region serves all: the server answers in the order of the questions.
  static const xcb_xfixes_region_t fetched = emptyRegion();
  std::vector<Question> questions;
  for (TopLevel& topLevel : windowsBeneath()) {
    if (!topLevel.damaged || !topLevel.mapped || !topLevel.bounds.intersects(part)) continue;
    topLevel.damaged = false;
    xcb_damage_subtract(x(), topLevel.damage, XCB_NONE, fetched);
    questions.push_back({&topLevel, xcb_xfixes_fetch_region(x(), fetched)});
  }
  for (const auto& [topLevel, cookie] : questions) {
    const Received<xcb_xfixes_fetch_region_reply_t> reply(
        xcb_xfixes_fetch_region_reply(x(), cookie, nullptr));
    if (!reply || !topLevel->hasPixels) continue;
    const QPoint inside = topLevel->bounds.topLeft() + QPoint(topLevel->border, topLevel->border);
    const std::span rectangles(
        xcb_xfixes_fetch_region_rectangles(reply.get()),
        static_cast<std::size_t>(xcb_xfixes_fetch_region_rectangles_length(reply.get())));
    // Many little ones cost more than what lies between them.
    constexpr std::size_t most = 32;
    QRegion drawn;
    if (rectangles.size() > most) {
      const xcb_rectangle_t& r = reply->extents;
      drawn = QRect(r.x, r.y, r.width, r.height);
    } else {
      for (const xcb_rectangle_t& r : rectangles) drawn += QRect(r.x, r.y, r.width, r.height);
    }
    windowStack.changed += drawn.translated(inside) & topLevel->region();
  }
}

bool holdPixels(TopLevel& topLevel) {
  if (!topLevel.mapped || !topLevel.hasPixels) return false;
  if (topLevel.pixmap != XCB_NONE) return true;
  topLevel.pixmap = xcb_generate_id(x());
  xcb_composite_name_window_pixmap(x(), topLevel.window, topLevel.pixmap);
  if (topLevel.isOpaque()) return true;
  if (topLevel.format == nullptr) return false;
  topLevel.picture = xcb_generate_id(x());
  xcb_render_create_picture(x(), topLevel.picture, topLevel.pixmap, topLevel.format->format, 0,
                            nullptr);
  return true;
}

}  // namespace tintora::platform
