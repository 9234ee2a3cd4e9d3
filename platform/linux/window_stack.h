// The screen's top-level windows in their stacking order, as the server tells of them, and what
// changes in them.
#pragma once

#include <xcb/xcb.h>

#include <QRect>
#include <QRegion>
#include <span>
#include <vector>

#include "platform/linux/top_level.h"

namespace tintora::platform {

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

// Adds to what changed. A long list of small parts becomes one part around them.
void addChange(const QRegion& region);

// Lets all windows go.
void forgetWindows();

// Takes in one event of the server.
void followEvent(const xcb_generic_event_t& event);

// Whether the main window is on the screen.
bool isOwnWindowShown();

// The windows beneath the own one, from the lowest to the highest.
std::span<TopLevel> windowsBeneath();

}  // namespace tintora::platform
