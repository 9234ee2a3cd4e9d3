// Where things are on the screen. The program counts pixels from the left top corner of the primary
// monitor; X and Qt count them from the corner of the root window, which spans all monitors. This
// file alone converts between the two.
#pragma once

#include <QPoint>
#include <QRect>

#include "platform/geometry.h"

namespace tintora::platform {

// Reads the server's monitors, and calls a function after each later change of the primary one.
// Needs the program's connection to the X server and a QGuiApplication.
void followMonitors(void (*changed)());

// Returns the primary monitor's area on the root: the first monitor if none is marked as primary,
// the whole root if the server does not list monitors.
const QRect& primaryMonitor();

// Converts from the program's coordinates to the root's.
QPoint onRoot(const Point& place);
QRect onRoot(const Rect& area);

// Converts from the root's coordinates to the program's.
Point fromRoot(const QPoint& place);
Rect fromRoot(const QRect& area);

}  // namespace tintora::platform
