// What the screen shows where no window is.
#pragma once

#include <xcb/xcb.h>

#include <QRect>

namespace tintora::platform {

// Learns the background before the view covers it, and follows its changes from now on.
void startBackdrop();

// Releases everything.
void stopBackdrop();

// Handles an event of the server. Returns true if it was about the background.
bool followBackdrop(const xcb_generic_event_t& event);

// Follows what is drawn on the screen while the main window is shown and windows leave a part of
// the root free. Returns true if the server has reported what was drawn. Never waits for an answer.
bool watchBackdrop();

// Makes the next painting read the background again.
void forgetBackdrop();

// Paints a part of the root into a pixmap. The pixmap's top left corner shows the root's pixel at
// the origin.
void paintBackdrop(xcb_pixmap_t target, const QPoint& origin, const QRect& part);

}  // namespace tintora::platform
