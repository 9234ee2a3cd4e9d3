// An effect matrix applied to 8-bit pixels: what the live view and the image tool run on.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "engine/effect_matrix.h"

namespace tintora {

// A matrix in 16-bit fixed point. With x << inputShift the channels of a pixel, each output channel
// is clamp((blue * B + red * R + green * G + offset * offsetUnit) >> 16, 0, 255), the sum within 32
// bits; the offset holds the half that rounds to nearest.
struct FixedPointMatrix {
  struct Channel {
    std::int16_t blue, red, green, offset;
  };
  int inputShift;                   // 1..7
  std::int16_t offsetUnit;          // a power of two
  std::array<Channel, 3> channels;  // output blue, green, red
};

// A matrix in double precision, for the entries that fixed point cannot hold: any float.
struct ExactMatrix {
  struct Channel {
    double red, green, blue, offset;  // on channels of 0..255
  };
  std::array<Channel, 3> channels;  // output blue, green, red
};

// An effect matrix made ready for pixels.
struct PixelFilter {
  ExactMatrix exact;
  std::optional<FixedPointMatrix> fixedPoint;  // when every channel then comes out within one step
};

// Makes the filter of a matrix, in which any float may stand, infinities and NaN included.
PixelFilter makePixelFilter(const EffectMatrix& matrix);

// Filters pixels of 4 bytes in the order B, G, R, A at any alignment. Each channel is at most one
// step from the clamped and rounded result in double precision (NaN becomes 0); A
// is kept. Source and destination are the same place or do not overlap.
void filterPixels(const PixelFilter& filter, const std::uint8_t* source, std::uint8_t* destination,
                  std::size_t pixels);

// Filters the pixels of several rows like filterPixels. Strides are bytes from one row to the next,
// of any sign.
void filterRows(const PixelFilter& filter, const std::uint8_t* source, std::ptrdiff_t sourceStride,
                std::uint8_t* destination, std::ptrdiff_t destinationStride, std::size_t width,
                std::size_t height);

}  // namespace tintora
