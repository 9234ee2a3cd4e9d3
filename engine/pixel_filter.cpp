#include "engine/pixel_filter.h"

#include <cmath>
#include <cstdlib>
#include <limits>

#include "engine/pixel_kernels.h"

namespace tintora {

namespace {

// With fewer bits behind the point than 9 the three products alone could be a whole step off.
constexpr int mostFractionBits = 15;
constexpr int fewestFractionBits = 9;
constexpr int sumFractionBits = 16;
constexpr int mostOffsetUnitBits = 14;

// Beyond this a frame no longer stays in the caches, and writing past them spares reading it first.
constexpr std::size_t streamingBytes = std::size_t{4} << 20;

std::optional<std::int16_t> toInt16(double value) {
  const double rounded = std::nearbyint(value);
  if (!(std::abs(rounded) <= std::numeric_limits<std::int16_t>::max())) return std::nullopt;
  return static_cast<std::int16_t>(rounded);
}

std::optional<FixedPointMatrix::Channel> toFixedPoint(const ExactMatrix::Channel& exact,
                                                      int fractionBits, int offsetUnitBits) {
  const double rounding = 0.5;
  const auto blue = toInt16(std::ldexp(exact.blue, fractionBits));
  const auto red = toInt16(std::ldexp(exact.red, fractionBits));
  const auto green = toInt16(std::ldexp(exact.green, fractionBits));
  const auto offset =
      toInt16(std::ldexp(exact.offset + rounding, sumFractionBits - offsetUnitBits));
  if (!blue || !red || !green || !offset) return std::nullopt;

  const std::int64_t inputs = std::int64_t{255} << (sumFractionBits - fractionBits);
  const std::int64_t largestSum = (std::abs(*blue) + std::abs(*red) + std::abs(*green)) * inputs +
                                  (std::int64_t{std::abs(*offset)} << offsetUnitBits);
  if (largestSum > std::numeric_limits<std::int32_t>::max()) return std::nullopt;
  return FixedPointMatrix::Channel{*blue, *red, *green, *offset};
}

std::optional<FixedPointMatrix> toFixedPoint(const ExactMatrix& exact, int fractionBits,
                                             int offsetUnitBits) {
  FixedPointMatrix matrix{
      sumFractionBits - fractionBits, static_cast<std::int16_t>(1 << offsetUnitBits), {}};
  for (std::size_t i = 0; i < exact.channels.size(); ++i) {
    const auto channel = toFixedPoint(exact.channels[i], fractionBits, offsetUnitBits);
    if (!channel) return std::nullopt;
    matrix.channels[i] = *channel;
  }
  return matrix;
}

// Returns the finest fixed point that holds the matrix: first the coefficients, then the offsets.
std::optional<FixedPointMatrix> finestFixedPoint(const ExactMatrix& exact) {
  for (int fractionBits = mostFractionBits; fractionBits >= fewestFractionBits; --fractionBits) {
    for (int unitBits = 1; unitBits <= mostOffsetUnitBits; ++unitBits) {
      if (const auto matrix = toFixedPoint(exact, fractionBits, unitBits)) return matrix;
    }
  }
  return std::nullopt;
}

}  // namespace

PixelFilter makePixelFilter(const EffectMatrix& matrix) {
  PixelFilter filter;
  for (std::size_t i = 0; i < 3; ++i) {
    const std::size_t output = 2 - i;
    filter.exact.channels[i] = {matrix[0][output], matrix[1][output], matrix[2][output],
                                255.0 * matrix[4][output]};
  }
  filter.fixedPoint = finestFixedPoint(filter.exact);
  return filter;
}

void filterPixels(const PixelFilter& filter, const std::uint8_t* source, std::uint8_t* destination,
                  std::size_t pixels) {
  filterRows(filter, source, 0, destination, 0, pixels, 1);
}

void filterRows(const PixelFilter& filter, const std::uint8_t* source, std::ptrdiff_t sourceStride,
                std::uint8_t* destination, std::ptrdiff_t destinationStride, std::size_t width,
                std::size_t height) {
  const PixelKernel& kernel = pixelKernels().front();
  const bool streaming = source != destination && width * height * bytesPerPixel >= streamingBytes;
  for (std::size_t row = 0; row < height; ++row) {
    const auto y = static_cast<std::ptrdiff_t>(row);
    const std::uint8_t* const from = source + y * sourceStride;
    std::uint8_t* const to = destination + y * destinationStride;
    if (filter.fixedPoint) {
      filterWithKernel(kernel, *filter.fixedPoint, from, to, width, streaming);
    } else {
      kernel.filterExactly(filter.exact, from, to, width);
    }
  }
}

}  // namespace tintora
