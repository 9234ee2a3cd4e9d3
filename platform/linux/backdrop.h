// What the screen shows where no window is.
#pragma once

#include <xcb/xcb.h>

#include <QRect>

namespace tintora::platform {

// Learns what it can before the view covers it, and follows changes from now on.
void startBackdrop();

// Releases everything.
void stopBackdrop();

// Takes in an event of the server; returns true if it is the backdrop's.
bool followBackdrop(const xcb_generic_event_t& event);

// Follows what is drawn on the screen while the main window is shown. Returns true if the server
// has answered what was drawn. Never waits for an answer.
bool watchBackdrop();

// Has the background read again before it is next painted.
void forgetBackdrop();

// Paints a part of the root into a pixmap whose left top corner shows the root's pixel at the
// origin.
void paintBackdrop(xcb_pixmap_t target, const QPoint& origin, const QRect& part);

}  // namespace tintora::platform
