// Pixels that the server sends over the connection.
#pragma once

#include <xcb/xcb.h>

#include <QRect>

#include "platform/linux/x_server.h"

namespace tintora::platform {

// Requests a part of a pixmap of the screen's depth, four bytes per pixel. Takes no windows: copy
// them into a pixmap first. Before the server reads a window, it paints what is still missing from
// the windows inside. If it reports that as damage, the report lands in the middle of the answer,
// and no later answer on this connection is understood.
xcb_get_image_cookie_t requestImage(xcb_pixmap_t pixmap, const QRect& part);

// Waits for the answer. Returns null if the server refused, or sent less than a picture of this
// size.
Received<xcb_get_image_reply_t> receiveImage(xcb_get_image_cookie_t request, const QSize& size);

}  // namespace tintora::platform
