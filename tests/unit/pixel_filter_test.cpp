#include "engine/pixel_filter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "engine/apply_transform.h"
#include "engine/effect_matrix.h"
#include "engine/pixel_kernels.h"
#include "engine/transform_settings.h"
#include "spectral/simulation_matrix.h"
#include "tests/expected/engine_records.h"

namespace tintora {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();

Bytes randomPixels(std::size_t pixels, unsigned seed) {
  std::mt19937 random(seed);
  Bytes bytes(pixels * 4);
  for (std::uint8_t& byte : bytes) {
    // Choose the ends of the range more often than chance would.
    const auto value = random() % 320;
    byte = static_cast<std::uint8_t>(value < 256 ? value : value % 2 * 255);
  }
  return bytes;
}

EffectMatrix matrixOf(const std::array<std::array<float, 3>, 3>& colour,
                      const std::array<float, 3>& offset) {
  EffectMatrix matrix = identityEffectMatrix;
  for (std::size_t i = 0; i < 3; ++i) {
    std::copy(colour[i].begin(), colour[i].end(), matrix[i].begin());
  }
  std::copy(offset.begin(), offset.end(), matrix[4].begin());
  return matrix;
}

EffectMatrix randomMatrix(std::mt19937& random, double magnitude) {
  std::uniform_real_distribution<double> entry(-magnitude, magnitude);
  EffectMatrix matrix = identityEffectMatrix;
  for (const std::size_t row : {0U, 1U, 2U, 4U}) {
    for (std::size_t column = 0; column < 3; ++column) {
      matrix[row][column] = static_cast<float>(entry(random));
    }
  }
  return matrix;
}

// The definition, in double precision: the row vector (R, G, B, A, 1), channels 0..1, times the
// matrix, clamped, scaled to 255 and rounded.
double shownChannel(const EffectMatrix& matrix, const std::uint8_t* pixel, std::size_t output) {
  const double sum = pixel[2] / 255.0 * matrix[0][output] + pixel[1] / 255.0 * matrix[1][output] +
                     pixel[0] / 255.0 * matrix[2][output] + matrix[4][output];
  return std::round(std::clamp(sum, 0.0, 1.0) * 255.0);
}

void expectWithinOneStep(const EffectMatrix& matrix, const Bytes& source, const Bytes& filtered) {
  ASSERT_EQ(source.size(), filtered.size());
  for (std::size_t i = 0; i < source.size(); i += 4) {
    for (std::size_t output = 0; output < 3; ++output) {
      const double expected = shownChannel(matrix, &source[i], output);
      ASSERT_LE(std::abs(filtered[i + 2 - output] - expected), 1.0)
          << "pixel " << i / 4 << ", output channel " << output;
    }
    ASSERT_EQ(filtered[i + 3], source[i + 3]) << "alpha of pixel " << i / 4;
  }
}

Bytes filtered(const EffectMatrix& matrix, const Bytes& source) {
  Bytes result(source.size());
  filterPixels(makePixelFilter(matrix), source.data(), result.data(), source.size() / 4);
  return result;
}

TEST(PixelFilter, RandomMatricesOfEveryMagnitudeComeWithinOneStepOfDoubleArithmetic) {
  std::mt19937 random(1);
  const Bytes source = randomPixels(500, 2);
  for (int power = -6; power <= 12; ++power) {
    for (int i = 0; i < 40; ++i) {
      SCOPED_TRACE("entries up to 2^" + std::to_string(power) + ", matrix " + std::to_string(i));
      const EffectMatrix matrix = randomMatrix(random, std::ldexp(1.0, power));
      expectWithinOneStep(matrix, source, filtered(matrix, source));
    }
  }
}

TEST(PixelFilter, EveryModeComesWithinOneStepOfDoubleArithmetic) {
  const EngineRecords records;
  initialiseModelContext(modelContext);
  const Bytes source = randomPixels(500, 3);
  for (int mode = 1; mode <= 13; ++mode) {
    for (int step = 0; step <= 20; ++step) {
      for (int option = 0; option < 5; ++option) {
        for (const bool inversion : {false, true}) {
          transformSettings = {};
          transformSettings.Selected = static_cast<TransformMode>(mode);
          transformSettings.severity = transformSettings.contrast = transformSettings.saturation =
              step / 20.0;
          transformSettings.brightness = step / 10.0 - 1.0;
          transformSettings.filterGreen = 0.0;
          transformSettings.Option = static_cast<SimulationAlgorithm>(option);
          transformSettings.Inversion = inversion;
          transformSettings.Daltonize = !inversion && step % 2 == 1;
          applyTransform();
          SCOPED_TRACE(transformTitle(transformSettings) + ", option " + std::to_string(option));
          expectWithinOneStep(effectMatrix, source, filtered(effectMatrix, source));
          if (!isSimulation(transformSettings.Selected)) break;
        }
        if (!isSimulation(transformSettings.Selected)) break;
      }
    }
  }
  restore(records);
}

TEST(PixelFilter, TheIdentityInversionAndSwapsAreExact) {
  const Bytes source = randomPixels(1000, 4);
  EXPECT_EQ(filtered(identityEffectMatrix, source), source);

  Bytes inverted = source;
  Bytes swapped = source;
  for (std::size_t i = 0; i < source.size(); i += 4) {
    for (std::size_t channel = 0; channel < 3; ++channel) {
      inverted[i + channel] = static_cast<std::uint8_t>(255 - source[i + channel]);
    }
    std::swap(swapped[i], swapped[i + 2]);
  }
  EXPECT_EQ(filtered(matrixOf({{{-1, 0, 0}, {0, -1, 0}, {0, 0, -1}}}, {1, 1, 1}), source),
            inverted);
  EXPECT_EQ(filtered(matrixOf({{{0, 0, 1}, {0, 1, 0}, {1, 0, 0}}}, {0, 0, 0}), source), swapped);
}

TEST(PixelFilter, HugeEntriesComeWithinOneStepOfDoubleArithmetic) {
  std::mt19937 random(5);
  const Bytes source = randomPixels(500, 6);
  for (const double magnitude : {1e5, 1e10, 1e16, 3e38}) {
    for (int i = 0; i < 40; ++i) {
      SCOPED_TRACE("entries up to " + std::to_string(magnitude));
      const EffectMatrix matrix = randomMatrix(random, magnitude);
      expectWithinOneStep(matrix, source, filtered(matrix, source));
    }
  }
}

TEST(PixelFilter, ColumnsThatCancelAtHugeEntriesLeaveTheOffset) {
  // Grey pixels: 1e16 * g - 1e16 * g is nothing.
  const EffectMatrix matrix =
      matrixOf({{{1e16F, 1e16F, 0}, {-1e16F, -1e16F, 0}, {0, 0, 1}}}, {0.2F, 0.6F, 0});
  Bytes source;
  for (unsigned grey = 0; grey < 256; ++grey) {
    const auto g = static_cast<std::uint8_t>(grey);
    source.insert(source.end(), {g, g, g, 9});
  }
  const Bytes result = filtered(matrix, source);
  for (std::size_t i = 0; i < result.size(); i += 4) {
    ASSERT_EQ(result[i], source[i]);
    ASSERT_EQ(result[i + 1], 153);  // 0.6 * 255
    ASSERT_EQ(result[i + 2], 51);   // 0.2 * 255
  }
}

TEST(PixelFilter, InfinitiesSaturateTowardsTheirSign) {
  const EffectMatrix matrix =
      matrixOf({{{infinity, 0, 0}, {0, -infinity, 0}, {0, 0, 1}}}, {0, 0, infinity});
  const Bytes source{10, 20, 30, 40, 255, 1, 1, 255};
  EXPECT_EQ(filtered(matrix, source), (Bytes{255, 0, 255, 40, 255, 0, 255, 255}));
}

TEST(PixelFilter, NotANumberBecomesBlackInItsChannelAlone) {
  // An infinite coefficient of a channel that is 0, opposite infinities, and NaN itself.
  const EffectMatrix zeroTimesInfinity =
      matrixOf({{{infinity, 0, 0}, {0, 1, 0}, {0, 0, 1}}}, {0, 0, 0});
  EXPECT_EQ(filtered(zeroTimesInfinity, {10, 20, 0, 40}), (Bytes{10, 20, 0, 40}));
  const EffectMatrix opposites =
      matrixOf({{{infinity, 0, 0}, {-infinity, 1, 0}, {0, 0, 1}}}, {0, 0, 0});
  EXPECT_EQ(filtered(opposites, {10, 20, 30, 40}), (Bytes{10, 20, 0, 40}));
  for (const std::size_t row : {0U, 1U, 2U, 4U}) {
    for (std::size_t column = 0; column < 3; ++column) {
      EffectMatrix matrix = identityEffectMatrix;
      matrix[row][column] = notANumber;
      Bytes expected{10, 20, 30, 40};
      expected[2 - column] = 0;
      EXPECT_EQ(filtered(matrix, {10, 20, 30, 40}), expected) << row << ", " << column;
    }
  }
}

TEST(PixelFilter, FixedPointIsUsedForEveryMatrixItCanHold) {
  const auto isFixed = [](float coefficient, float offset) {
    const EffectMatrix matrix =
        matrixOf({{{coefficient, 0, 0}, {0, 1, 0}, {0, 0, 1}}}, {offset, 0, 0});
    return makePixelFilter(matrix).fixedPoint.has_value();
  };
  EXPECT_TRUE(isFixed(1, 0));
  EXPECT_TRUE(isFixed(-63.9F, 0));
  EXPECT_TRUE(isFixed(63.9F, 0));
  EXPECT_TRUE(isFixed(1, 31.9F));
  EXPECT_TRUE(isFixed(1, -31.9F));
  EXPECT_FALSE(isFixed(64.1F, 0));
  EXPECT_FALSE(isFixed(1, 32.2F));
  // Each entry fits, but their sum could exceed 32 bits.
  const EffectMatrix wide = matrixOf({{{50, 0, 0}, {50, 1, 0}, {50, 0, 1}}}, {0, 0, 0});
  EXPECT_FALSE(makePixelFilter(wide).fixedPoint.has_value());
  const Bytes source = randomPixels(500, 7);
  expectWithinOneStep(wide, source, filtered(wide, source));
}

TEST(PixelFilter, TheEdgesOfFixedPointComeWithinOneStepOfDoubleArithmetic) {
  const Bytes source = randomPixels(2000, 8);
  for (const float c : {0.9999F, 1.0F, 1.9999F, 3.9999F, 7.9999F, 15.999F, 31.999F}) {
    for (const float offset : {0.0F, 0.5F, -2.0F, 15.0F, -31.0F}) {
      const EffectMatrix matrix =
          matrixOf({{{c, -c, c}, {-c, c, -c}, {c, c, -c}}}, {offset, -offset, offset / 2});
      SCOPED_TRACE(std::to_string(c) + ", offset " + std::to_string(offset));
      ASSERT_TRUE(makePixelFilter(matrix).fixedPoint.has_value());
      expectWithinOneStep(matrix, source, filtered(matrix, source));
    }
  }
}

TEST(PixelKernels, EveryKernelGivesTheBytesOfThePortableOne) {
  std::mt19937 random(9);
  const Bytes source = randomPixels(997, 10);
  for (int i = 0; i < 200; ++i) {
    const auto matrix =
        makePixelFilter(randomMatrix(random, std::ldexp(1.0, i % 8 - 2))).fixedPoint;
    if (!matrix) continue;
    Bytes expected(source.size());
    filterBlocksPortably(*matrix, source.data(), expected.data(), source.size() / 4, false);
    for (const PixelKernel& kernel : pixelKernels()) {
      Bytes result(source.size());
      filterWithKernel(kernel, *matrix, source.data(), result.data(), source.size() / 4, false);
      ASSERT_EQ(result, expected) << kernel.name << ", matrix " << i;
    }
  }
}

TEST(PixelKernels, ThePortableOneStandsLastBehindAFasterOne) {
  EXPECT_GE(pixelKernels().size(), 2U);
  EXPECT_EQ(pixelKernels().back().name, portableKernel.name);
}

// A buffer in which pixels stand at any distance from a multiple of 64 bytes, between guards.
struct GuardedPixels {
  static constexpr std::uint8_t guard = 0xA5;
  alignas(64) std::array<std::uint8_t, 64 + 64 + 68 * 4 + 64> bytes{};

