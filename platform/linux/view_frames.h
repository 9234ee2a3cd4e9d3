// The view's picture twice: as it was composed, and filtered. It is shared with the X server if it
// can be.
#pragma once

#include <xcb/xcb.h>

#include <QRect>
#include <QRegion>
#include <QSize>
#include <cstddef>
#include <vector>

#include "platform/linux/shared_pixels.h"
#include "platform/linux/x_server.h"

namespace tintora::platform {

struct ViewFrames {
  QSize size;                         // of both, in pixels
  xcb_pixmap_t composed = XCB_NONE;   // for drawing requests
  xcb_gcontext_t context = XCB_NONE;  // for copies that make no events
  PixelSharing sharing = PixelSharing::None;
  SharedPixels unfiltered;
  SharedPixels filtered;
  SharedPixels packed;         // narrow parts as the server sends them, if pixmaps are not shared
  std::size_t packedSize = 0;  // bytes of it that are spoken for

  std::ptrdiff_t stride() const { return std::ptrdiff_t{4} * size.width(); }
  std::ptrdiff_t offset(const QPoint& place) const {
    return place.y() * stride() + std::ptrdiff_t{4} * place.x();
  }
};

// Makes room for a size. The frames stay as they are unless they have too little room or far too
// much.
void makeRoom(ViewFrames& frames, const QSize& size, PixelSharing sharing);

// Releases both frames.
void releaseFrames(ViewFrames& frames);

// Cuts a region into parts that are small enough for the processor's caches: one is filtered while
// the server is at work on the next.
std::vector<QRect> inParts(const QRegion& region);

// A part of the composed pixmap that was asked for.
struct PixelRequest {
  unsigned int sequence;
  std::size_t packedAt = 0;
  bool isPacked = false;
};

// Starts reading parts that do not overlap. All that was requested before must have been received.
void beginReading(ViewFrames& frames);

// Requests a part of the composed pixmap, as it is when all requests so far have been drawn.
PixelRequest requestPixels(ViewFrames& frames, const QRect& part);

// Waits until the part stands among the unfiltered pixels; returns false if it does not.
bool receivePixels(ViewFrames& frames, const QRect& part, const PixelRequest& request);

// Shows a part of the filtered pixels at a place in a window.
void showFiltered(const ViewFrames& frames, xcb_window_t window, const QRect& part,
                  const QPoint& place);

}  // namespace tintora::platform
