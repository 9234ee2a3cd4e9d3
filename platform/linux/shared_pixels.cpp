#include "platform/linux/shared_pixels.h"

#include <sys/mman.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <random>

#include "platform/linux/image_requests.h"
#include "platform/linux/x_server.h"

namespace tintora::platform {

namespace {

// Returns true if the socket to the server is local. Sending a descriptor over another one breaks
// the connection.
bool canSendDescriptors() {
  sockaddr address{};
  socklen_t length = sizeof address;
  const int socket = xcb_get_file_descriptor(x());
  return getsockname(socket, &address, &length) == 0 && address.sa_family == AF_UNIX;
}

// Returns true if the server sees what the program writes: random pixels that the server copies
// into a pixmap must come back.
bool isSameMemory(const SharedPixels& pixels) {
  constexpr std::uint16_t count = 16;
  std::array<std::uint32_t, count> written{};
  std::random_device random;
  for (std::uint32_t& pixel : written) pixel = random() & 0xFFFFFF;
  std::memcpy(pixels.bytes, written.data(), sizeof written);
  const std::uint8_t depth = xServer.screen->root_depth;
  const xcb_pixmap_t pixmap = xcb_generate_id(x());
  const xcb_gcontext_t context = xcb_generate_id(x());
  xcb_create_pixmap(x(), depth, pixmap, xServer.screen->root, count, 1);
  xcb_create_gc(x(), context, pixmap, 0, nullptr);
  xcb_shm_put_image(x(), pixmap, context, count, 1, 0, 0, count, 1, 0, 0, depth,
                    XCB_IMAGE_FORMAT_Z_PIXMAP, 0, pixels.segment, 0);
  const auto image = receiveImage(requestImage(pixmap, {0, 0, count, 1}), {count, 1});
  xcb_free_gc(x(), context);
  xcb_free_pixmap(x(), pixmap);
  if (!image) return false;
  std::array<std::uint32_t, count> seen{};
  std::memcpy(seen.data(), xcb_get_image_data(image.get()), sizeof seen);
  return std::ranges::equal(seen, written, {},
                            [](std::uint32_t pixel) { return pixel & 0xFFFFFF; });
}

// Creates a file that exists in memory only. Returns -1 on failure.
int fileInMemory(std::size_t size) {
  const int file = memfd_create("tintora", MFD_CLOEXEC);
  if (file >= 0 && ftruncate(file, static_cast<off_t>(size)) == 0) return file;
  if (file >= 0) close(file);
  return -1;
}

}  // namespace

bool makeShared(SharedPixels& pixels, std::size_t size) {
  if (!canSendDescriptors()) return false;
  const int file = fileInMemory(size);
  if (file < 0) return false;
  void* const address = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
  if (address == MAP_FAILED) {
    close(file);
    return false;
  }
  pixels.bytes = static_cast<std::uint8_t*>(address);
  pixels.size = size;
  const xcb_shm_seg_t segment = xcb_generate_id(x());
  // This request closes the descriptor.
  xcb_shm_attach_fd(x(), segment, file, 0);
  pixels.segment = segment;
  // A server that has refused copies nothing.
  if (isSameMemory(pixels)) return true;
  release(pixels);
  return false;
}

void makeUnshared(SharedPixels& pixels, std::size_t size) {
  pixels.size = size;
  pixels.unshared.resize(size);
  pixels.bytes = pixels.unshared.data();
}

void release(SharedPixels& pixels) {
  if (pixels.segment != XCB_NONE) xcb_shm_detach(x(), pixels.segment);
  if (pixels.bytes != nullptr && pixels.unshared.empty()) munmap(pixels.bytes, pixels.size);
  pixels = {};
}

}  // namespace tintora::platform
