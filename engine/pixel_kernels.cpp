#include "engine/pixel_kernels.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace tintora {

namespace {

// Returns the nearest step to a channel's value, which is on 0..255. NaN compares false and becomes
// 0.
int toStep(double value) {
  const double atMost = value < 255.0 ? value : 255.0;
  return static_cast<int>((value > 0.0 ? atMost : 0.0) + 0.5);
}

// Filters fewer pixels than the kernel takes at once, by way of a block of its size.
void filterPartOfBlock(const PixelKernel& kernel, const FixedPointMatrix& matrix,
                       const std::uint8_t* source, std::uint8_t* destination, std::size_t pixels) {
  std::array<std::uint8_t, mostPixelsAtOnce * bytesPerPixel> block{};
  std::memcpy(block.data(), source, pixels * bytesPerPixel);
  kernel.filterBlocks(matrix, block.data(), block.data(), 1, false);
  std::memcpy(destination, block.data(), pixels * bytesPerPixel);
}

}  // namespace

void filterBlocksPortably(const FixedPointMatrix& matrix, const std::uint8_t* source,
                          std::uint8_t* destination, std::size_t blocks, bool /*streaming*/) {
  for (std::size_t i = 0; i < blocks * bytesPerPixel; i += bytesPerPixel) {
    const int blue = source[i] << matrix.inputShift;
    const int green = source[i + 1] << matrix.inputShift;
    const int red = source[i + 2] << matrix.inputShift;
    const std::uint8_t alpha = source[i + 3];
    for (std::size_t channel = 0; channel < 3; ++channel) {
      const FixedPointMatrix::Channel& c = matrix.channels[channel];
      const int sum = c.blue * blue + c.red * red + c.green * green + c.offset * matrix.offsetUnit;
      destination[i + channel] = static_cast<std::uint8_t>(std::clamp(sum >> 16, 0, 255));
    }
    destination[i + 3] = alpha;
  }
}

void filterWithKernel(const PixelKernel& kernel, const FixedPointMatrix& matrix,
                      const std::uint8_t* source, std::uint8_t* destination, std::size_t pixels,
                      bool streaming) {
  const std::size_t blockBytes = kernel.pixelsAtOnce * bytesPerPixel;
  const auto advance = [&](std::size_t count) {
    source += count * bytesPerPixel;
    destination += count * bytesPerPixel;
    pixels -= count;
  };

  if (streaming) {
    const std::size_t pastBlock = reinterpret_cast<std::uintptr_t>(destination) % blockBytes;
    const std::size_t toBlock = (blockBytes - pastBlock) % blockBytes;
    streaming = toBlock % bytesPerPixel == 0;
    const std::size_t head = std::min(toBlock / bytesPerPixel, pixels);
    if (streaming && head > 0) {
      filterPartOfBlock(kernel, matrix, source, destination, head);
      advance(head);
    }
  }
  const std::size_t blocks = pixels / kernel.pixelsAtOnce;
  kernel.filterBlocks(matrix, source, destination, blocks, streaming);
  advance(blocks * kernel.pixelsAtOnce);
  if (pixels > 0) filterPartOfBlock(kernel, matrix, source, destination, pixels);
}

void filterExactlyPortably(const ExactMatrix& matrix, const std::uint8_t* source,
                           std::uint8_t* destination, std::size_t pixels) {
  for (std::size_t i = 0; i < pixels * bytesPerPixel; i += bytesPerPixel) {
    const double blue = source[i];
    const double green = source[i + 1];
    const double red = source[i + 2];
    const std::uint8_t alpha = source[i + 3];
    for (std::size_t channel = 0; channel < 3; ++channel) {
      const ExactMatrix::Channel& c = matrix.channels[channel];
      destination[i + channel] = static_cast<std::uint8_t>(
          toStep(red * c.red + green * c.green + blue * c.blue + c.offset));
    }
    destination[i + 3] = alpha;
  }
}

}  // namespace tintora
