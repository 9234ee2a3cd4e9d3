// The view's picture, as composed and as filtered. Shared with the X server if possible.
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
  xcb_gcontext_t context = XCB_NONE;  // for copies without events
  PixelSharing sharing = PixelSharing::None;
  SharedPixels unfiltered;
  SharedPixels filtered;
  SharedPixels packed;         // narrow parts from the server, if pixmaps are not shared
  std::size_t packedSize = 0;  // bytes of it that are in use

  std::ptrdiff_t stride() const { return std::ptrdiff_t{4} * size.width(); }
  std::ptrdiff_t offset(const QPoint& place) const {
    return place.y() * stride() + std::ptrdiff_t{4} * place.x();
  }
};

// Makes room for a size. Changes the frames only if they have too little room or far too much.
void makeRoom(ViewFrames& frames, const QSize& size, PixelSharing sharing);

// Releases both frames.
void releaseFrames(ViewFrames& frames);

// Cuts a region into parts that fit the processor's caches. One part is filtered while the server
// works on the next.
std::vector<QRect> inParts(const QRegion& region);

// A request for a part of the composed pixmap.
struct PixelRequest {
  unsigned int sequence;
  std::size_t packedAt = 0;
  bool isPacked = false;
};

// Starts reading parts, which must not overlap. All earlier requests must have been received.
void beginReading(ViewFrames& frames);

// Requests a part of the composed pixmap after all drawing requested so far.
PixelRequest requestPixels(ViewFrames& frames, const QRect& part);

// Waits until the part is among the unfiltered pixels. Returns false on failure.
bool receivePixels(ViewFrames& frames, const QRect& part, const PixelRequest& request);

// Shows a part of the filtered pixels at a place in a window.
void showFiltered(const ViewFrames& frames, xcb_window_t window, const QRect& part,
                  const QPoint& place);

}  // namespace tintora::platform
