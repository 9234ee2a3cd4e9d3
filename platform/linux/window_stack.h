// The screen's top-level windows in their stacking order, and where the view must be drawn again.
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
  xcb_window_t ownTopLevel = XCB_NONE;  // the main window or its frame
  QSize rootSize;
  bool coversAbove = false;        // the view shows windows above the main one too
  bool redirecting = false;        // the windows' pixels are kept apart from the screen's
  bool backgroundChanged = false;  // the root's
  QRegion changed;                 // where the picture beneath may have changed, on the root
};

extern WindowStack windowStack;

// Returns the window's position in the stack, or the stack's end if it is not a child of the root.
std::vector<TopLevel>::iterator findTopLevel(xcb_window_t window);

// Adds to the changes. Replaces a long list of small parts by one part around them.
void addChange(const QRegion& region);

// Adds the window's area to the changes if the view shows it. Hidden windows, and those above ours,
// do not affect the view.
void noteChange(const TopLevel& topLevel);

// Notes that the whole picture may have changed.
void changeAll();

// Returns true if the window is the main one or its frame. That is drawn straight to the screen and
// never read.
bool isOwn(const TopLevel& topLevel);

// Returns true if this program created the window. All identifiers of one program's resources
// differ only in their last bits.
bool isOwnResource(xcb_window_t window);

// Returns true if the window was created over the view's own connection: a cover, or a window that
// exists only for a moment.
bool isOfView(xcb_window_t window);

// Returns true if the window is above the main one and is covered, so that the user sees it through
// the view.
bool isCovered(const TopLevel& topLevel);

// Returns true if the view shows the window: it is beneath the main one, or covered. Windows that a
// guard window hides do not count.
bool isLookedAt(const TopLevel& topLevel);

// Returns true if the main window is on the screen.
bool isOwnWindowShown();

// Returns the windows that the view shows, from the lowest to the highest.
std::vector<TopLevel*> windowsLookedAt();

// Returns all windows that are on the screen, from the lowest to the highest.
std::vector<TopLevel*> windowsSeen();

// Returns the windows above the main one, from the lowest to the highest.
std::vector<TopLevel*> windowsAbove();

// Returns true if the window is one of this program's windows, or the frame of one.
bool isOfProgram(const TopLevel& topLevel);

// Returns true if the window is a menu or tip of this program.
bool isMenu(const TopLevel& topLevel);

}  // namespace tintora::platform
