// Covers: windows of the view's own above other programs' windows that are above it, such as menus
// and tips, so that the user sees those through the filter too.
#pragma once

#include <xcb/xcb.h>

#include <QPoint>
#include <QRect>
#include <optional>

#include "platform/linux/view_frames.h"

namespace tintora::platform {

// From now on, covers all other programs' windows above the main one, or none.
void coverWindowsAbove(bool cover);

// Returns the part of the root to redraw on a cover, or nothing if the window is not a cover.
std::optional<QRect> exposedOnCover(const xcb_expose_event_t& event);

// Shows a part of the view on the covers in that place. The origin is the view's top left corner on
// the root.
void showOnCovers(const ViewFrames& frames, const QPoint& origin, const QRect& part);

// Puts a cover above each window that needs one, with the view's pixels, and removes the others.
void placeCovers(const ViewFrames& frames, const QRect& view);

// Removes all covers until they are placed again.
void removeCovers();

}  // namespace tintora::platform
