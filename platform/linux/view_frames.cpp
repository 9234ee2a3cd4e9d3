#include "platform/linux/view_frames.h"

#include <xcb/shm.h>

#include <algorithm>
#include <cstring>
#include <span>

#include "platform/linux/image_requests.h"

namespace tintora::platform {

namespace {

// Rounds room up in steps, so that resizing a window does not need new frames at every step.
int roundUp(int length) {
  constexpr int step = 256;
  return (length + step - 1) / step * step;
}

bool suits(const ViewFrames& frames, const QSize& size) {
  const QSize wanted(roundUp(size.width()), roundUp(size.height()));
  const bool enough = frames.size.width() >= size.width() && frames.size.height() >= size.height();
  const auto pixels = [](const QSize& s) { return std::int64_t{s.width()} * s.height(); };
  return enough && pixels(frames.size) <= 4 * pixels(wanted);
}

void createPixmap(ViewFrames& frames) {
  const std::uint8_t depth = xServer.screen->root_depth;
  const xcb_window_t root = xServer.screen->root;
  const std::uint16_t width = u16(frames.size.width());
  const std::uint16_t height = u16(frames.size.height());
  frames.composed = xcb_generate_id(x());
  if (frames.sharing == PixelSharing::Pixmaps) {
    xcb_shm_create_pixmap(x(), frames.composed, root, width, height, depth,
                          frames.unfiltered.segment, 0);
  } else {
    xcb_create_pixmap(x(), depth, frames.composed, root, width, height);
  }
  frames.context = xcb_generate_id(x());
  const std::uint32_t noExposures = 0;
  xcb_create_gc(x(), frames.context, frames.composed, XCB_GC_GRAPHICS_EXPOSURES, &noExposures);
}

bool shareAll(ViewFrames& frames, std::size_t bytes) {
  const bool shared = makeShared(frames.unfiltered, bytes) && makeShared(frames.filtered, bytes);
  return shared && (frames.sharing == PixelSharing::Pixmaps || makeShared(frames.packed, bytes));
}

void takeRows(ViewFrames& frames, const QRect& part, const std::uint8_t* rows) {
  const std::size_t length = std::size_t{4} * static_cast<std::size_t>(part.width());
  for (int y = part.top(); y <= part.bottom(); ++y) {
    std::memcpy(frames.unfiltered.bytes + frames.offset({part.left(), y}), rows, length);
    rows += length;
  }
}

void sendRows(const ViewFrames& frames, xcb_window_t window, const QRect& part,
              const QPoint& place) {
  const std::size_t length = std::size_t{4} * static_cast<std::size_t>(part.width());
  std::vector<std::uint8_t> rows;
  rows.reserve(length * static_cast<std::size_t>(part.height()));
  for (int y = part.top(); y <= part.bottom(); ++y) {
    const std::span row(frames.filtered.bytes + frames.offset({part.left(), y}), length);
    rows.insert(rows.end(), row.begin(), row.end());
  }
  xcb_put_image(x(), XCB_IMAGE_FORMAT_Z_PIXMAP, window, frames.context, u16(part.width()),
                u16(part.height()), i16(place.x()), i16(place.y()), 0, xServer.screen->root_depth,
                static_cast<std::uint32_t>(rows.size()), rows.data());
}

// Returns how many pixels fit into a request of the length that every server accepts. The first
// longer one would wait for the server's answer to whether it may be sent, and break the connection
// if it may not.
int pixelsInRequest() {
  constexpr int head = sizeof(xcb_put_image_request_t) / 4;
  return xcb_get_setup(x())->maximum_request_length - head;
}

void sendPixels(const ViewFrames& frames, xcb_window_t window, const QRect& part,
                const QPoint& place) {
  const int columns = std::min(part.width(), pixelsInRequest());
  const int rows = pixelsInRequest() / columns;
  for (int y = part.top(); y <= part.bottom(); y += rows) {
    for (int x = part.left(); x <= part.right(); x += columns) {
      const QRect piece = QRect(x, y, columns, rows) & part;
      sendRows(frames, window, piece, place + piece.topLeft() - part.topLeft());
    }
  }
}

// Returns true if whole rows should be requested, which land in the segment as they lie in the
// frame. For narrow parts that would read far too much.
bool isWide(const ViewFrames& frames, const QRect& part) {
  return 2 * part.width() > frames.size.width();
}

PixelRequest requestRows(const ViewFrames& frames, const QRect& part) {
  return {xcb_shm_get_image(x(), frames.composed, 0, i16(part.top()), u16(frames.size.width()),
                            u16(part.height()), ~0U, XCB_IMAGE_FORMAT_Z_PIXMAP,
                            frames.unfiltered.segment,
                            static_cast<std::uint32_t>(frames.offset({0, part.top()})))
              .sequence};
}

PixelRequest requestPacked(ViewFrames& frames, const QRect& part) {
  const std::size_t place = frames.packedSize;
  frames.packedSize += std::size_t{4} * static_cast<std::size_t>(part.width()) *
                       static_cast<std::size_t>(part.height());
  const auto cookie =
      xcb_shm_get_image(x(), frames.composed, i16(part.left()), i16(part.top()), u16(part.width()),
                        u16(part.height()), ~0U, XCB_IMAGE_FORMAT_Z_PIXMAP, frames.packed.segment,
                        static_cast<std::uint32_t>(place));
  return {cookie.sequence, place, true};
}

}  // namespace

void makeRoom(ViewFrames& frames, const QSize& size, PixelSharing sharing) {
  if (suits(frames, size)) return;
  releaseFrames(frames);
  frames.size = {roundUp(size.width()), roundUp(size.height())};
  frames.sharing = sharing;
  const auto bytes = static_cast<std::size_t>(frames.stride() * frames.size.height());
  if (sharing != PixelSharing::None && !shareAll(frames, bytes)) {
    releaseFrames(frames);
    return makeRoom(frames, size, PixelSharing::None);
  }
  if (sharing == PixelSharing::None) {
    makeUnshared(frames.unfiltered, bytes);
    makeUnshared(frames.filtered, bytes);
  }
  createPixmap(frames);
}

void releaseFrames(ViewFrames& frames) {
  if (frames.composed != XCB_NONE) {
    xcb_free_gc(x(), frames.context);
    xcb_free_pixmap(x(), frames.composed);
  }
  release(frames.unfiltered);
  release(frames.filtered);
  release(frames.packed);
  frames = {};
}

std::vector<QRect> inParts(const QRegion& region) {
  constexpr int pixelsAtOnce = 128 * 1024;
  std::vector<QRect> parts;
  for (const QRect& rect : region) {
    const int rows = std::max(1, pixelsAtOnce / rect.width());
    for (int top = rect.top(); top <= rect.bottom(); top += rows) {
      parts.emplace_back(rect.left(), top, rect.width(), std::min(rows, rect.bottom() + 1 - top));
    }
  }
  return parts;
}

void beginReading(ViewFrames& frames) {
  frames.packedSize = 0;
}

PixelRequest requestPixels(ViewFrames& frames, const QRect& part) {
  switch (frames.sharing) {
    case PixelSharing::Pixmaps:
      // The pixels are in shared memory as soon as any later reply arrives.
      return {xcb_get_input_focus(x()).sequence};
    case PixelSharing::Images:
      return isWide(frames, part) ? requestRows(frames, part) : requestPacked(frames, part);
    case PixelSharing::None:
      break;
  }
  return {requestImage(frames.composed, part).sequence};
}

bool receivePixels(ViewFrames& frames, const QRect& part, const PixelRequest& request) {
  switch (frames.sharing) {
    case PixelSharing::Pixmaps:
      return Received<xcb_get_input_focus_reply_t>(
                 xcb_get_input_focus_reply(x(), {request.sequence}, nullptr)) != nullptr;
    case PixelSharing::Images: {
      const Received<xcb_shm_get_image_reply_t> reply(
          xcb_shm_get_image_reply(x(), {request.sequence}, nullptr));
      if (reply && request.isPacked) takeRows(frames, part, frames.packed.bytes + request.packedAt);
      return reply != nullptr;
    }
    case PixelSharing::None:
      break;
  }
  const auto image = receiveImage({request.sequence}, part.size());
  if (!image) return false;
  takeRows(frames, part, xcb_get_image_data(image.get()));
  return true;
}

void showFiltered(const ViewFrames& frames, xcb_window_t window, const QRect& part,
                  const QPoint& place) {
  if (frames.sharing == PixelSharing::None) return sendPixels(frames, window, part, place);
  xcb_shm_put_image(x(), window, frames.context, u16(frames.size.width()),
                    u16(frames.size.height()), u16(part.left()), u16(part.top()), u16(part.width()),
                    u16(part.height()), i16(place.x()), i16(place.y()), xServer.screen->root_depth,
                    XCB_IMAGE_FORMAT_Z_PIXMAP, 0, frames.filtered.segment, 0);
}

}  // namespace tintora::platform
