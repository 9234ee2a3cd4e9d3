// The screen's top-level windows in their stacking order, as the server tells of them, and what
// changes in them.
#pragma once

#include <xcb/damage.h>
#include <xcb/render.h>
#include <xcb/xcb.h>

#include <QRect>
#include <QRegion>
#include <cstdint>
#include <span>
#include <vector>

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
  bool isOpaque() const;
};

struct WindowStack {
  std::vector<TopLevel> windows;        // from the lowest to the highest
  xcb_window_t ownWindow = XCB_NONE;    // the main window
  xcb_window_t ownTopLevel = XCB_NONE;  // it, or the frame that it stands in
  QSize rootSize;
  bool rootPixmapChanged = false;
  QRegion changed;  // where on the root the picture beneath may be another now
};

extern WindowStack windowStack;

// Reads the stack as it stands, and has the server tell of every change from now on. The windows'
// pixels are kept apart from the screen's, so that what is covered can be seen.
void watchWindows(xcb_window_t ownWindow);

// Lets all windows go.
void forgetWindows();

// Takes in one event of the server.
void followEvent(const xcb_generic_event_t& event);

// Whether the main window is on the screen.
bool isOwnWindowShown();

// The windows beneath the own one, from the lowest to the highest.
std::span<TopLevel> windowsBeneath();

}  // namespace tintora::platform