  explicit GuardedPixels(std::size_t alignment) : pixels(bytes.data() + 64 + alignment) {
    bytes.fill(guard);
  }
  GuardedPixels(const GuardedPixels&) = delete;
  GuardedPixels& operator=(const GuardedPixels&) = delete;

  bool guardsStand(std::size_t length) const {
    const auto isGuard = [](std::uint8_t byte) { return byte == guard; };
    return std::all_of(bytes.data(), static_cast<const std::uint8_t*>(pixels), isGuard) &&
           std::all_of(static_cast<const std::uint8_t*>(pixels + length * 4),
                       bytes.data() + bytes.size(), isGuard);
  }

  std::uint8_t* pixels;
};

class PixelFilterAtEveryAlignment : public testing::TestWithParam<bool> {
 protected:
  static constexpr std::size_t mostPixels = 67;

  // Fixed point and exact.
  const PixelFilter filter = makePixelFilter(
      GetParam()
          ? matrixOf({{{0.4F, 0.3F, -0.1F}, {0.7F, 0.7F, 0.1F}, {-0.2F, 0, 1}}}, {0, 0.1F, 0})
          : matrixOf({{{400, 0.3F, -100}, {-300, 0.7F, 0.1F}, {-100, 0, 100}}}, {0, 9, 0}));
  const Bytes source = randomPixels(mostPixels, 11);
  const Bytes expected = [this] {
    Bytes result(source.size());
    for (std::size_t i = 0; i < source.size(); i += 4) {
      if (filter.fixedPoint) {
        filterBlocksPortably(*filter.fixedPoint, &source[i], &result[i], 1, false);
      } else {
        filterExactlyPortably(filter.exact, &source[i], &result[i], 1);
      }
    }
    return result;
  }();
};

TEST_P(PixelFilterAtEveryAlignment, FiltersAnyLengthFromOneBufferToAnother) {
  ASSERT_EQ(filter.fixedPoint.has_value(), GetParam());
  for (std::size_t from = 0; from < 64; ++from) {
    GuardedPixels input(from);
    std::copy(source.begin(), source.end(), input.pixels);
    for (std::size_t to = 0; to < 64; ++to) {
      for (std::size_t length = 0; length <= mostPixels; ++length) {
        GuardedPixels output(to);
        filterPixels(filter, input.pixels, output.pixels, length);
        ASSERT_EQ(std::memcmp(output.pixels, expected.data(), length * 4), 0)
            << "from " << from << " to " << to << ", " << length << " pixels";
        ASSERT_TRUE(output.guardsStand(length))
            << "from " << from << " to " << to << ", " << length << " pixels";
      }
    }
    ASSERT_EQ(std::memcmp(input.pixels, source.data(), source.size()), 0);
  }
}

TEST_P(PixelFilterAtEveryAlignment, FiltersAnyLengthInPlace) {
  for (std::size_t alignment = 0; alignment < 64; ++alignment) {
    for (std::size_t length = 0; length <= mostPixels; ++length) {
      GuardedPixels buffer(alignment);
      std::copy_n(source.begin(), length * 4, buffer.pixels);
      filterPixels(filter, buffer.pixels, buffer.pixels, length);
      ASSERT_EQ(std::memcmp(buffer.pixels, expected.data(), length * 4), 0)
          << "at " << alignment << ", " << length << " pixels";
      ASSERT_TRUE(buffer.guardsStand(length)) << "at " << alignment << ", " << length << " pixels";
    }
  }
}

INSTANTIATE_TEST_SUITE_P(, PixelFilterAtEveryAlignment, testing::Values(true, false),
                         [](const auto& fixed) { return fixed.param ? "FixedPoint" : "Exact"; });

TEST(PixelFilter, FramesTooLargeForTheCachesComeOutTheSame) {
  // Over 4 MiB, with destinations on a block, a few pixels off it and between two pixels.
  constexpr std::size_t pixels = 1100 * 1000 + 5;
  const Bytes source = randomPixels(pixels, 12);
  const PixelFilter filter =
      makePixelFilter(matrixOf({{{0.3F, 0.2F, 0}, {0.6F, 0.8F, 0}, {0.1F, 0, 1}}}, {0, 0, 0}));
  Bytes expected(source.size());
  filterBlocksPortably(*filter.fixedPoint, source.data(), expected.data(), pixels, false);
  for (const std::size_t shift : {0U, 1U, 4U, 28U, 30U, 60U, 63U}) {
    Bytes buffer(source.size() + 64 + 64, 0xA5);
    const std::size_t toBoundary = 64 - reinterpret_cast<std::uintptr_t>(buffer.data()) % 64;
    std::uint8_t* const destination = buffer.data() + toBoundary % 64 + shift;
    filterPixels(filter, source.data(), destination, pixels);
    EXPECT_EQ(std::memcmp(destination, expected.data(), expected.size()), 0) << shift;
    EXPECT_EQ(destination[expected.size()], 0xA5) << shift;
  }
}

TEST(PixelFilter, RowsKeepTheirPaddingAndMayRunUpwards) {
  constexpr std::size_t width = 21;
  constexpr std::size_t height = 5;
  constexpr std::ptrdiff_t sourceStride = 100;
  constexpr std::ptrdiff_t destinationStride = 91;
  const Bytes source = randomPixels(sourceStride * height / 4, 13);
  const EffectMatrix matrix = matrixOf({{{0, 0, 1}, {0, 1, 0}, {1, 0, 0}}}, {0, 0, 0});

  for (const bool upwards : {false, true}) {
    Bytes destination(destinationStride * height, 0xA5);
    std::uint8_t* const first = destination.data() + (upwards ? destinationStride * 4 : 0);
    filterRows(makePixelFilter(matrix), source.data(), sourceStride, first,
               upwards ? -destinationStride : destinationStride, width, height);
    for (std::size_t row = 0; row < height; ++row) {
      const std::size_t written = upwards ? height - 1 - row : row;
      const std::uint8_t* const to = &destination[written * destinationStride];
      const std::uint8_t* const from = &source[row * sourceStride];
      for (std::size_t x = 0; x < width * 4; x += 4) {
        ASSERT_EQ(to[x], from[x + 2]);
        ASSERT_EQ(to[x + 1], from[x + 1]);
        ASSERT_EQ(to[x + 2], from[x]);
        ASSERT_EQ(to[x + 3], from[x + 3]);
      }
      for (std::size_t x = width * 4; x < destinationStride; ++x) ASSERT_EQ(to[x], 0xA5);
    }
  }
}

}  // namespace
}  // namespace tintora
