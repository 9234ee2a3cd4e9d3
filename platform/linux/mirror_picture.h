// The mirror's picture: the source's last frame, fitted into the view and filtered, or a text.
#pragma once

#include <xcb/xcb.h>

#include <QImage>
#include <QSize>
#include <string_view>

#include "engine/pixel_filter.h"
#include "platform/window.h"

namespace tintora::platform {

// Starts showing the picture in a window of the X server, a child of the main window.
void startMirrorPicture(Window* parent, xcb_window_t window);

// Releases everything and destroys the window.
void stopMirrorPicture();

void setMirrorSize(const QSize& size);

// Shows the last frame through another filter.
void setMirrorFilter(const PixelFilter& filter);

// Shows the stream's newest frame. When the first frame comes or the frames' size changes, the main
// window takes that size as far as the screen allows, unless the user has chosen another.
void showNewestFrame();

// Shows a text instead of the picture, in the desktop's colours. Forgets all frames.
void showText(std::string_view text);

// Draws what has changed. Called once in each turn of the event loop.
void updateMirror();

// Draws what has changed, and returns once the server shows it.
void finishMirror();

// Returns the last frame, filtered, at its own size; null if there is no frame.
QImage filteredPicture();

}  // namespace tintora::platform
