#include <gtest/gtest.h>
#include <png.h>

#include <cstdint>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <tuple>

#include "cli/image_file.h"
#include "tests/cli/image_samples.h"
#include "tests/cli/jpeg_samples.h"
#include "tests/cli/png_samples.h"

namespace tintora::cli {
namespace {

// ---- PNG in

struct PngKind {
  const char* name;
  int colourType;
  int depth;
};

using PngKindAndInterlace = std::tuple<PngKind, bool>;

std::string nameOfKind(const testing::TestParamInfo<PngKindAndInterlace>& test) {
  const auto& [kind, interlaced] = test.param;
  return kind.name + (interlaced ? "Interlaced"s : ""s);
}

const auto kindsWithoutAlpha = testing::Values(
    PngKind{"Grey1", PNG_COLOR_TYPE_GRAY, 1}, PngKind{"Grey2", PNG_COLOR_TYPE_GRAY, 2},
    PngKind{"Grey4", PNG_COLOR_TYPE_GRAY, 4}, PngKind{"Grey8", PNG_COLOR_TYPE_GRAY, 8},
    PngKind{"Grey16", PNG_COLOR_TYPE_GRAY, 16}, PngKind{"Rgb8", PNG_COLOR_TYPE_RGB, 8},
    PngKind{"Rgb16", PNG_COLOR_TYPE_RGB, 16}, PngKind{"Palette1", PNG_COLOR_TYPE_PALETTE, 1},
    PngKind{"Palette2", PNG_COLOR_TYPE_PALETTE, 2}, PngKind{"Palette4", PNG_COLOR_TYPE_PALETTE, 4},
    PngKind{"Palette8", PNG_COLOR_TYPE_PALETTE, 8});

const auto kindsWithAlpha = testing::Values(PngKind{"GreyAlpha8", PNG_COLOR_TYPE_GRAY_ALPHA, 8},
                                            PngKind{"GreyAlpha16", PNG_COLOR_TYPE_GRAY_ALPHA, 16},
                                            PngKind{"Rgba8", PNG_COLOR_TYPE_RGB_ALPHA, 8},
                                            PngKind{"Rgba16", PNG_COLOR_TYPE_RGB_ALPHA, 16});

class DecodePngKind : public testing::TestWithParam<PngKindAndInterlace> {};

TEST_P(DecodePngKind, GivesThePixelsOfItsSamples) {
  const auto& [kind, interlaced] = GetParam();
  PngSpec spec = randomPng(kind.colourType, kind.depth);
  spec.interlaced = interlaced;
  const Image image = decodeImage(pngFile(spec));
  EXPECT_EQ(image.width, spec.width);
  EXPECT_EQ(image.height, spec.height);
  EXPECT_EQ(image.hasAlpha, (kind.colourType & PNG_COLOR_MASK_ALPHA) != 0);
  EXPECT_EQ(image.pixels, expectedPixels(spec));
}

INSTANTIATE_TEST_SUITE_P(WithoutAlpha, DecodePngKind,
                         testing::Combine(kindsWithoutAlpha, testing::Bool()), nameOfKind);
INSTANTIATE_TEST_SUITE_P(WithAlpha, DecodePngKind,
                         testing::Combine(kindsWithAlpha, testing::Bool()), nameOfKind);

class DecodePngTransparencyChunk : public testing::TestWithParam<PngKindAndInterlace> {};

TEST_P(DecodePngTransparencyChunk, GivesTheAlphaOfItsEntries) {
  const auto& [kind, interlaced] = GetParam();
  PngSpec spec = randomPng(kind.colourType, kind.depth);
  spec.interlaced = interlaced;
  if (kind.colourType == PNG_COLOR_TYPE_PALETTE) {
    spec.paletteAlpha = {0, 100};
  } else if (kind.colourType == PNG_COLOR_TYPE_GRAY) {
    spec.transparent = png_color_16{0, 0, 0, 0, spec.samples[20]};
  } else {
    spec.transparent = png_color_16{0, spec.samples[60], spec.samples[61], spec.samples[62], 0};
  }
  const Image image = decodeImage(pngFile(spec));
  EXPECT_TRUE(image.hasAlpha);
  EXPECT_EQ(image.pixels, expectedPixels(spec));
}

INSTANTIATE_TEST_SUITE_P(AllKinds, DecodePngTransparencyChunk,
                         testing::Combine(kindsWithoutAlpha, testing::Bool()), nameOfKind);

TEST(DecodePng, RoundsEverySampleOf16BitsToTheNearestOf8) {
  PngSpec spec;
  spec.width = spec.height = 256;
  spec.colourType = PNG_COLOR_TYPE_GRAY;
  spec.depth = 16;
  for (unsigned sample = 0; sample < 65536; ++sample) {
    spec.samples.push_back(static_cast<std::uint16_t>(sample));
  }
  EXPECT_EQ(decodeImage(pngFile(spec)).pixels, expectedPixels(spec));
}

TEST(DecodePng, ComparesSamplesOf16BitsWithTheTransparentOneBeforeRounding) {
  PngSpec spec;
  spec.width = 2;
  spec.height = 1;
  spec.colourType = PNG_COLOR_TYPE_GRAY;
  spec.depth = 16;
  spec.samples = {0x8080, 0x8081};
  spec.transparent = png_color_16{0, 0, 0, 0, 0x8080};
  EXPECT_EQ(decodeImage(pngFile(spec)).pixels, (Bytes{128, 128, 128, 0, 128, 128, 128, 255}));
}

TEST(DecodePng, LeavesThePixelsAsTheyAreWhateverTheGamma) {
  for (const int depth : {8, 16}) {
    PngSpec spec = randomPng(PNG_COLOR_TYPE_RGB, depth);
    spec.gamma = 100000;
    spec.chromaticities = {31270, 32900, 70000, 29000, 20000, 70000, 15000, 5000};
    const Bytes file = pngFile(spec);
    ASSERT_TRUE(hasChunk(file, "gAMA"));
    EXPECT_EQ(decodeImage(file).pixels, expectedPixels(spec));
  }
}

TEST(DecodePng, IgnoresTextsAndUnknownRemarksAndWhatFollowsTheEnd) {
  const Bytes plain = pngFile(randomPng(PNG_COLOR_TYPE_RGB, 8));
  Bytes file = withChunkBefore(plain, "IDAT", pngChunk("tEXt", bytesOf("Title\0x"s)));
  file = withChunkBefore(file, "IDAT", pngChunk("teST", bytesOf("anything")));
  file = joined(file, bytesOf("trailing bytes"));
  EXPECT_EQ(decodeImage(file).pixels, decodeImage(plain).pixels);
}

TEST(DecodePng, FindsExifDataAfterThePixelsToo) {
  PngSpec spec = randomPng(PNG_COLOR_TYPE_RGB, 8);
  spec.exif = exifOf();
  spec.exifAtEnd = true;
  const Bytes file = pngFile(spec);
  ASSERT_EQ(chunksOf(file).at(chunksOf(file).size() - 2).first, "eXIf");
  EXPECT_EQ(decodeImage(file).exif, spec.exif);
}

// ---- JPEG in

TEST(DecodeJpeg, GivesWhatTheLibraryDecodesForEveryKind) {
  const Image image = smoothImage(37, 29);
  JpegSpec subsampled;
  subsampled.chromaSampling = 2;
  JpegSpec progressive;
  progressive.progressive = true;
  JpegSpec arithmetic;
  arithmetic.arithmetic = true;
  JpegSpec restarts;
  restarts.restartInterval = 2;
  JpegSpec rgb;
  rgb.in = JCS_RGB;
  JpegSpec grey;
  grey.in = JCS_GRAYSCALE;
  const std::map<std::string, JpegSpec> kinds{
      {"plain", {}},          {"subsampled", subsampled}, {"progressive", progressive},
      {"restarts", restarts}, {"arithmetic", arithmetic}, {"RGB", rgb},
      {"greyscale", grey},
  };
  for (const auto& [name, spec] : kinds) {
    SCOPED_TRACE(name);
    const Bytes file = jpegFile(image, spec);
    const Image decoded = decodeImage(file);
    EXPECT_EQ(decoded.width, 37U);
    EXPECT_EQ(decoded.height, 29U);
    EXPECT_FALSE(decoded.hasAlpha);
    EXPECT_EQ(decoded.pixels, toBgra(plainlyDecoded(file)));
    if (name != "greyscale") {
      EXPECT_LE(largestDifference(decoded.pixels, image.pixels), 12);
    }
  }
}

TEST(DecodeJpeg, RefusesCmyk) {
  const Bytes samples(16 * 16 * 4, 100);
  JpegSpec cmyk;
  cmyk.from = JCS_CMYK;
  cmyk.channels = 4;
  EXPECT_TRUE(contains(refusalOf(jpegFile(16, 16, samples, cmyk)), "CMYK"));
  cmyk.in = JCS_YCCK;
  EXPECT_TRUE(contains(refusalOf(jpegFile(16, 16, samples, cmyk)), "CMYK"));
}

TEST(DecodeJpeg, RefusesTwoChannels) {
  JpegSpec spec;
  spec.from = JCS_UNKNOWN;
  spec.channels = 2;
  EXPECT_TRUE(contains(refusalOf(jpegFile(16, 16, Bytes(16 * 16 * 2, 100), spec)), "2 channels"));
}

TEST(DecodeJpeg, RefusesAFileOfEndlessScansButNotOfMany) {
  JpegSpec spec;
  spec.spectralSelectionOnly = true;
  const Bytes file = jpegFile(smoothImage(24, 24), spec);
  const std::size_t end = findMarker(file, endMarker, true);
  const Bytes lastScan = slice(file, findMarker(file, tablesMarker, true), end);
  const auto withScans = [&](int count) {
    Bytes longer = slice(file, 0, end);
    for (int i = 0; i < count; ++i) longer = joined(longer, lastScan);
    return joined(longer, slice(file, end, file.size()));
  };
  EXPECT_EQ(decodeImage(withScans(50)).pixels, decodeImage(file).pixels);
  EXPECT_TRUE(contains(refusalOf(withScans(5000)), "too many scans"));
}

TEST(DecodeJpeg, ToleratesStrayBytesBetweenTheDataAndTheEnd) {
  const Bytes file = jpegFile(smoothImage(24, 24));
  const std::size_t end = findMarker(file, endMarker, true);
  const Bytes longer =
      joined(joined(slice(file, 0, end), Bytes(40, 0)), slice(file, end, file.size()));
  EXPECT_EQ(decodeImage(longer).pixels, decodeImage(file).pixels);
}

TEST(DecodeJpeg, IgnoresWhatFollowsTheEnd) {
  const Bytes file = jpegFile(smoothImage(24, 24));
  EXPECT_EQ(decodeImage(joined(file, bytesOf("trailing bytes"))).pixels, decodeImage(file).pixels);
}

TEST(DecodeJpeg, RefusesAPictureWhoseDataEndsBeforeItsEndMarker) {
  for (const bool progressive : {false, true}) {
    JpegSpec spec;
    spec.progressive = progressive;
    const Bytes file = jpegFile(randomImage(64, 64, false, 5), spec);
    const std::size_t scan = findMarker(file, scanMarker, true);
    const std::size_t middle = (scan + file.size()) / 2;
    const Bytes shorter = joined(slice(file, 0, middle), {0xFF, endMarker});
    EXPECT_TRUE(refusalOf(shorter).has_value());
  }
}

// ---- Damage

TEST(DecodeImage, RefusesAFileCutShortAtAnyLength) {
  constexpr std::size_t longestSignature = 8;
  const Bytes jpeg = smallRichJpeg(false);
  const std::size_t end = findMarker(jpeg, endMarker, true);
  // All its pixels stand before its last chunk.
  const Bytes remarkAtEnd = joined(slice(jpeg, 0, end), bytesOf("\xFF\xFE\0\x07hello\xFF\xD9"s));
  JpegSpec arithmetic;
  arithmetic.arithmetic = true;

  // Even without the last byte, which belongs to a checksum in PNG and to the end marker in JPEG.
  for (const Bytes& file :
       {smallRichPng(), pngFile(randomPng(PNG_COLOR_TYPE_RGB_ALPHA, 16)), jpeg, smallRichJpeg(true),
        jpegFile(smoothImage(9, 9), arithmetic), remarkAtEnd}) {
    ASSERT_EQ(refusalOf(file), std::nullopt);
    for (std::size_t length = 0; length < file.size(); ++length) {
      const auto refusal = refusalOf(slice(file, 0, length));
      ASSERT_TRUE(refusal.has_value()) << length << " of " << file.size() << " bytes";
      if (length >= longestSignature) {
        ASSERT_TRUE(contains(refusal, "ends too early")) << length << ": " << *refusal;
      }
    }
  }
}

TEST(DecodeImage, RefusesAPngFileWithAnyByteChanged) {
  const Bytes file = smallRichPng();
  for (std::size_t i = 0; i < file.size(); ++i) {
    for (const int flip : {0x01, 0x20, 0x80, 0xFF}) {
      Bytes damaged = file;
      damaged[i] = static_cast<std::uint8_t>(damaged[i] ^ flip);
      ASSERT_TRUE(refusalOf(damaged).has_value()) << "byte " << i << " changed by " << flip;
    }
  }
}

TEST(DecodeImage, GivesFromAJpegFileWithAByteChangedAPictureOrARefusal) {
  constexpr std::uint64_t limit = 1 << 20;
  for (const bool progressive : {false, true}) {
    const Bytes file = smallRichJpeg(progressive);
    int refusals = 0;
    for (std::size_t i = 0; i < file.size(); ++i) {
      for (const int flip : {0x01, 0x20, 0x80, 0xFF}) {
        Bytes damaged = file;
        damaged[i] = static_cast<std::uint8_t>(damaged[i] ^ flip);
        try {
          const Image image = decodeImage(damaged, limit);
          ASSERT_LE(std::uint64_t{image.width} * image.height, limit);
          ASSERT_EQ(image.pixels.size(), std::size_t{image.width} * image.height * 4);
        } catch (const ImageError&) {
          ++refusals;
        }
      }
    }
    EXPECT_GT(refusals, static_cast<int>(file.size()) / 2);
  }
}

TEST(DecodeImage, NamesWhatAnUnknownFileLooksLike) {
  EXPECT_TRUE(contains(refusalOf({}), "empty"));
  EXPECT_TRUE(contains(refusalOf(bytesOf("hello, world")), "neither a PNG nor a JPEG"));
  EXPECT_FALSE(contains(refusalOf(bytesOf("hello, world")), "looks like"));
  EXPECT_TRUE(contains(refusalOf(bytesOf("GIF89a......")), "looks like GIF"));
  EXPECT_TRUE(contains(refusalOf(bytesOf("RIFF\x10\0\0\0WEBPVP8 "s)), "looks like WebP"));
  EXPECT_TRUE(contains(refusalOf(bytesOf("II*\0\x08\0\0\0"s)), "looks like TIFF"));
}

TEST(DecodeImage, RefusesAnImageWithoutPixels) {
  EXPECT_TRUE(contains(refusalOf(pngOfSize(0, 5)), "no pixels"));
  EXPECT_TRUE(contains(refusalOf(pngOfSize(5, 0)), "no pixels"));
  for (const std::size_t field : {5U, 7U}) {
    Bytes jpeg = jpegFile(smoothImage(8, 8));
    const std::size_t frame = findMarker(jpeg, frameMarker);
    jpeg[frame + field] = jpeg[frame + field + 1] = 0;
    EXPECT_TRUE(contains(refusalOf(jpeg), "mpty"));
  }
}

TEST(DecodeImage, RefusesMorePixelsThanTheLimitAndTellsBoth) {
  const std::string expected = "60000 x 60000 pixels, more than the limit of 268435456";
  EXPECT_TRUE(contains(refusalOf(pngOfSize(60000, 60000)), expected));
  // The largest sides of a PNG file, which no number of bytes could hold.
  EXPECT_TRUE(contains(
      refusalOf(pngOfSize(0x7FFFFFFF, 0x7FFFFFFF), std::numeric_limits<std::uint64_t>::max()),
      "2147483647 x 2147483647 pixels, more than the limit of 1099511627776"));

  Bytes jpeg = jpegFile(smoothImage(8, 8));
  const std::size_t frame = findMarker(jpeg, frameMarker);
  putBigEndian32(jpeg, frame + 5, 60000U << 16 | 60000U);
  EXPECT_TRUE(contains(refusalOf(jpeg), expected));
}

TEST(DecodeImage, ReadsAsManyPixelsAsTheLimitAllows) {
  for (const Bytes& file :
       {pngFile(randomPng(PNG_COLOR_TYPE_RGB, 8)), jpegFile(smoothImage(13, 11))}) {
    EXPECT_EQ(refusalOf(file, 13 * 11), std::nullopt);
    EXPECT_TRUE(
        contains(refusalOf(file, 13 * 11 - 1), "13 x 11 pixels, more than the limit of 142"));
  }
}

TEST(DecodeImage, PrintsNothingAboutDamagedFiles) {
  testing::internal::CaptureStderr();
  testing::internal::CaptureStdout();
  for (const Bytes& file : {smallRichPng(), smallRichJpeg(false), smallRichJpeg(true)}) {
    for (std::size_t i = 0; i < file.size(); i += 3) {
      refusalOf(slice(file, 0, i));
      Bytes damaged = file;
      damaged[i] = static_cast<std::uint8_t>(~damaged[i]);
      refusalOf(damaged, 1 << 20);
    }
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

}  // namespace
}  // namespace tintora::cli
