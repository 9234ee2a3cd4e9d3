// What becomes of the EXIF data of a filtered file.
#include "cli/exif.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

#include "tests/cli/filtered_picture.h"
#include "tests/cli/image_samples.h"
#include "tests/cli/jpeg_samples.h"
#include "tests/cli/png_samples.h"

namespace tintora::cli {
namespace {

// Returns EXIF data of two directories: one with an orientation, and one with a thumbnail of five
// bytes at the end.
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

TEST(Exif, TheOrientationIsOneToEightHoweverDamagedTheData) {
  EXPECT_EQ(exifOrientation(exifOf()), 6);
  EXPECT_EQ(exifOrientation(bytesOf("II*\0\x08\0\0\0\x01\0\x12\x01\x03\0\x01\0\0\0\x08\0\0\0"s)),
            8);
  EXPECT_EQ(exifOrientation({}), 1);
  Bytes exif = exifOf();
  for (const std::uint8_t wrong : {std::uint8_t{0}, std::uint8_t{9}}) {
    exif.at(19) = wrong;
    EXPECT_EQ(exifOrientation(exif), 1);
  }
  // Truncated data must not be read beyond its end.
  for (std::size_t size = 0; size < exifOf().size(); ++size) {
    const Bytes whole = exifOf();
    const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
    const int orientation = exifOrientation(cut);
    EXPECT_TRUE(orientation == 1 || orientation == 6);
  }
  exif = exifOf();
  for (std::size_t i = 4; i < 8; ++i) exif.at(i) = 0xFF;
  EXPECT_EQ(exifOrientation(exif), 1);
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

}  // namespace
}  // namespace tintora::cli
