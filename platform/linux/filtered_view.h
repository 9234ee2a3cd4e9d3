// The picture in the magnifier's window: what it shows, when it is made anew, and how much of it.
#pragma once

#include <xcb/xcb.h>

#include <QImage>
#include <QPoint>
#include <QSize>

#include "engine/pixel_filter.h"

namespace tintora::platform {

// Begins to show a view in a window of the X server's that belongs to the view from now on.
void startView(xcb_window_t window);

// Ends it; the window is gone then.
void stopView();

// Its size, and the place on the root that its left top corner shows.
void setViewSize(const QSize& size);
void setViewOrigin(const QPoint& origin);

// What it is seen through. Nothing is read again for that.
void setViewFilter(const PixelFilter& filter);

// Takes in what the server tells, and brings those parts of the picture up to date that changed:
// once for each turn of the event loop.
void updateView();

// Brings the view up to date, and returns when the server shows it.
void finishView();

// Returns a picture of the view with this program's windows above it, but not its menus: nothing
// that is read off the screen, which may be late. It is null if there is no view.
QImage pictureOfView();

}  // namespace tintora::platform
