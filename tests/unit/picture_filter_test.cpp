#include "engine/picture_filter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "engine/brettel_1997.h"
#include "engine/colour_simulation.h"

namespace tintora {
namespace {

template <typename Sample>
std::vector<Sample> randomSamples(std::size_t pixels, unsigned seed) {
  std::mt19937 random(seed);
  std::vector<Sample> samples(pixels * 4);
  for (Sample& sample : samples) sample = static_cast<Sample>(random());
  return samples;
}

// Decodes sRGB by the text of the standard, independently of the engine.
double toLight(double value) {
  return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}
double fromLight(double light) {
  return light <= 0.0031308 ? 12.92 * light : 1.055 * std::pow(light, 1.0 / 2.4) - 0.055;
}

using Rgb = std::array<double, 3>;

// The nearest step of 0..most to what the effect makes of steps of 0..most.
Rgb expectedSteps(const ColourEffect& effect, bool linear, const Rgb& steps, double most) {
  Rgb result;
  for (std::size_t output = 0; output < 3; ++output) {
    double sum = linear ? effect.offset[output] : effect.offset[output] * most;
    for (std::size_t input = 0; input < 3; ++input) {
      const double value = linear ? toLight(steps[input] / most) : steps[input];
      sum += effect.matrix[3 * output + input] * value;
    }
    if (linear) sum = most * fromLight(std::clamp(sum, 0.0, 1.0));
    result[output] = std::floor(std::clamp(sum, 0.0, most) + 0.5);
  }
  return result;
}

ColourTransform oneEffect(const ColourEffect& effect, Light light) {
  return {light, {effect, effect}, {}};
}

// Entries as an effect matrix holds them, so that sums of products are exact in double precision.
ColourEffect randomEffect(std::mt19937& random) {
  std::uniform_real_distribution<float> entry(-0.6F, 1.2F);
  ColourEffect effect;
  for (double& value : effect.matrix) value = entry(random);
  for (double& value : effect.offset) value = entry(random) / 8.0F;
  return effect;
}

TEST(PictureFilter, EveryEncodedSampleIsTheNearestStep) {
  std::mt19937 random(1);
  for (int i = 0; i < 100; ++i) {
    const ColourEffect effect = randomEffect(random);
    const ColourTransform transform = oneEffect(effect, Light::Encoded);
    const auto source8 = randomSamples<std::uint8_t>(203, 2);
    auto pixels8 = source8;
    filterPicture(makePictureFilter(transform, SampleDepth::Bits8), pixels8.data(), 203);
    const auto source16 = randomSamples<std::uint16_t>(203, 3);
    auto pixels16 = source16;
    filterPicture(makePictureFilter(transform, SampleDepth::Bits16), pixels16.data(), 203);
    for (std::size_t p = 0; p < source8.size(); p += 4) {
      const auto* from = &source8[p];
      const Rgb expected =
          expectedSteps(effect, false,
                        {static_cast<double>(from[2]), static_cast<double>(from[1]),
                         static_cast<double>(from[0])},
                        255.0);
      ASSERT_EQ((Rgb{static_cast<double>(pixels8[p + 2]), static_cast<double>(pixels8[p + 1]),
                     static_cast<double>(pixels8[p])}),
                expected);
      ASSERT_EQ(pixels8[p + 3], from[3]);
      const auto* wide = &source16[p];
      const Rgb expectedWide =
          expectedSteps(effect, false,
                        {static_cast<double>(wide[0]), static_cast<double>(wide[1]),
                         static_cast<double>(wide[2])},
                        65535.0);
      ASSERT_EQ((Rgb{static_cast<double>(pixels16[p]), static_cast<double>(pixels16[p + 1]),
                     static_cast<double>(pixels16[p + 2])}),
                expectedWide);
      ASSERT_EQ(pixels16[p + 3], wide[3]);
    }
  }
}

TEST(PictureFilter, HalvesAreRoundedUp) {
  ColourEffect halving;
  for (const std::size_t entry : {0U, 4U, 8U}) halving.matrix[entry] = 0.5;
  std::vector<std::uint8_t> pixels{1,   2, 3, 4, 5, 6, 7, 8, 253, 254,
                                   255, 0, 9, 9, 9, 9, 1, 1, 1,   1};
  filterPicture(makePictureFilter(oneEffect(halving, Light::Encoded), SampleDepth::Bits8),
                pixels.data(), 5);
  EXPECT_EQ(pixels, (std::vector<std::uint8_t>{1,   1, 2, 4, 3, 3, 4, 8, 127, 127,
                                               128, 0, 5, 5, 5, 9, 1, 1, 1,   1}));
}

TEST(PictureFilter, EverySampleInLinearLightIsTheNearestStep) {
  std::mt19937 random(4);
  for (int i = 0; i < 100; ++i) {
    const ColourEffect effect = randomEffect(random);
    const ColourTransform transform = oneEffect(effect, Light::Linear);
    const auto source8 = randomSamples<std::uint8_t>(203, 5);
    auto pixels8 = source8;
    filterPicture(makePictureFilter(transform, SampleDepth::Bits8), pixels8.data(), 203);
    for (std::size_t p = 0; p < source8.size(); p += 4) {
      const auto* from = &source8[p];
      const Rgb expected =
          expectedSteps(effect, true,
                        {static_cast<double>(from[2]), static_cast<double>(from[1]),
                         static_cast<double>(from[0])},
                        255.0);
      ASSERT_EQ((Rgb{static_cast<double>(pixels8[p + 2]), static_cast<double>(pixels8[p + 1]),
                     static_cast<double>(pixels8[p])}),
                expected)
          << "matrix " << i << ", pixel " << p / 4;
    }
  }
  for (int i = 0; i < 5; ++i) {
    const ColourEffect effect = randomEffect(random);
    const auto source = randomSamples<std::uint16_t>(500, 6);
    auto pixels = source;
    filterPicture(makePictureFilter(oneEffect(effect, Light::Linear), SampleDepth::Bits16),
                  pixels.data(), 500);
    for (std::size_t p = 0; p < source.size(); p += 4) {
      const Rgb expected =
          expectedSteps(effect, true,
                        {static_cast<double>(source[p]), static_cast<double>(source[p + 1]),
                         static_cast<double>(source[p + 2])},
                        65535.0);
      ASSERT_EQ((Rgb{static_cast<double>(pixels[p]), static_cast<double>(pixels[p + 1]),
                     static_cast<double>(pixels[p + 2])}),
                expected);
    }
  }
}

TEST(PictureFilter, TheIdentityInLinearLightKeepsEveryStep) {
  const ColourTransform identity = oneEffect({}, Light::Linear);
  std::vector<std::uint8_t> pixels8;
  for (int step = 0; step < 256; ++step) {
    pixels8.insert(pixels8.end(),
                   {static_cast<std::uint8_t>(step), static_cast<std::uint8_t>(255 - step),
                    static_cast<std::uint8_t>(step), 7});
  }
  auto filtered8 = pixels8;
  filterPicture(makePictureFilter(identity, SampleDepth::Bits8), filtered8.data(), 256);
  EXPECT_EQ(filtered8, pixels8);

  std::vector<std::uint16_t> pixels16;
  for (int step = 0; step < 65536; ++step) {
    const auto sample = static_cast<std::uint16_t>(step);
    pixels16.insert(pixels16.end(), {sample, sample, sample, 9});
  }
  auto filtered16 = pixels16;
  filterPicture(makePictureFilter(identity, SampleDepth::Bits16), filtered16.data(), 65536);
  EXPECT_EQ(filtered16, pixels16);
}

TEST(PictureFilter, EachSideOfADivisionHasItsOwnEffect) {
  const ColourSimulation simulation{CvdType::Tritan, 0.8, SimulationAlgorithm::Brettel1997};
  const ColourTransform transform = makeSimulation(simulation);
  const HalfPlanes halfPlanes = simulateOnHalfPlanes(CvdType::Tritan, 0.8);
  const auto source = randomSamples<std::uint8_t>(2000, 7);
  auto pixels = source;
  filterPicture(makePictureFilter(transform, SampleDepth::Bits8), pixels.data(), 2000);
  std::array<int, 2> met{};
  for (std::size_t p = 0; p < source.size(); p += 4) {
    const Rgb steps{static_cast<double>(source[p + 2]), static_cast<double>(source[p + 1]),
                    static_cast<double>(source[p])};
    double side = 0.0;
    for (std::size_t k = 0; k < 3; ++k) {
      side += halfPlanes.division[k] * toLight(steps[k] / 255.0);
    }
    ColourEffect effect;
    effect.matrix = halfPlanes.projections[side < 0.0 ? 1 : 0];
    ++met[side < 0.0 ? 1 : 0];
    ASSERT_EQ((Rgb{static_cast<double>(pixels[p + 2]), static_cast<double>(pixels[p + 1]),
                   static_cast<double>(pixels[p])}),
              expectedSteps(effect, true, steps, 255.0));
  }
  EXPECT_GT(std::min(met[0], met[1]), 100);
}

TEST(PictureFilter, NotANumberBecomesBlackAndInfinitySaturates) {
  ColourEffect effect;
  effect.matrix[0] = std::numeric_limits<double>::quiet_NaN();
  effect.matrix[4] = std::numeric_limits<double>::infinity();
  effect.matrix[8] = -std::numeric_limits<double>::infinity();
  for (const Light light : {Light::Encoded, Light::Linear}) {
    const ColourTransform transform = oneEffect(effect, light);
    std::vector<std::uint8_t> pixels{10, 20, 30, 40};
    filterPicture(makePictureFilter(transform, SampleDepth::Bits8), pixels.data(), 1);
    EXPECT_EQ(pixels, (std::vector<std::uint8_t>{0, 255, 0, 40}));
    std::vector<std::uint16_t> wide{30, 20, 10, 40};
    filterPicture(makePictureFilter(transform, SampleDepth::Bits16), wide.data(), 1);
    EXPECT_EQ(wide, (std::vector<std::uint16_t>{0, 65535, 0, 40}));
  }
}

}  // namespace
}  // namespace tintora
