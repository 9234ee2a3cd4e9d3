#include <arm_neon.h>

#include <array>

#include "engine/pixel_kernels.h"

namespace tintora {

namespace {

// Returns one output channel of eight pixels, from the shifted inputs.
uint8x8_t filteredChannel(const FixedPointMatrix::Channel& channel, std::int32_t offset,
                          int16x8_t blue, int16x8_t green, int16x8_t red) {
  int32x4_t low = vdupq_n_s32(offset);
  low = vmlal_n_s16(low, vget_low_s16(blue), channel.blue);
  low = vmlal_n_s16(low, vget_low_s16(green), channel.green);
  low = vmlal_n_s16(low, vget_low_s16(red), channel.red);
  int32x4_t high = vdupq_n_s32(offset);
  high = vmlal_n_s16(high, vget_high_s16(blue), channel.blue);
  high = vmlal_n_s16(high, vget_high_s16(green), channel.green);
  high = vmlal_n_s16(high, vget_high_s16(red), channel.red);
  return vqmovun_s16(vcombine_s16(vshrn_n_s32(low, 16), vshrn_n_s32(high, 16)));
}

int16x8_t shifted(uint8x8_t channel, int16x8_t shift) {
  return vshlq_s16(vreinterpretq_s16_u16(vmovl_u8(channel)), shift);
}

// Filters eight pixels at once: the processor loads the four channels apart, and narrowing with
// saturation clamps.
void filterBlocksNeon(const FixedPointMatrix& matrix, const std::uint8_t* source,
                      std::uint8_t* destination, std::size_t blocks, bool /*streaming*/) {
  constexpr std::size_t blockBytes = 8 * bytesPerPixel;
  const int16x8_t shift = vdupq_n_s16(static_cast<std::int16_t>(matrix.inputShift));
  std::array<std::int32_t, 3> offsets{};
  for (std::size_t i = 0; i < offsets.size(); ++i) {
    offsets[i] = matrix.channels[i].offset * matrix.offsetUnit;
  }
  for (std::size_t i = 0; i < blocks; ++i) {
    uint8x8x4_t pixels = vld4_u8(source + i * blockBytes);
    const int16x8_t blue = shifted(pixels.val[0], shift);
    const int16x8_t green = shifted(pixels.val[1], shift);
    const int16x8_t red = shifted(pixels.val[2], shift);
    for (std::size_t channel = 0; channel < 3; ++channel) {
      pixels.val[channel] =
          filteredChannel(matrix.channels[channel], offsets[channel], blue, green, red);
    }
    vst4_u8(destination + i * blockBytes, pixels);
  }
}

constexpr std::array<PixelKernel, 2> kernels{{
    {"NEON", 8, &filterBlocksNeon, &filterExactlyPortably},
    portableKernel,
}};

}  // namespace

std::span<const PixelKernel> pixelKernels() {
  return kernels;
}

}  // namespace tintora
