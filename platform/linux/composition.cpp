#include "platform/linux/composition.h"

#include <xcb/render.h>

#include <QRegion>
#include <algorithm>
#include <cstdint>
#include <span>
#include <vector>

#include "platform/linux/backdrop.h"
#include "platform/linux/window_pixels.h"
#include "platform/linux/window_stack.h"
#include "platform/linux/x_server.h"

namespace tintora::platform {

namespace {

// The target as RENDER draws to it.
struct BlendTarget {
  xcb_pixmap_t pixmap = XCB_NONE;
  xcb_render_picture_t picture = XCB_NONE;
};
BlendTarget blendTarget;

// What is seen of a window.
struct Layer {
  const TopLevel* topLevel;
  QRegion part;
};

xcb_render_picture_t pictureOf(xcb_pixmap_t target) {
  if (blendTarget.pixmap == target) return blendTarget.picture;
  forgetTarget();
  blendTarget = {target, xcb_generate_id(x())};
  xcb_render_create_picture(x(), blendTarget.picture, target,
                            formatOf(xServer.screen->root_visual)->format, 0, nullptr);
  return blendTarget.picture;
}

void copy(const TopLevel& topLevel, xcb_pixmap_t target, xcb_gcontext_t copying,
          const QPoint& origin, const QRect& part) {
  const QPoint from = part.topLeft() - topLevel.bounds.topLeft();
  const QPoint to = part.topLeft() - origin;
  xcb_copy_area(x(), topLevel.pixmap, target, copying, i16(from.x()), i16(from.y()), i16(to.x()),
                i16(to.y()), u16(part.width()), u16(part.height()));
}

// As a compositing manager blends: the pixels are premultiplied, and an opacity thins them all.
void blend(const TopLevel& topLevel, xcb_pixmap_t target, const QPoint& origin, const QRect& part) {
  const QPoint from = part.topLeft() - topLevel.bounds.topLeft();
  const QPoint to = part.topLeft() - origin;
  xcb_render_picture_t mask = XCB_NONE;
  if (topLevel.opacity != 0xFFFFFFFF) {
    mask = xcb_generate_id(x());
    xcb_render_create_solid_fill(x(), mask,
                                 {0, 0, 0, static_cast<std::uint16_t>(topLevel.opacity >> 16)});
  }
  xcb_render_composite(x(), XCB_RENDER_PICT_OP_OVER, topLevel.picture, mask, pictureOf(target),
                       i16(from.x()), i16(from.y()), 0, 0, i16(to.x()), i16(to.y()),
                       u16(part.width()), u16(part.height()));
  if (mask != XCB_NONE) xcb_render_free_picture(x(), mask);
}

}  // namespace

void compose(xcb_pixmap_t target, xcb_gcontext_t copying, const QPoint& origin, const QRect& part) {
  // From the highest down, for as long as anything is seen of what is further below.
  std::vector<Layer> layers;
  QRegion seen(part);
  const std::span<TopLevel> windows = windowsBeneath();
  for (auto window = windows.rbegin(); window != windows.rend() && !seen.isEmpty(); ++window) {
    if (!window->mapped || !window->bounds.intersects(part)) continue;
    const QRegion of = seen & window->region();
    if (of.isEmpty() || !holdPixels(*window)) continue;
    layers.push_back({&*window, of});
    if (isOpaque(*window)) seen -= of;
  }
  for (const QRect& rect : seen) paintBackdrop(target, origin, rect);
  std::ranges::reverse(layers);
  for (const auto& [topLevel, of] : layers) {
    for (const QRect& rect : of) {
      if (isOpaque(*topLevel)) {
        copy(*topLevel, target, copying, origin, rect);
      } else {
        blend(*topLevel, target, origin, rect);
      }
    }
  }
}

void forgetTarget() {
  if (blendTarget.picture != XCB_NONE) xcb_render_free_picture(x(), blendTarget.picture);
  blendTarget = {};
}

}  // namespace tintora::platform
