// Places on the screen. The program counts pixels from the top left corner of the primary monitor.
// X and Qt count them from the corner of the root window, which spans all monitors. Only this file
// converts between the two.
#pragma once

#include <QPoint>
#include <QRect>

#include "platform/geometry.h"

namespace tintora::platform {

// Reads the server's monitors, and calls a function whenever the primary one changes later. Needs
// the program's connection to the X server and a QGuiApplication.
void followMonitors(void (*changed)());

// Returns the primary monitor's area on the root. Returns the first monitor if none is primary, and
// the whole root if the server does not list monitors.
const QRect& primaryMonitor();

// Convert from the program's coordinates to the root's.
QPoint onRoot(const Point& place);
QRect onRoot(const Rect& area);

// Convert from the root's coordinates to the program's.
Point fromRoot(const QPoint& place);
Rect fromRoot(const QRect& area);

}  // namespace tintora::platform
