#include "platform/linux/view_frames.h"

#include <sys/ipc.h>
#include <sys/shm.h>

#include <cstring>
#include <span>

namespace tintora::platform {

namespace {

// A segment is marked for removal as soon as both sides have it, so that it cannot outlive them.
bool share(SharedPixels& pixels) {
  const int id = shmget(IPC_PRIVATE, pixels.size, IPC_CREAT | 0600);
  if (id < 0) return false;
  void* const address = shmat(id, nullptr, 0);
  pixels.segment = xcb_generate_id(x());
  const Received<xcb_generic_error_t> refusal(xcb_request_check(
      x(), xcb_shm_attach_checked(x(), pixels.segment, static_cast<std::uint32_t>(id), 0)));
  shmctl(id, IPC_RMID, nullptr);
  const bool attached = reinterpret_cast<std::intptr_t>(address) != -1;
  if (attached && !refusal) {
    pixels.bytes = static_cast<std::uint8_t*>(address);
    return true;
  }
  if (attached) shmdt(address);
  if (!refusal) xcb_shm_detach(x(), pixels.segment);
  pixels.segment = XCB_NONE;
  return false;
}

void keepUnshared(SharedPixels& pixels) {
  pixels.unshared.resize(pixels.size);
  pixels.bytes = pixels.unshared.data();
}

void release(SharedPixels& pixels) {
  if (pixels.segment != XCB_NONE) {
    xcb_shm_detach(x(), pixels.segment);
    shmdt(pixels.bytes);
  }
  pixels = {};
}

// Room in steps, so that a window that is being sized does not need new frames at every step.
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

void takeRows(ViewFrames& frames, const QRect& part, const std::uint8_t* rows) {
  const std::size_t length = std::size_t{4} * static_cast<std::size_t>(part.width());
  for (int y = part.top(); y <= part.bottom(); ++y) {
    std::memcpy(frames.unfiltered.bytes + frames.offset({part.left(), y}), rows, length);
    rows += length;
  }
}

void sendRows(const ViewFrames& frames, xcb_window_t window, const QRect& part) {
  const std::size_t length = std::size_t{4} * static_cast<std::size_t>(part.width());
  std::vector<std::uint8_t> rows;
  rows.reserve(length * static_cast<std::size_t>(part.height()));
  for (int y = part.top(); y <= part.bottom(); ++y) {
    const std::span row(frames.filtered.bytes + frames.offset({part.left(), y}), length);
    rows.insert(rows.end(), row.begin(), row.end());
  }
  xcb_put_image(x(), XCB_IMAGE_FORMAT_Z_PIXMAP, window, frames.context, u16(part.width()),
                u16(part.height()), i16(part.left()), i16(part.top()), 0,
                xServer.screen->root_depth, static_cast<std::uint32_t>(rows.size()), rows.data());
}

}  // namespace

void makeRoom(ViewFrames& frames, const QSize& size, PixelSharing sharing) {
  if (suits(frames, size)) return;
  releaseFrames(frames);
  frames.size = {roundUp(size.width()), roundUp(size.height())};
  frames.sharing = sharing;
  frames.unfiltered.size = static_cast<std::size_t>(frames.stride() * frames.size.height());
  frames.filtered.size = frames.unfiltered.size;
  if (sharing != PixelSharing::None && !(share(frames.unfiltered) && share(frames.filtered))) {
    // A server on another machine, for one, cannot share.
    release(frames.unfiltered);
    release(frames.filtered);
    frames = {};
    return makeRoom(frames, size, PixelSharing::None);
  }
  if (sharing == PixelSharing::None) {
    keepUnshared(frames.unfiltered);
    keepUnshared(frames.filtered);
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
  frames = {};
}

unsigned int requestPixels(const ViewFrames& frames, const QRect& part) {
  switch (frames.sharing) {
    case PixelSharing::Pixmaps:
      // They are there already when the answer to anything comes.
      return xcb_get_input_focus(x()).sequence;
    case PixelSharing::Images:
      // Whole rows lie in the segment as they do in the frame.
      return xcb_shm_get_image(x(), frames.composed, 0, i16(part.top()), u16(frames.size.width()),
                               u16(part.height()), ~0U, XCB_IMAGE_FORMAT_Z_PIXMAP,
                               frames.unfiltered.segment,
                               static_cast<std::uint32_t>(frames.offset({0, part.top()})))
          .sequence;
    case PixelSharing::None:
      break;
  }
  return xcb_get_image(x(), XCB_IMAGE_FORMAT_Z_PIXMAP, frames.composed, i16(part.left()),
                       i16(part.top()), u16(part.width()), u16(part.height()), ~0U)
      .sequence;
}

bool receivePixels(ViewFrames& frames, const QRect& part, unsigned int request) {
  switch (frames.sharing) {
    case PixelSharing::Pixmaps:
      return Received<xcb_get_input_focus_reply_t>(
                 xcb_get_input_focus_reply(x(), {request}, nullptr)) != nullptr;
    case PixelSharing::Images:
      return Received<xcb_shm_get_image_reply_t>(
                 xcb_shm_get_image_reply(x(), {request}, nullptr)) != nullptr;
    case PixelSharing::None:
      break;
  }
  const Received<xcb_get_image_reply_t> reply(xcb_get_image_reply(x(), {request}, nullptr));
  if (!reply) return false;
  takeRows(frames, part, xcb_get_image_data(reply.get()));
  return true;
}

void showFiltered(const ViewFrames& frames, xcb_window_t window, const QRect& part) {
  if (frames.sharing == PixelSharing::None) return sendRows(frames, window, part);
  xcb_shm_put_image(x(), window, frames.context, u16(frames.size.width()),
                    u16(frames.size.height()), u16(part.left()), u16(part.top()), u16(part.width()),
                    u16(part.height()), i16(part.left()), i16(part.top()),
                    xServer.screen->root_depth, XCB_IMAGE_FORMAT_Z_PIXMAP, 0,
                    frames.filtered.segment, 0);
}

}  // namespace tintora::platform
