// The inner loops of the pixel filter, one for each kind of processor; all give the same bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "engine/pixel_filter.h"

namespace tintora {

// Filters any number of pixels by a matrix in double precision.
using FilterExactly = void(const ExactMatrix& matrix, const std::uint8_t* source,
                           std::uint8_t* destination, std::size_t pixels);

struct PixelKernel {
  std::string_view name;
  std::size_t pixelsAtOnce;
  // Filters blocks of pixelsAtOnce pixels. With streaming the destination is aligned to a block and
  // written past the caches.
  void (*filterBlocks)(const FixedPointMatrix& matrix, const std::uint8_t* source,
                       std::uint8_t* destination, std::size_t blocks, bool streaming);
  FilterExactly* filterExactly;
};

inline constexpr std::size_t bytesPerPixel = 4;
inline constexpr std::size_t mostPixelsAtOnce = 16;

// Runs on any processor.
void filterBlocksPortably(const FixedPointMatrix& matrix, const std::uint8_t* source,
                          std::uint8_t* destination, std::size_t blocks, bool streaming);
FilterExactly filterExactlyPortably;
inline constexpr PixelKernel portableKernel{"portable", 1, &filterBlocksPortably,
                                            &filterExactlyPortably};

// Returns the kernels that run on this processor, the fastest first and the portable one last.
std::span<const PixelKernel> pixelKernels();

// Filters any number of pixels with one kernel.
void filterWithKernel(const PixelKernel& kernel, const FixedPointMatrix& matrix,
                      const std::uint8_t* source, std::uint8_t* destination, std::size_t pixels,
                      bool streaming);

}  // namespace tintora
