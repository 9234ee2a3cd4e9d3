// Memory for pixels of four bytes, shared with the X server if possible.
#pragma once

#include <xcb/shm.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace tintora::platform {

struct SharedPixels {
  std::uint8_t* bytes = nullptr;
  xcb_shm_seg_t segment = XCB_NONE;
  std::size_t size = 0;  // in bytes
  std::vector<std::uint8_t> unshared;
};

// Creates memory of this size that the server shares. Returns false if that is not possible, for
// instance with a server on another machine.
bool makeShared(SharedPixels& pixels, std::size_t size);

// Creates memory that only the program has.
void makeUnshared(SharedPixels& pixels, std::size_t size);

// Releases the memory here and at the server.
void release(SharedPixels& pixels);

}  // namespace tintora::platform
