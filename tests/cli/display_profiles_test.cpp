// Pictures with the colour profile of another display, in linear light.
#include <gtest/gtest.h>
#include <lcms2.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include "engine/srgb.h"
#include "spectral/matrix3x3.h"
#include "tests/cli/filtered_picture.h"
#include "tests/cli/png_samples.h"
#include "tests/cli/saved_profile.h"

namespace tintora::cli {
namespace {

constexpr cmsCIExyYTRIPLE p3Primaries{{0.68, 0.32, 1.0}, {0.265, 0.69, 1.0}, {0.15, 0.06, 1.0}};

Bytes p3Profile(double gamma) {
  cmsToneCurve* const curve = cmsBuildGamma(nullptr, gamma);
  cmsToneCurve* const curves[3] = {curve, curve, curve};
  Bytes bytes = savedProfile(cmsCreateRGBProfile(&d65, &p3Primaries, curves));
  cmsFreeToneCurve(curve);
  return bytes;
}

// A profile whose red and green depend on each other, by a table of 2x2x2 colours in CIELAB.
Bytes tableProfile() {
  cmsHPROFILE profile = cmsCreateProfilePlaceholder(nullptr);
  cmsSetProfileVersion(profile, 4.3);
  cmsSetDeviceClass(profile, cmsSigColorSpaceClass);
  cmsSetColorSpace(profile, cmsSigRgbData);
  cmsSetPCS(profile, cmsSigLabData);
  cmsPipeline* const pipeline = cmsPipelineAlloc(nullptr, 3, 3);
  std::array<cmsUInt16Number, 24> lab{};
  for (std::size_t i = 0; i < 8; ++i) {
    // Dark unless both red and green are on.
    lab[3 * i] = (i & 6) == 6 ? 0xC000 : 0x3000;
    lab[3 * i + 1] = lab[3 * i + 2] = 0x8080;
  }
  // Tables have curves before and behind them.
  cmsStage* const stages[] = {cmsStageAllocToneCurves(nullptr, 3, nullptr),
                              cmsStageAllocCLut16bit(nullptr, 2, 3, 3, lab.data()),
                              cmsStageAllocToneCurves(nullptr, 3, nullptr)};
  for (cmsStage* const stage : stages) cmsPipelineInsertStage(pipeline, cmsAT_END, stage);
  cmsWriteTag(profile, cmsSigAToB0Tag, pipeline);
  cmsWriteTag(profile, cmsSigMediaWhitePointTag, cmsD50_XYZ());
  cmsPipelineFree(pipeline);
  return savedProfile(profile);
}

// The columns of 3x3 matrices from linear R, G, B to X, Y, Z: the primaries in the amounts that
// make up the white of D65.
Matrix3x3 toXyz(const cmsCIExyYTRIPLE& primaries) {
  Matrix3x3 columns;
  const std::array<cmsCIExyY, 3> all{primaries.Red, primaries.Green, primaries.Blue};
  for (std::size_t i = 0; i < 3; ++i) {
    columns[i] = all[i].x / all[i].y;
    columns[3 + i] = 1.0;
    columns[6 + i] = (1.0 - all[i].x - all[i].y) / all[i].y;
  }
  const std::array<double, 3> white{d65.x / d65.y, 1.0, (1.0 - d65.x - d65.y) / d65.y};
  const Matrix3x3 inverse = invert3x3(columns).matrix;
  for (std::size_t i = 0; i < 3; ++i) {
    double amount = 0.0;
    for (std::size_t k = 0; k < 3; ++k) amount += inverse[3 * i + k] * white[k];
    for (std::size_t row = 0; row < 3; ++row) columns[3 * row + i] *= amount;
  }
  return columns;
}

// The effect mixes red and green, so that it shows whether they were clamped before.
TEST(DisplayProfiles, WithOtherPrimariesAreConvertedAndWhatTheDisplayCannotShowIsClamped) {
  constexpr double gamma = 2.2;
  PngSpec spec = randomPng(PNG_COLOR_TYPE_RGB, 8);
  spec.iccProfile = p3Profile(gamma);
  const Bytes before = expectedPixels(spec);
  const ColourEffect mixing{{0.5, 0.5, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 1.0}, {}};
  const Bytes result = filtered(pngFile(spec), transformOf(mixing, Light::Linear));
  const Bytes after = decodeImage(result).pixels;
  const Matrix3x3 m = multiply3x3(invert3x3(toXyz(srgbPrimaries)).matrix, toXyz(p3Primaries));
  int clamped = 0;
  for (std::size_t i = 0; i < before.size(); i += 4) {
    std::array<double, 3> light{};
    for (std::size_t row = 0; row < 3; ++row) {
      for (std::size_t k = 0; k < 3; ++k) {
        light[row] += m[3 * row + k] * std::pow(before[i + 2 - k] / 255.0, gamma);
      }
      if (light[row] < 0.0 || light[row] > 1.0) ++clamped;
      light[row] = std::clamp(light[row], 0.0, 1.0);
    }
    light[0] = (light[0] + light[1]) / 2.0;
    // Half a step of rounding, and as much again because profiles hold their matrix in 16 bits.
    for (std::size_t row = 0; row < 3; ++row) {
      ASSERT_NEAR(after[i + 2 - row], 255.0 * encodeSrgb(light[row]), 1.0);
    }
  }
  EXPECT_GT(clamped, 10);
}

// Red and green alone are as dark as black, and together bright.
TEST(DisplayProfiles, ThatAreTablesAreConvertedToo) {
  PngSpec spec = randomPng(PNG_COLOR_TYPE_RGB, 8);
  spec.iccProfile = tableProfile();
  for (std::size_t i = 0; i < spec.samples.size(); ++i) {
    const bool isOn = i % 3 == 2 || ((i / 3) & (i % 3 + 1)) != 0;
    spec.samples[i] = isOn ? 255 : 0;
  }
  const Bytes before = expectedPixels(spec);
  const Bytes after = decodeImage(filtered(pngFile(spec), transformOf({}, Light::Linear))).pixels;
  for (std::size_t i = 0; i < before.size(); i += 4) {
    const bool isBright = before[i + 2] == 255 && before[i + 1] == 255;
    ASSERT_EQ(after[i + 2] > 128, isBright) << i;
  }
}

}  // namespace
}  // namespace tintora::cli
