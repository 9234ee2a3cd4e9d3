// What a filtered file is, beside its colours: its kind of pixels, its profile and its EXIF data.
#include <gtest/gtest.h>
#include <lcms2.h>
#include <sys/resource.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <string>
#include <tuple>

#include "cli/exif.h"
#include "cli/filter_stream.h"
#include "cli/image_file.h"
#include "engine/colour_simulation.h"
#include "tests/cli/image_samples.h"
#include "tests/cli/jpeg_samples.h"
#include "tests/cli/png_samples.h"
#include "tests/cli/tool_run.h"

namespace tintora::cli {
namespace {

ColourTransform transformOf(const ColourEffect& effect, Light light = Light::Encoded) {
  return {light, {effect, effect}, {}};
}

const ColourTransform inverting = transformOf(invertEffect());
const ColourTransform redOnly = transformOf(filterEffect({1.0, 0.0, 0.0}, 1.0));

Bytes filtered(const Bytes& file, const ColourTransform& transform,
               ImageFormat format = ImageFormat::Png) {
  ByteSource source;
  source.rest = file;
  ByteSink sink;
  filterStream(source, sink, FilterSet(transform), {format, 95, defaultPixelLimit});
  return sink.bytes;
}

// Colour type and bits of a PNG file.
std::pair<int, int> kindOf(const Bytes& png) {
  return {png.at(25), png.at(24)};
}

// What the transform makes of each pixel, by its definition.
Bytes expectedFrom(Bytes pixels, const ColourTransform& transform) {
  for (std::size_t i = 0; i < pixels.size(); i += 4) {
    const Colour shown = transformColour(
        transform, {pixels[i + 2] / 255.0, pixels[i + 1] / 255.0, pixels[i] / 255.0});
    for (std::size_t k = 0; k < 3; ++k) {
      pixels[i + 2 - k] = static_cast<std::uint8_t>(std::lround(shown[k] * 255.0));
    }
  }
  return pixels;
}

struct Kind {
  int colourType;
  int depth;
};

TEST(PictureKinds, EveryKindOfPngStaysWhatItIsWhereTheResultAllows) {
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

TEST(PictureKinds, GreyJpegStaysGreyAndBecomesColourOnlyWhereItMust) {
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

TEST(PictureKinds, AnAnimationIsRefused) {
  const Bytes still = pngFile(randomPng(PNG_COLOR_TYPE_RGB, 8));
  const Bytes animated = withChunkBefore(still, "IDAT", pngChunk("acTL", Bytes(8, 1)));
  EXPECT_TRUE(contains(refusalOf(animated), "animated (APNG)"));
}

// ---- Memory

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

// ---- EXIF data

// One directory with an orientation, and another with a thumbnail of five bytes at the end.
Bytes exifWithThumbnail(int orientation, bool bigEndian) {
  Bytes exif = bytesOf(bigEndian ? "MM\0*"s : "II*\0"s);
  const auto number = [&](std::uint32_t value, std::size_t bytes) {
    for (std::size_t i = 0; i < bytes; ++i) {
      const std::size_t shift = 8 * (bigEndian ? bytes - 1 - i : i);
      exif.push_back(static_cast<std::uint8_t>(value >> shift));
    }
  };
  const auto entry = [&](std::uint32_t tag, std::uint32_t type, std::uint32_t value) {
    number(tag, 2);
    number(type, 2);
    number(1, 4);
    number(value, type == 3 ? 2 : 4);
    if (type == 3) number(0, 2);
  };
  number(8, 4);
  number(1, 2);
  entry(0x0112, 3, static_cast<std::uint32_t>(orientation));
  number(26, 4);
  number(2, 2);
  entry(0x0201, 4, 56);
  entry(0x0202, 4, 5);
  number(0, 4);
  EXPECT_EQ(exif.size(), 56U);
  return joined(exif, bytesOf("thumb"));
}

TEST(Exif, TheThumbnailIsCutOffAndTheRestStays) {
  for (const bool bigEndian : {false, true}) {
    const Bytes whole = exifWithThumbnail(6, bigEndian);
    Bytes cut = whole;
    dropExifThumbnail(cut);
    Bytes expected(whole.begin(), whole.begin() + 56);
    std::fill_n(expected.begin() + 22, 4, std::uint8_t{0});
    EXPECT_EQ(cut, expected);

    Bytes followed = joined(whole, bytesOf("notes"));
    dropExifThumbnail(followed);
    EXPECT_EQ(followed, joined(expected, bytesOf("\0\0\0\0\0notes"s)));
  }
}

TEST(Exif, DamagedDataIsLeftAloneWhereverItIsCut) {
  for (const bool bigEndian : {false, true}) {
    const Bytes whole = exifWithThumbnail(6, bigEndian);
    for (std::size_t length = 0; length <= whole.size(); ++length) {
      for (std::size_t i = 0; i < length; ++i) {
        Bytes exif = slice(whole, 0, length);
        exif[i] = static_cast<std::uint8_t>(~exif[i]);
        const int orientation = exifOrientation(exif);
        EXPECT_GE(orientation, 1);
        EXPECT_LE(orientation, 8);
        setExifUpright(exif);
        dropExifThumbnail(exif);
        EXPECT_LE(exif.size(), length);
      }
    }
  }
}

Bytes exifOfJpeg(const Bytes& file) {
  return decodeImage(file).exif;
}

JpegSpec withExif(const Bytes& exif) {
  JpegSpec spec;
  spec.markers = {{JPEG_APP0 + 1, joined(bytesOf("Exif\0\0"s), exif)}};
  return spec;
}

TEST(Exif, JpegKeepsItsOrientationAndLosesItsThumbnail) {
  const Bytes file = jpegFile(smoothImage(24, 16), withExif(exifWithThumbnail(6, true)));
  const Bytes result = filtered(file, inverting, ImageFormat::Jpeg);
  EXPECT_EQ(exifOrientation(exifOfJpeg(result)), 6);
  EXPECT_EQ(exifOfJpeg(result).size(), 56U);
  const Image image = decodeImage(result);
  EXPECT_EQ(std::pair(image.width, image.height), std::pair(24U, 16U));
}

TEST(Exif, APngFileHasOneChunkOfIt) {
  for (const bool atEnd : {false, true}) {
    PngSpec spec = randomPng(PNG_COLOR_TYPE_RGB, 8);
    spec.exif = exifOf();
    spec.exifAtEnd = atEnd;
    const auto chunks = chunksOf(filtered(pngFile(spec), inverting));
    EXPECT_EQ(std::count_if(chunks.begin(), chunks.end(),
                            [](const auto& chunk) { return chunk.first == "eXIf"; }),
              1);
  }
  Image image = randomImage(4, 4, false, 1);
  image.exif = exifOf();
  const auto chunks = chunksOf(encodeImage(image, ImageFormat::Png));
  EXPECT_EQ(std::count_if(chunks.begin(), chunks.end(),
                          [](const auto& chunk) { return chunk.first == "eXIf"; }),
            1);
}

// Where row 0 and column 0 of the stored picture are seen, in the words of EXIF 2.3.
enum class Side { Top, Bottom, Left, Right };
constexpr std::array<std::pair<Side, Side>, 8> seenAt{{{Side::Top, Side::Left},
                                                       {Side::Top, Side::Right},
                                                       {Side::Bottom, Side::Right},
                                                       {Side::Bottom, Side::Left},
                                                       {Side::Left, Side::Top},
                                                       {Side::Right, Side::Top},
                                                       {Side::Right, Side::Bottom},
                                                       {Side::Left, Side::Bottom}}};

TEST(Exif, TheOrientationIsAppliedWhereJpegBecomesPng) {
  const Image smooth = smoothImage(24, 16);
  for (std::size_t orientation = 1; orientation <= 8; ++orientation) {
    SCOPED_TRACE(orientation);
    JpegSpec spec = withExif(exifWithThumbnail(static_cast<int>(orientation), false));
    spec.density = {1, 72, 144};
    const Bytes file = jpegFile(smooth, spec);
    const Bytes stored = expectedFrom(decodeImage(file).pixels, inverting);
    const Image seen = decodeImage(filtered(file, inverting));
    const bool sideways = orientation >= 5;
    ASSERT_EQ(seen.width, sideways ? 16U : 24U);
    ASSERT_EQ(seen.height, sideways ? 24U : 16U);
    const auto& [rowSide, columnSide] = seenAt[orientation - 1];
    const auto place = [&](Side side, std::size_t i, std::size_t& x, std::size_t& y) {
      if (side == Side::Top) y = i;
      if (side == Side::Bottom) y = seen.height - 1 - i;
      if (side == Side::Left) x = i;
      if (side == Side::Right) x = seen.width - 1 - i;
    };
    for (std::size_t row = 0; row < 16; ++row) {
      for (std::size_t column = 0; column < 24; ++column) {
        std::size_t x = 0;
        std::size_t y = 0;
        place(rowSide, row, x, y);
        place(columnSide, column, x, y);
        for (std::size_t k = 0; k < 4; ++k) {
          ASSERT_EQ(seen.pixels[(y * seen.width + x) * 4 + k], stored[(row * 24 + column) * 4 + k]);
        }
      }
    }
    EXPECT_EQ(exifOrientation(seen.exif), 1);
    ASSERT_TRUE(seen.density.has_value());
    EXPECT_EQ(seen.density->across < seen.density->down, !sideways);
  }
}

// ---- Colour profiles

Bytes bytesOfProfile(cmsHPROFILE profile) {
  cmsUInt32Number size = 0;
  EXPECT_TRUE(cmsSaveProfileToMem(profile, nullptr, &size));
  Bytes bytes(size);
  EXPECT_TRUE(cmsSaveProfileToMem(profile, bytes.data(), &size));
  cmsCloseProfile(profile);
  return bytes;
}

// The primaries of sRGB, with another transfer function: a plain gamma.
Bytes gammaProfile(double gamma, bool grey) {
  cmsToneCurve* const curve = cmsBuildGamma(nullptr, gamma);
  const cmsCIExyY white{0.3127, 0.3290, 1.0};
  const cmsCIExyYTRIPLE primaries{{0.64, 0.33, 1.0}, {0.30, 0.60, 1.0}, {0.15, 0.06, 1.0}};
  cmsToneCurve* const curves[3] = {curve, curve, curve};
  const cmsHPROFILE profile = grey ? cmsCreateGrayProfile(cmsD50_xyY(), curve)
                                   : cmsCreateRGBProfile(&white, &primaries, curves);
  const Bytes bytes = bytesOfProfile(profile);
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

  spec.iccProfile = bytesOfProfile(cmsCreate_sRGBProfile());
  const Image linear = decodeImage(filtered(pngFile(spec), transformOf({}, Light::Linear)));
  EXPECT_EQ(linear.iccProfile, spec.iccProfile);
  EXPECT_EQ(linear.pixels, expectedPixels(spec));
}

TEST(Profiles, ThatCannotBeUsedAreNoObstacle) {
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
