// The source of the picture in the magnifier's window: the lens composes what lies beneath the main
// window; the mirror shows a window or screen that the user has picked.
#pragma once

#include <xcb/xcb.h>

#include <QImage>
#include <QPoint>
#include <QSize>

#include "engine/pixel_filter.h"
#include "platform/window.h"

namespace tintora::platform {

struct ViewSource {
  // Starts showing a picture in a window of the X server, a child of the main window.
  void (*start)(Window* parent, xcb_window_t window);
  // Stops showing the picture and destroys the window.
  void (*stop)();
  void (*setSize)(const QSize& size);
  // Sets the place on the root that the view's top left corner shows.
  void (*setOrigin)(const QPoint& origin);
  void (*setFilter)(const PixelFilter& filter);
  // Brings the view up to date. Called once in each turn of the event loop.
  void (*update)();
  // Brings the view up to date, and returns once the server shows it.
  void (*finish)();
  // Returns a picture of the view for a client area of this size, or null if there is none.
  QImage (*copy)(const QSize& clientArea);
};

extern const ViewSource lens;
extern const ViewSource mirror;

// The source in use.
extern const ViewSource* viewSource;

}  // namespace tintora::platform
