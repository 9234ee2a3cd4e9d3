#include "platform/linux/window_damage.h"

#include <xcb/damage.h>
#include <xcb/xfixes.h>

#include <cstddef>
#include <span>
#include <vector>

#include "platform/linux/window_stack.h"
#include "platform/linux/x_server.h"

namespace tintora::platform {

namespace {

xcb_xfixes_region_t emptyRegion() {
  const xcb_xfixes_region_t region = xcb_generate_id(x());
  xcb_xfixes_create_region(x(), region, 0, nullptr);
  return region;
}

}  // namespace

void collectDamage(const QRect& part) {
  struct Question {
    const TopLevel* topLevel;
    xcb_xfixes_fetch_region_cookie_t cookie;
  };
  // One region is enough, because the server answers requests in order.
  static const xcb_xfixes_region_t fetched = emptyRegion();
  std::vector<Question> questions;
  for (TopLevel* const topLevel : windowsLookedAt()) {
    if (!topLevel->damaged || !topLevel->bounds.intersects(part)) continue;
    topLevel->damaged = false;
    xcb_damage_subtract(x(), topLevel->damage, XCB_NONE, fetched);
    questions.push_back({topLevel, xcb_xfixes_fetch_region(x(), fetched)});
  }
  for (const auto& [topLevel, cookie] : questions) {
    const Received<xcb_xfixes_fetch_region_reply_t> reply(
        xcb_xfixes_fetch_region_reply(x(), cookie, nullptr));
    if (!reply || !topLevel->hasPixels) continue;
    const QPoint inside = topLevel->bounds.topLeft() + QPoint(topLevel->border, topLevel->border);
    const std::span rectangles(
        xcb_xfixes_fetch_region_rectangles(reply.get()),
        static_cast<std::size_t>(xcb_xfixes_fetch_region_rectangles_length(reply.get())));
    // Many small rectangles cost more than one around them.
    constexpr std::size_t mostRectangles = 32;
    QRegion drawn;
    if (rectangles.size() > mostRectangles) {
      const xcb_rectangle_t& r = reply->extents;
      drawn = QRect(r.x, r.y, r.width, r.height);
    } else {
      for (const xcb_rectangle_t& r : rectangles) drawn += QRect(r.x, r.y, r.width, r.height);
    }
    addChange(drawn.translated(inside) & topLevel->region());
  }
}

}  // namespace tintora::platform
