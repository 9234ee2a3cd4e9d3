// The screen's top-level windows in their stacking order, and where the view must be made anew.
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
  bool coversAbove = false;        // windows above the main one are seen through the view too
  bool redirecting = false;        // the windows' pixels are kept apart from the screen's
  bool backgroundChanged = false;  // the root's
  QRegion changed;                 // where on the root the picture beneath may be different now
};

extern WindowStack windowStack;

// Returns the window's place in the stack; the stack's end if it is none of the root's children.
std::vector<TopLevel>::iterator findTopLevel(xcb_window_t window);

// Adds to what changed. A long list of small parts becomes one part around them.
void addChange(const QRegion& region);

// Adds what the window covers to what changed, if the view shows it. Hidden windows, and those
// above ours, do not affect the view.
void noteChange(const TopLevel& topLevel);

// Notes that the whole picture may be different now.
void changeAll();

// Returns true if the window is the main one or its frame, which is drawn straight to the screen
// and never read.
bool isOwn(const TopLevel& topLevel);

// Returns true if this program created the window. The server's names of what one program creates
// differ in their last bits only.
bool isOwnResource(xcb_window_t window);

// Returns true if the window is one that this program's connection for the view has created: a
// cover, or a window that exists for a moment only.
bool isOfView(xcb_window_t window);

// Returns true if the window is above the main one, and covered so that it is seen through the
// view.
bool isCovered(const TopLevel& topLevel);

// Returns true if the view looks at the window: it is beneath the main one, or covered. What a
// guard window hides is not looked at.
bool isLookedAt(const TopLevel& topLevel);

// Returns true if the main window is on the screen.
bool isOwnWindowShown();

// Returns the windows that the view looks at, from the lowest to the highest.
std::vector<TopLevel*> windowsLookedAt();

// Returns all windows that are on the screen, from the lowest to the highest.
std::vector<TopLevel*> windowsSeen();

// Returns the windows above the main one, from the lowest to the highest.
std::vector<TopLevel*> windowsAbove();

// Returns true if the window is one of this program's, or the frame of one.
bool isOfProgram(const TopLevel& topLevel);

// Returns true if the window is a menu or a tip of this program's.
bool isMenu(const TopLevel& topLevel);

}  // namespace tintora::platform
