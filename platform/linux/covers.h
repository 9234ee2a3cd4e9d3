// Covers: windows of the view's own above other programs' windows that stand above it, such as
// menus and tips, so that those are seen through the filter too.
#pragma once

#include <xcb/xcb.h>

#include <QPoint>
#include <QRect>
#include <optional>

#include "platform/linux/view_frames.h"

namespace tintora::platform {

// Covers all windows above the main one that are not this program's from now on, or none.
void coverWindowsAbove(bool cover);

// Returns the part of the root that the server asks to be drawn again on a cover, or nothing if the
// window is none.
std::optional<QRect> exposedOnCover(const xcb_expose_event_t& event);

// Shows a part of the view on the covers there. The origin is the view's left top corner on the
// root.
void showOnCovers(const ViewFrames& frames, const QPoint& origin, const QRect& part);

// Puts a cover above each window that needs one, with the view's pixels, and removes the others.
void placeCovers(const ViewFrames& frames, const QRect& view);

// Removes all covers until they are placed again.
void removeCovers();

}  // namespace tintora::platform
