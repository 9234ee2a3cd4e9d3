// What the view needs to know about one top-level window of the screen.
#pragma once

#include <xcb/damage.h>
#include <xcb/render.h>
#include <xcb/xcb.h>

#include <QMargins>
#include <QRect>
#include <QRegion>
#include <chrono>
#include <cstdint>
#include <string_view>

namespace tintora::platform {

// The name by which other instances of the program recognise covers, so they do not cover them.
constexpr std::string_view coverName = "Tintora cover";

struct TopLevel {
  xcb_window_t window = XCB_NONE;
  QRect bounds;    // on the root, including its border
  int border = 0;  // pixels
  bool mapped = false;
  bool hasPixels = false;   // false for input-only windows, or while not known
  bool unmanaged = false;   // a menu, a tip, or a window manager's own window
  bool isCover = false;     // a cover made by an instance of the program
  bool keepsAbove = false;  // was raised above its cover too often
  int timesRaised = 0;      // above its cover, since firstRaised
  std::chrono::steady_clock::time_point firstRaised;
  bool isGuard = false;  // what lies beneath it is not visible, although mapped
  std::uint8_t depth = 0;
  const struct VisualFormat* format = nullptr;
  std::uint32_t opacity = 0xFFFFFFFF;  // opaque
  QRegion outline;                     // its shape on the root; empty: all of the bounds
  QMargins unseen;                     // what is not painted at the frame's edges
  xcb_window_t client = XCB_NONE;      // another program's window inside it, followed for changes
  xcb_window_t programWindow = XCB_NONE;    // this program's window inside the frame
  xcb_pixmap_t pixmap = XCB_NONE;           // its pixels, until it is unmapped or resized
  xcb_render_picture_t picture = XCB_NONE;  // the same for RENDER, unless plain copying is enough
  bool redirected = false;                  // its pixels are kept apart from the screen's
  xcb_damage_damage_t damage = XCB_NONE;
  bool damaged = false;  // there is drawing that has not been collected

  // Returns the part of the root that the window shows if nothing covers it.
  QRegion region() const {
    const QRect seen = bounds.marginsRemoved(unseen);
    return outline.isEmpty() ? QRegion(seen) : outline & seen;
  }
};

}  // namespace tintora::platform
