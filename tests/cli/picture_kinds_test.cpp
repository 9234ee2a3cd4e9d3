// What kind of pixels a filtered file has, and how much memory filtering takes.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "tests/cli/filtered_picture.h"
#include "tests/cli/image_samples.h"
#include "tests/cli/jpeg_samples.h"
#include "tests/cli/png_samples.h"
#include "tests/cli/tool_run.h"

namespace tintora::cli {
namespace {

struct Kind {
  int colourType;
  int depth;
};

TEST(PictureKinds, EveryKindOfPngIsKeptIfTheResultAllows) {
  for (const Kind& kind :
       {Kind{PNG_COLOR_TYPE_GRAY, 1}, Kind{PNG_COLOR_TYPE_GRAY, 2}, Kind{PNG_COLOR_TYPE_GRAY, 4},
        Kind{PNG_COLOR_TYPE_GRAY, 8}, Kind{PNG_COLOR_TYPE_GRAY, 16},
        Kind{PNG_COLOR_TYPE_GRAY_ALPHA, 8}, Kind{PNG_COLOR_TYPE_GRAY_ALPHA, 16},
        Kind{PNG_COLOR_TYPE_RGB, 8}, Kind{PNG_COLOR_TYPE_RGB, 16},
        Kind{PNG_COLOR_TYPE_RGB_ALPHA, 8}, Kind{PNG_COLOR_TYPE_RGB_ALPHA, 16},
        Kind{PNG_COLOR_TYPE_PALETTE, 1}, Kind{PNG_COLOR_TYPE_PALETTE, 2},
        Kind{PNG_COLOR_TYPE_PALETTE, 4}, Kind{PNG_COLOR_TYPE_PALETTE, 8}}) {
    for (const bool interlaced : {false, true}) {
      SCOPED_TRACE(std::to_string(kind.colourType) + ", " + std::to_string(kind.depth));
      PngSpec spec = randomPng(kind.colourType, kind.depth);
      spec.interlaced = interlaced;
      const Bytes result = filtered(pngFile(spec), inverting);
      EXPECT_EQ(kindOf(result), std::pair(kind.colourType, kind.depth));
      EXPECT_EQ(decodeImage(result).pixels, expectedFrom(expectedPixels(spec), inverting));
    }
  }
}

// A slope with noise, as in photographs.
PngSpec noisySlope(int colourType) {
  PngSpec spec = randomPng(colourType, 8);
  spec.width = spec.height = 200;
  std::mt19937 random(1);
  spec.samples.resize(spec.width * spec.height * channelsOf(colourType));
  const std::size_t rowLength = spec.samples.size() / spec.height;
  for (std::size_t i = 0; i < spec.samples.size(); ++i) {
    spec.samples[i] =
        static_cast<std::uint16_t>(20 + (i % rowLength + i / rowLength) / 8 + random() % 12);
  }
  return spec;
}

std::size_t sizeInverted(PngSpec spec) {
  for (auto& sample : spec.samples) sample = static_cast<std::uint16_t>(255 - sample);
  return pngFile(spec).size();
}

TEST(PictureKinds, PhotographsArePackedMoreTightlyThanByTheDefaultOfTheLibrary) {
  for (const int colourType : {PNG_COLOR_TYPE_GRAY, PNG_COLOR_TYPE_RGB}) {
    const PngSpec spec = noisySlope(colourType);
    const std::size_t usual = sizeInverted(spec);
    EXPECT_LT(filtered(pngFile(spec), inverting).size(), usual) << colourType;
    const TemporaryFolder folder;
    const Bytes file = pngFile(spec);
    const std::string in = folder.write("in.png", {file.begin(), file.end()});
    EXPECT_EQ(runTool({"filter", "--mode", "invert", in, folder / "out.png"}).status, 0);
    EXPECT_LT(std::filesystem::file_size(folder / "out.png"), usual) << colourType;
  }
}

TEST(PictureKinds, WhatRepeatsInADrawingTakesNoSpaceAgain) {
  PngSpec spec = randomPng(PNG_COLOR_TYPE_RGB, 8);
  const std::vector<std::uint16_t> tile = spec.samples;
  const std::size_t width = spec.width;
  const std::size_t height = spec.height;
  spec.width = spec.height = 300;
  spec.samples.clear();
  for (std::size_t y = 0; y < spec.height; ++y) {
    for (std::size_t x = 0; x < 3 * spec.width; ++x) {
      spec.samples.push_back(tile[y % height * 3 * width + x % (3 * width)]);
    }
  }
  EXPECT_LT(filtered(pngFile(spec), inverting).size(), sizeInverted(spec) * 3 / 2);
}

TEST(PictureKinds, APaletteKeepsItsIndicesItsLengthAndItsAlpha) {
  PngSpec spec = randomPng(PNG_COLOR_TYPE_PALETTE, 4);
  spec.palette.resize(11);
  for (auto& sample : spec.samples) sample = static_cast<std::uint16_t>(sample % 11);
  spec.paletteAlpha = {7, 0, 99};
  const Bytes result = filtered(pngFile(spec), redOnly);
  Bytes colours;
  for (const png_color& colour : spec.palette) {
    colours = joined(colours, {colour.red, 0, 0});
  }
  for (const auto& [name, data] : chunksOf(result)) {
    if (name == "PLTE") {
      EXPECT_EQ(data, colours);
    }
    if (name == "tRNS") {
      EXPECT_EQ(data, spec.paletteAlpha);
    }
  }
  EXPECT_TRUE(hasChunk(result, "PLTE"));
  EXPECT_TRUE(hasChunk(result, "tRNS"));
  EXPECT_EQ(decodeImage(result).pixels, expectedFrom(expectedPixels(spec), redOnly));
}

TEST(PictureKinds, APixelBeyondThePaletteIsRefused) {
  PngSpec spec = randomPng(PNG_COLOR_TYPE_PALETTE, 4);
  Bytes file = pngFile(spec);
  spec.palette.resize(3);
  Bytes colours;
  for (const png_color& colour : spec.palette) {
    colours = joined(colours, {colour.red, colour.green, colour.blue});
  }
  Bytes shorter(file.begin(), file.begin() + 8);
  for (const auto& [name, data] : chunksOf(file)) {
    shorter = joined(shorter, pngChunk(name, name == "PLTE" ? colours : data));
  }
  EXPECT_THROW(filtered(shorter, inverting), ImageReadError);
}

TEST(PictureKinds, GreysThatBecomeColoursMakeAPaletteOrAColourPicture) {
  for (const int depth : {1, 2, 4, 8}) {
    const PngSpec spec = randomPng(PNG_COLOR_TYPE_GRAY, depth);
    const Bytes result = filtered(pngFile(spec), redOnly);
    EXPECT_EQ(kindOf(result), std::pair(PNG_COLOR_TYPE_PALETTE, depth));
    EXPECT_EQ(decodeImage(result).pixels, expectedFrom(expectedPixels(spec), redOnly));
  }
  for (const int depth : {8, 16}) {
    const PngSpec spec = randomPng(PNG_COLOR_TYPE_GRAY_ALPHA, depth);
    const Bytes result = filtered(pngFile(spec), redOnly);
    EXPECT_EQ(kindOf(result), std::pair(PNG_COLOR_TYPE_RGB_ALPHA, depth));
    EXPECT_EQ(decodeImage(result).pixels, expectedFrom(expectedPixels(spec), redOnly));
  }
  const PngSpec wide = randomPng(PNG_COLOR_TYPE_GRAY, 16);
  EXPECT_EQ(kindOf(filtered(pngFile(wide), redOnly)), std::pair(PNG_COLOR_TYPE_RGB, 16));
}

TEST(PictureKinds, GreysBetweenThoseOfTheDepthMakeAPalette) {
  const PngSpec spec = randomPng(PNG_COLOR_TYPE_GRAY, 2);
  const ColourTransform darker = transformOf(contrastEffect(0.5));
  const Bytes result = filtered(pngFile(spec), darker);
  EXPECT_EQ(kindOf(result), std::pair(PNG_COLOR_TYPE_PALETTE, 2));
  EXPECT_EQ(decodeImage(result).pixels, expectedFrom(expectedPixels(spec), darker));
}

TEST(PictureKinds, TransparentGreysAndColoursStayTransparent) {
  for (const auto& [colourType, depth] :
       {std::pair(PNG_COLOR_TYPE_GRAY, 4), std::pair(PNG_COLOR_TYPE_GRAY, 8),
        std::pair(PNG_COLOR_TYPE_GRAY, 16), std::pair(PNG_COLOR_TYPE_RGB, 8),
        std::pair(PNG_COLOR_TYPE_RGB, 16)}) {
    PngSpec spec = randomPng(colourType, depth);
    spec.transparent =
        png_color_16{0, spec.samples[0], spec.samples[1], spec.samples[2], spec.samples[0]};
    const Bytes result = filtered(pngFile(spec), inverting);
    EXPECT_EQ(kindOf(result).second, depth);
    EXPECT_EQ(decodeImage(result).pixels, expectedFrom(expectedPixels(spec), inverting));
  }
}

TEST(PictureKinds, SixteenBitsAreComputedAtSixteen) {
  const PngSpec spec = randomPng(PNG_COLOR_TYPE_GRAY, 16);
  const ColourTransform half = transformOf(contrastEffect(0.5));
  const Bytes result = filtered(pngFile(spec), half);
  ASSERT_EQ(kindOf(result), std::pair(PNG_COLOR_TYPE_GRAY, 16));
  PngSpec expected = spec;
  for (auto& sample : expected.samples) {
    sample = static_cast<std::uint16_t>(std::floor(0.5 * sample + 0.25 * 65535.0 + 0.5));
  }
  EXPECT_EQ(chunksOf(filtered(pngFile(expected), transformOf({}))), chunksOf(result));
}

TEST(PictureKinds, GreyJpegStaysGreyUnlessTheResultHasColours) {
  JpegSpec grey;
  grey.in = JCS_GRAYSCALE;
  const Bytes file = jpegFile(smoothImage(24, 16), grey);
  const auto channelsOfJpeg = [](const Bytes& jpeg) {
    return static_cast<int>(jpeg.at(findMarker(jpeg, frameMarker) + 9));
  };
  EXPECT_EQ(channelsOfJpeg(filtered(file, inverting, ImageFormat::Jpeg)), 1);
  EXPECT_EQ(channelsOfJpeg(filtered(file, redOnly, ImageFormat::Jpeg)), 3);
  const Bytes png = filtered(file, inverting);
  EXPECT_EQ(kindOf(png), std::pair(PNG_COLOR_TYPE_GRAY, 8));
  EXPECT_EQ(decodeImage(png).pixels, expectedFrom(decodeImage(file).pixels, inverting));
}

TEST(PictureKinds, EveryKindOfPngBecomesJpeg) {
  for (const int colourType : {PNG_COLOR_TYPE_GRAY, PNG_COLOR_TYPE_RGB, PNG_COLOR_TYPE_PALETTE}) {
    for (const int depth : {1, 4, 8, 16}) {
      const bool exists =
          colourType == PNG_COLOR_TYPE_GRAY || (colourType == PNG_COLOR_TYPE_RGB) == (depth >= 8);
      if (!exists && !(colourType == PNG_COLOR_TYPE_PALETTE && depth == 8)) continue;
      PngSpec spec = randomPng(colourType, depth);
      std::fill(spec.samples.begin(), spec.samples.end(), spec.samples[3]);
      const Bytes result = filtered(pngFile(spec), inverting, ImageFormat::Jpeg);
      EXPECT_LE(largestDifference(decodeImage(result).pixels,
                                  expectedFrom(expectedPixels(spec), inverting)),
                3)
          << colourType << ", " << depth;
    }
  }
}

TEST(PictureKinds, GreysBecomeJpegIfNoneOfThemIsTheTransparentOne) {
  for (const int depth : {1, 2, 4}) {
    SCOPED_TRACE(depth);
    PngSpec spec = randomPng(PNG_COLOR_TYPE_GRAY, depth);
    const auto white = static_cast<std::uint16_t>((1 << depth) - 1);
    std::ranges::fill(spec.samples, white);
    const auto beyond = static_cast<std::uint8_t>(white + 1);
    const Bytes file = withChunkBefore(pngFile(spec), "IDAT", pngChunk("tRNS", {0, beyond}));
    const Bytes result = filtered(file, inverting, ImageFormat::Jpeg);
    EXPECT_LE(largestDifference(decodeImage(result).pixels,
                                expectedFrom(expectedPixels(spec), inverting)),
              3);
  }
}

TEST(PictureKinds, AnAnimationIsRefused) {
  const Bytes still = pngFile(randomPng(PNG_COLOR_TYPE_RGB, 8));
  const Bytes animated = withChunkBefore(still, "IDAT", pngChunk("acTL", Bytes(8, 1)));
  EXPECT_TRUE(contains(refusalOf(animated), "animated (APNG)"));
}

TEST(PictureMemory, AClaimOfManyPixelsTakesNoMemory) {
  const TemporaryFolder folder;
  for (const bool interlaced : {false, true}) {
    Bytes file = pngOfSize(16384, 16384);
    if (interlaced) {
      Bytes header(file.begin() + 16, file.begin() + 29);
      header[12] = 1;
      const Bytes chunk = pngChunk("IHDR", header);
      std::copy(chunk.begin(), chunk.end(), file.begin() + 8);
    }
    const std::string in = folder.write("in.png", {file.begin(), file.end()});
    EXPECT_EQ(runTool({"filter", in, folder / "out.png"}).status, 1);
  }
  rusage usage{};
  ASSERT_EQ(getrusage(RUSAGE_CHILDREN, &usage), 0);
  constexpr long mostKilobytes = 300000;  // a sanitized process begins with some 60 MB
  EXPECT_LT(usage.ru_maxrss, mostKilobytes);
}

}  // namespace
}  // namespace tintora::cli
