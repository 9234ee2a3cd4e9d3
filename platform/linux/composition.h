// The picture of what lies beneath the main window, put together from the windows' own pixels.
#pragma once

#include <xcb/xcb.h>

#include <QRect>

namespace tintora::platform {

// Draws a part of the root into a pixmap, without the main window and the windows above it. The
// pixmap's top left corner shows the root's pixel at the origin.
void compose(xcb_pixmap_t target, xcb_gcontext_t copying, const QPoint& origin, const QRect& part);

// Draws this program's windows above the main one, but not its menus, into such a pixmap.
void composeProgramWindows(xcb_pixmap_t target, xcb_gcontext_t copying, const QPoint& origin,
                           const QRect& part);

// Releases what was kept for drawing to the last target.
void forgetTarget();

}  // namespace tintora::platform
