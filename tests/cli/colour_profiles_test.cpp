// What becomes of the colour profile of a filtered file.
#include <gtest/gtest.h>
#include <lcms2.h>

#include <cmath>
#include <cstdint>
#include <utility>

#include "engine/srgb.h"
#include "tests/cli/filtered_picture.h"
#include "tests/cli/png_samples.h"
#include "tests/cli/saved_profile.h"

namespace tintora::cli {
namespace {

// The primaries of sRGB, with another transfer function: a plain gamma.
Bytes gammaProfile(double gamma, bool grey) {
  cmsToneCurve* const curve = cmsBuildGamma(nullptr, gamma);
  cmsToneCurve* const curves[3] = {curve, curve, curve};
  cmsHPROFILE profile = grey ? cmsCreateGrayProfile(cmsD50_xyY(), curve)
                             : cmsCreateRGBProfile(&d65, &srgbPrimaries, curves);
  Bytes bytes = savedProfile(profile);
  cmsFreeToneCurve(curve);
  return bytes;
}

int seenInSrgb(int step, double gamma) {
  return static_cast<int>(std::lround(255.0 * encodeSrgb(std::pow(step / 255.0, gamma))));
}

TEST(Profiles, AreConvertedToSrgbInLinearLightAndLeftOut) {
  PngSpec spec = randomPng(PNG_COLOR_TYPE_RGB, 8);
  spec.iccProfile = gammaProfile(1.8, false);
  const Bytes before = expectedPixels(spec);
  for (const bool wide : {false, true}) {
    if (wide) {
      spec.depth = 16;
      for (auto& sample : spec.samples) sample = static_cast<std::uint16_t>(sample * 257);
    }
    const Bytes result = filtered(pngFile(spec), transformOf({}, Light::Linear));
    const Image image = decodeImage(result);
    EXPECT_EQ(kindOf(result).second, wide ? 16 : 8);
    EXPECT_EQ(image.iccProfile, Bytes{});
    EXPECT_EQ(image.pngColourSpace.srgbIntent, 1);
    for (std::size_t i = 0; i < before.size(); ++i) {
      if (i % 4 == 3) continue;
      ASSERT_NEAR(image.pixels[i], seenInSrgb(before[i], 1.8), 1);
    }
  }
}

TEST(Profiles, OfPalettesAndGreysAreConvertedToo) {
  PngSpec palette = randomPng(PNG_COLOR_TYPE_PALETTE, 8);
  palette.iccProfile = gammaProfile(1.8, false);
  PngSpec grey = randomPng(PNG_COLOR_TYPE_GRAY, 8);
  grey.iccProfile = gammaProfile(1.8, true);
  PngSpec greyAlpha = randomPng(PNG_COLOR_TYPE_GRAY_ALPHA, 8);
  greyAlpha.iccProfile = grey.iccProfile;
  for (const PngSpec& spec : {palette, grey, greyAlpha}) {
    ASSERT_TRUE(hasChunk(pngFile(spec), "iCCP"));
    const Bytes result = filtered(pngFile(spec), transformOf({}, Light::Linear));
    EXPECT_EQ(kindOf(result), std::pair(spec.colourType, spec.depth));
    EXPECT_FALSE(hasChunk(result, "iCCP"));
    const Bytes before = expectedPixels(spec);
    const Bytes after = decodeImage(result).pixels;
    for (std::size_t i = 0; i < before.size(); ++i) {
      ASSERT_NEAR(after[i], i % 4 == 3 ? before[i] : seenInSrgb(before[i], 1.8), 1);
    }
  }
}

TEST(Profiles, StayOnEncodedValuesAndForSrgb) {
  PngSpec spec = randomPng(PNG_COLOR_TYPE_RGB, 8);
  spec.iccProfile = gammaProfile(1.8, false);
  const Image encoded = decodeImage(filtered(pngFile(spec), inverting));
  EXPECT_EQ(encoded.iccProfile, spec.iccProfile);
  EXPECT_EQ(encoded.pixels, expectedFrom(expectedPixels(spec), inverting));

  spec.iccProfile = savedProfile(cmsCreate_sRGBProfile());
  const Image linear = decodeImage(filtered(pngFile(spec), transformOf({}, Light::Linear)));
  EXPECT_EQ(linear.iccProfile, spec.iccProfile);
  EXPECT_EQ(linear.pixels, expectedPixels(spec));
}

TEST(Profiles, ThatCannotBeUsedAreIgnored) {
  PngSpec spec = randomPng(PNG_COLOR_TYPE_RGB, 8);
  spec.iccProfile = profileOf("RGB ");
  const Image image = decodeImage(filtered(pngFile(spec), transformOf({}, Light::Linear)));
  EXPECT_EQ(image.pixels, expectedPixels(spec));
}

TEST(Profiles, ForGreysStayWithGreys) {
  PngSpec spec = randomPng(PNG_COLOR_TYPE_GRAY, 8);
  spec.iccProfile = gammaProfile(1.8, true);
  EXPECT_TRUE(hasChunk(filtered(pngFile(spec), inverting), "iCCP"));
  EXPECT_FALSE(hasChunk(filtered(pngFile(spec), redOnly), "iCCP"));
}

}  // namespace
}  // namespace tintora::cli
