// One top-level window of the screen, as far as the view needs to know it.
#pragma once

#include <xcb/damage.h>
#include <xcb/render.h>
#include <xcb/xcb.h>

#include <QRect>
#include <QRegion>
#include <cstdint>

namespace tintora::platform {

struct TopLevel {
  xcb_window_t window = XCB_NONE;
  QRect bounds;    // on the root, its border included
  int border = 0;  // pixels
  bool mapped = false;
  bool hasPixels = false;  // known to have some; an input-only window has none
  std::uint8_t depth = 0;
  const struct VisualFormat* format = nullptr;
  std::uint32_t opacity = 0xFFFFFFFF;       // all of it
  QRegion outline;                          // its shape on the root; empty: all of the bounds
  xcb_pixmap_t pixmap = XCB_NONE;           // its pixels, until it is unmapped or has another size
  xcb_render_picture_t picture = XCB_NONE;  // the same for RENDER, where they are blended
  xcb_damage_damage_t damage = XCB_NONE;
  bool damaged = false;  // more was drawn than has been asked for

  QRegion region() const { return outline.isEmpty() ? QRegion(bounds) : outline; }
};

}  // namespace tintora::platform
