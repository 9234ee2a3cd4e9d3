// The view's picture twice: as it was composed, and filtered. Shared with the X server where it can
// be.
#pragma once

#include <xcb/shm.h>
#include <xcb/xcb.h>

#include <QRect>
#include <QSize>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/linux/x_server.h"

namespace tintora::platform {

// Rows of pixels of four bytes, in memory of the server's too or in the program's alone.
struct SharedPixels {
  std::uint8_t* bytes = nullptr;
  xcb_shm_seg_t segment = XCB_NONE;
  std::size_t size = 0;
  std::vector<std::uint8_t> unshared;
};

struct ViewFrames {
  QSize size;                         // of both, in pixels
  xcb_pixmap_t composed = XCB_NONE;   // for drawing requests
  xcb_gcontext_t context = XCB_NONE;  // for copies that make no events
  PixelSharing sharing = PixelSharing::None;
  SharedPixels unfiltered;
  SharedPixels filtered;

  std::ptrdiff_t stride() const { return std::ptrdiff_t{4} * size.width(); }
  std::ptrdiff_t offset(const QPoint& place) const {
    return place.y() * stride() + std::ptrdiff_t{4} * place.x();
  }
};

// Frames with room for a size, new where the former have too little or far too much.
void makeRoom(ViewFrames& frames, const QSize& size, PixelSharing sharing);

void releaseFrames(ViewFrames& frames);

// Asks for a part of the composed pixmap, as it is when all asked so far has been drawn ...
unsigned int requestPixels(const ViewFrames& frames, const QRect& part);
// ... and waits until it stands among the unfiltered pixels; false where it does not.
bool receivePixels(ViewFrames& frames, const QRect& part, unsigned int request);

// Has a part of the filtered pixels shown in a window, at the same place.
void showFiltered(const ViewFrames& frames, xcb_window_t window, const QRect& part);

}  // namespace tintora::platform
