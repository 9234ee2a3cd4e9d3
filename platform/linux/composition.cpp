#include "platform/linux/composition.h"

#include <xcb/render.h>

#include <QRegion>
#include <cstdint>
#include <vector>

#include "platform/linux/backdrop.h"
#include "platform/linux/window_pixels.h"
#include "platform/linux/window_stack.h"
#include "platform/linux/x_server.h"

namespace tintora::platform {

namespace {

// The target as a RENDER picture.
struct BlendTarget {
  xcb_pixmap_t pixmap = XCB_NONE;
  xcb_render_picture_t picture = XCB_NONE;
};
BlendTarget blendTarget;

// The visible part of a window.
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

void render(const TopLevel& topLevel, std::uint8_t operation, xcb_render_picture_t mask,
            xcb_pixmap_t target, const QPoint& origin, const QRect& part) {
  const QPoint from = part.topLeft() - topLevel.bounds.topLeft();
  const QPoint to = part.topLeft() - origin;
  xcb_render_composite(x(), operation, topLevel.picture, mask, pictureOf(target), i16(from.x()),
                       i16(from.y()), 0, 0, i16(to.x()), i16(to.y()), u16(part.width()),
                       u16(part.height()));
}

// Blends as a compositing manager does: the pixels are premultiplied, and the window's opacity
// scales all channels.
void blend(const TopLevel& topLevel, xcb_pixmap_t target, const QPoint& origin, const QRect& part) {
  if (topLevel.opacity == 0xFFFFFFFF) {
    return render(topLevel, XCB_RENDER_PICT_OP_OVER, XCB_NONE, target, origin, part);
  }
  const xcb_render_picture_t mask = xcb_generate_id(x());
  xcb_render_create_solid_fill(x(), mask,
                               {0, 0, 0, static_cast<std::uint16_t>(topLevel.opacity >> 16)});
  render(topLevel, XCB_RENDER_PICT_OP_OVER, mask, target, origin, part);
  xcb_render_free_picture(x(), mask);
}

void draw(const TopLevel& topLevel, xcb_pixmap_t target, xcb_gcontext_t copying,
          const QPoint& origin, const QRect& part) {
  switch (drawingOf(topLevel)) {
    case Drawing::Copy:
      return copy(topLevel, target, copying, origin, part);
    case Drawing::Convert:
      return render(topLevel, XCB_RENDER_PICT_OP_SRC, XCB_NONE, target, origin, part);
    case Drawing::Blend:
      return blend(topLevel, target, origin, part);
  }
}

}  // namespace

void compose(xcb_pixmap_t target, xcb_gcontext_t copying, const QPoint& origin, const QRect& part) {
  // Goes from the highest window down until nothing further below is visible.
  std::vector<Layer> layers;
  QRegion seen(part);
  const std::vector<TopLevel*> windows = windowsLookedAt();
  for (auto place = windows.rbegin(); place != windows.rend(); ++place) {
    TopLevel* const topLevel = *place;
    if (seen.isEmpty()) break;
    if (!topLevel->bounds.intersects(part)) continue;
    const QRegion seenOfIt = seen & topLevel->region();
    if (seenOfIt.isEmpty() || !holdPixels(*topLevel)) continue;
    layers.push_back({topLevel, seenOfIt});
    if (isOpaque(*topLevel)) seen -= seenOfIt;
  }
  for (const QRect& rect : seen) paintBackdrop(target, origin, rect);
  for (auto layer = layers.rbegin(); layer != layers.rend(); ++layer) {
    const auto& [topLevel, seenOfIt] = *layer;
    for (const QRect& rect : seenOfIt) draw(*topLevel, target, copying, origin, rect);
  }
}

void composeProgramWindows(xcb_pixmap_t target, xcb_gcontext_t copying, const QPoint& origin,
                           const QRect& part) {
  for (TopLevel* const topLevel : windowsAbove()) {
    if (!isOfProgram(*topLevel) || isMenu(*topLevel) || !holdPixels(*topLevel)) continue;
    for (const QRect& rect : topLevel->region() & part) {
      draw(*topLevel, target, copying, origin, rect);
    }
  }
}

void forgetTarget() {
  if (blendTarget.picture != XCB_NONE) xcb_render_free_picture(x(), blendTarget.picture);
  blendTarget = {};
}

}  // namespace tintora::platform
