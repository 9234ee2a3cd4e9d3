// The compositing part of the tests' window manager. Paints the screen from the windows' pixels.
#pragma once

#include <xcb/damage.h>
#include <xcb/render.h>

#include <functional>
#include <map>

#include "x_client.h"

namespace tintora::desktop_test {

// The part of a top-level window to paint.
struct PaintedPart {
  bool seen = true;
  Area part;  // relative to the window; without a size: all of it
  double opacity = 1;
};

class FakeCompositor {
 public:
  // Returns what to paint of a mapped top-level window. Called from the lowest to the highest.
  using Look = std::function<PaintedPart(xcb_window_t)>;

  FakeCompositor(const XClient& x, Look look);
  // Handles an event of the server.
  void take(const xcb_generic_event_t& event);
  // Paints the screen again if anything has changed.
  void paint();

 private:
  void paintWindow(xcb_window_t window);
  xcb_render_pictformat_t formatOf(xcb_visualid_t visual) const;
  xcb_render_picture_t pictureOf(xcb_drawable_t drawable, xcb_visualid_t visual) const;

  const XClient& x_;
  Look look_;
  xcb_window_t overlay_ = XCB_NONE;
  xcb_pixmap_t buffer_ = XCB_NONE;
  xcb_gcontext_t context_ = XCB_NONE;
  Area screen_;
  std::uint8_t damageEvent_ = 0;
  std::uint8_t shapeEvent_ = 0;
  std::map<xcb_visualid_t, xcb_render_pictformat_t> formats_;
  std::map<xcb_window_t, xcb_damage_damage_t> damages_;
  bool changed_ = true;
};

}  // namespace tintora::desktop_test
