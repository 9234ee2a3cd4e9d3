// The screen's top-level windows in their stacking order, and what changes in them.
#pragma once

#include <xcb/xcb.h>

#include <QRect>
#include <QRegion>
#include <vector>

#include "platform/linux/top_level.h"

namespace tintora::platform {

struct WindowStack {
  std::vector<TopLevel> windows;        // from the lowest to the highest
  xcb_window_t ownWindow = XCB_NONE;    // the main window
  xcb_window_t ownTopLevel = XCB_NONE;  // it, or the frame that it stands in
  QSize rootSize;
  bool redirecting = false;        // the windows' pixels are kept apart from the screen's
  bool backgroundChanged = false;  // the root's
  QRegion changed;                 // where on the root the picture beneath may be different now
};

extern WindowStack windowStack;

// Reads the stack and follows every change from now on. While the main window is shown, the server
// keeps the windows' pixels apart from the screen's, so that covered windows can be read too.
void watchWindows(xcb_window_t ownWindow);

// Stops following the windows.
void forgetWindows();

// Takes in one event of the server.
void followEvent(const xcb_generic_event_t& event);

// Adds to what changed. A long list of small parts becomes one part around them.
void addChange(const QRegion& region);

// Returns true if the main window is on the screen.
bool isOwnWindowShown();

// Returns the windows that the view looks at, from the lowest to the highest.
std::vector<TopLevel*> windowsBeneath();

// Returns all windows that are on the screen, from the lowest to the highest.
std::vector<TopLevel*> windowsSeen();

// Returns the windows above the main one, from the lowest to the highest.
std::vector<TopLevel*> windowsAbove();

// Returns true if the window is one of this program's, or the frame of one.
bool isOfProgram(const TopLevel& topLevel);

// Returns true if the window is a menu or a tip of this program's.
bool isMenu(const TopLevel& topLevel);

}  // namespace tintora::platform
