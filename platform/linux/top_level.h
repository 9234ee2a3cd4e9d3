// One top-level window of the screen, as far as the view needs to know it.
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

// By this name, programs like this one know each other's covers, and do not cover them.
constexpr std::string_view coverName = "Tintora cover";

struct TopLevel {
  xcb_window_t window = XCB_NONE;
  QRect bounds;    // on the root, its border included
  int border = 0;  // pixels
  bool mapped = false;
  bool hasPixels = false;   // known to have some; an input-only window has none
  bool unmanaged = false;   // a menu, a tip, or a window manager's own window
  bool isCover = false;     // covers a window above the view of a program like this one
  bool keepsAbove = false;  // it was raised above its cover too often
  int timesRaised = 0;      // above its cover, since
  std::chrono::steady_clock::time_point firstRaised;
  bool isGuard = false;  // the window manager keeps what is not to be seen beneath it
  std::uint8_t depth = 0;
  const struct VisualFormat* format = nullptr;
  std::uint32_t opacity = 0xFFFFFFFF;  // all of it
  QRegion outline;                     // its shape on the root; empty: all of the bounds
  QMargins unseen;                     // what is not painted at the edges of a frame
  xcb_window_t client = XCB_NONE;      // another program's window in it whose changes are followed
  xcb_window_t programWindow = XCB_NONE;    // this program's window in it
  xcb_pixmap_t pixmap = XCB_NONE;           // its pixels, until it is unmapped or has another size
  xcb_render_picture_t picture = XCB_NONE;  // the same for RENDER, unless they are plainly copied
  bool redirected = false;                  // its pixels are kept apart from the screen's
  xcb_damage_damage_t damage = XCB_NONE;
  bool damaged = false;  // more was drawn than has been asked for

  // What is seen of it, as far as nothing covers it.
  QRegion region() const {
    const QRect seen = bounds.marginsRemoved(unseen);
    return outline.isEmpty() ? QRegion(seen) : outline & seen;
  }
};

}  // namespace tintora::platform
