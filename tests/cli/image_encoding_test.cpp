#include <gtest/gtest.h>
#include <png.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <utility>

#include "cli/image_file.h"
#include "tests/cli/image_samples.h"
#include "tests/cli/jpeg_samples.h"
#include "tests/cli/png_samples.h"

namespace tintora::cli {
namespace {

// ---- Out

TEST(EncodePng, KeepsEveryPixelExactly) {
  for (const auto& [width, height] : {std::pair{1U, 1U}, {1U, 300U}, {300U, 1U}, {67U, 43U}}) {
    for (const bool hasAlpha : {false, true}) {
      const Image image = randomImage(width, height, hasAlpha, width + height);
      const Image back = decodeImage(encodeImage(image, ImageFormat::Png));
      EXPECT_EQ(back.width, width);
      EXPECT_EQ(back.height, height);
      EXPECT_EQ(back.hasAlpha, hasAlpha);
      EXPECT_EQ(back.pixels, image.pixels);
    }
  }
}

TEST(EncodePng, KeepsColoursUnderFullTransparency) {
  Image image = randomImage(16, 16, true, 9);
  for (std::size_t i = 3; i < image.pixels.size(); i += 4) image.pixels[i] = 0;
  EXPECT_EQ(decodeImage(encodeImage(image, ImageFormat::Png)).pixels, image.pixels);
}

TEST(EncodePng, WritesAnAlphaChannelOnlyForAnImageThatHasOne) {
  const auto colourType = [](bool hasAlpha) {
    const Image image = randomImage(4, 4, hasAlpha, 2);
    return chunksOf(encodeImage(image, ImageFormat::Png)).at(0).second.at(9);
  };
  EXPECT_EQ(colourType(false), PNG_COLOR_TYPE_RGB);
  EXPECT_EQ(colourType(true), PNG_COLOR_TYPE_RGB_ALPHA);
}

TEST(EncodePng, HoldsAnImageWiderThanTheLibraryExpects) {
  const Image image = randomImage(1000001, 1, false, 4);
  EXPECT_EQ(decodeImage(encodeImage(image, ImageFormat::Png)).pixels, image.pixels);
}

TEST(EncodeJpeg, WritesNothingAfterTheEndMarker) {
  for (const std::uint32_t size : {1U, 50U, 500U}) {
    const Bytes file = encodeImage(randomImage(size, size, false, size), ImageFormat::Jpeg);
    EXPECT_EQ(findMarker(file, endMarker), file.size() - 2);
  }
}

TEST(EncodeJpeg, KeepsASmoothImageClosely) {
  const Image image = smoothImage(67, 43);
  const Image back = decodeImage(encodeImage(image, ImageFormat::Jpeg));
  EXPECT_EQ(back.width, 67U);
  EXPECT_EQ(back.height, 43U);
  EXPECT_FALSE(back.hasAlpha);
  EXPECT_LE(largestDifference(back.pixels, image.pixels), 4);
}

TEST(EncodeJpeg, KeepsColoursThatChangeFromPixelToPixel) {
  Image image = smoothImage(32, 32);
  for (std::size_t i = 0; i < image.pixels.size(); i += 4) {
    const bool even = i / 4 % 2 == 0;
    image.pixels[i] = even ? 220 : 40;
    image.pixels[i + 1] = 60;
    image.pixels[i + 2] = even ? 40 : 220;
  }
  const Image back = decodeImage(encodeImage(image, ImageFormat::Jpeg));
  EXPECT_LE(largestDifference(back.pixels, image.pixels), 10);
}

TEST(EncodeJpeg, KeepsRandomPixelsNearEnough) {
  const Image image = randomImage(64, 64, false, 6);
  const Image back = decodeImage(encodeImage(image, ImageFormat::Jpeg));
  double sum = 0;
  for (std::size_t i = 0; i < image.pixels.size(); ++i) {
    sum += std::abs(image.pixels[i] - back.pixels[i]);
  }
  EXPECT_LT(sum / static_cast<double>(image.pixels.size()), 6);
}

TEST(EncodeJpeg, RefusesTransparencyAndNamesTheWayOut) {
  Image image = randomImage(8, 8, true, 3);
  for (std::size_t i = 3; i < image.pixels.size(); i += 4) image.pixels[i] = 255;
  EXPECT_EQ(refusalToEncode(image, ImageFormat::Jpeg), std::nullopt);
  image.pixels[4 * 63 + 3] = 254;
  const auto refusal = refusalToEncode(image, ImageFormat::Jpeg);
  EXPECT_TRUE(contains(refusal, "transparency"));
  EXPECT_TRUE(contains(refusal, "PNG"));
}

TEST(EncodeJpeg, RefusesMorePixelsOnASideThanTheFormatHolds) {
  EXPECT_EQ(refusalToEncode(randomImage(65500, 1, false, 1), ImageFormat::Jpeg), std::nullopt);
  EXPECT_TRUE(
      contains(refusalToEncode(randomImage(65501, 1, false, 1), ImageFormat::Jpeg), "65501"));
  EXPECT_TRUE(
      contains(refusalToEncode(randomImage(1, 65501, false, 1), ImageFormat::Jpeg), "65501"));
}

TEST(EncodeImage, RefusesAnImageThatContradictsItself) {
  for (const ImageFormat format : {ImageFormat::Png, ImageFormat::Jpeg}) {
    const Image good = randomImage(4, 4, false, 1);
    ASSERT_EQ(refusalToEncode(good, format), std::nullopt);
    Image image = good;
    image.pixels.pop_back();
    EXPECT_TRUE(contains(refusalToEncode(image, format), "do not fill"));
    image = good;
    image.height = 5;
    EXPECT_TRUE(contains(refusalToEncode(image, format), "do not fill"));
    image = good;
    image.width = image.height = 0x80000000;  // their product and 4 together overflow to zero
    image.pixels.clear();
    EXPECT_TRUE(contains(refusalToEncode(image, format), "do not fill"));
    EXPECT_TRUE(contains(refusalToEncode(Image{}, format), "do not fill"));
    image = good;
    image.pixels[7] = 0;
    EXPECT_TRUE(contains(refusalToEncode(image, format), "without alpha"));
    image = good;
    image.iccProfile = profileOf("GRAY");
    EXPECT_TRUE(contains(refusalToEncode(image, format), "profile"));
    image = good;
    image.exif = bytesOf("not a TIFF structure");
    EXPECT_TRUE(contains(refusalToEncode(image, format), "EXIF"));
  }
}

// ---- What is carried along

// The four ways from a file in one format to one in the other.
struct Passage {
  const char* name;
  ImageFormat from, to;
};

class CarriedAcross : public testing::TestWithParam<Passage> {
 protected:
  // Returns the image read from a file of the first format, written in the second and read again.
  Image carried(const Bytes& iccProfile, const Bytes& exif) const {
    return decodeImage(encodeImage(decodeImage(source(iccProfile, exif)), GetParam().to));
  }

  Bytes source(const Bytes& iccProfile, const Bytes& exif) const {
    if (GetParam().from == ImageFormat::Png) {
      PngSpec spec = randomPng(PNG_COLOR_TYPE_RGB, 8);
      spec.iccProfile = iccProfile;
      spec.exif = exif;
      return pngFile(spec);
    }
    JpegSpec spec;
    spec.iccProfile = iccProfile;
    // Other data under the marker of EXIF data.
    spec.markers = {{JPEG_APP0 + 1, bytesOf("http://example.org/\0<x/>"s)}};
    if (!exif.empty()) {
      spec.markers.emplace_back(JPEG_APP0 + 1, joined(bytesOf("Exif\0\0"s), exif));
    }
    return jpegFile(smoothImage(13, 11), spec);
  }
};

TEST_P(CarriedAcross, ProfileAndExifDataComeOutUnchanged) {
  const Bytes profile = profileOf("RGB ", 400);
  const Image image = carried(profile, exifOf(99));
  EXPECT_EQ(image.iccProfile, profile);
  EXPECT_EQ(image.exif, exifOf(99));
}

TEST_P(CarriedAcross, AProfileOfManySegmentsComesOutUnchanged) {
  const Bytes profile = profileOf("RGB ", 200000);
  EXPECT_EQ(carried(profile, {}).iccProfile, profile);
}

TEST_P(CarriedAcross, ExifDataAsLargeAsJpegHoldsComesOutUnchanged) {
  EXPECT_EQ(carried({}, exifOf(65527)).exif, exifOf(65527));
}

TEST_P(CarriedAcross, NothingIsAddedToAPlainFile) {
  const Image image = carried({}, {});
  EXPECT_EQ(image.iccProfile, Bytes{});
  EXPECT_EQ(image.exif, Bytes{});
  EXPECT_EQ(image.density, std::nullopt);
  EXPECT_EQ(image.pngColourSpace, PngColourSpace{});
}

INSTANTIATE_TEST_SUITE_P(AllPassages, CarriedAcross,
                         testing::Values(Passage{"PngToPng", ImageFormat::Png, ImageFormat::Png},
                                         Passage{"PngToJpeg", ImageFormat::Png, ImageFormat::Jpeg},
                                         Passage{"JpegToJpeg", ImageFormat::Jpeg,
                                                 ImageFormat::Jpeg},
                                         Passage{"JpegToPng", ImageFormat::Jpeg, ImageFormat::Png}),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(Carrying, LeavesOutAProfileForOtherThanRgbColours) {
  for (const int colourType : {PNG_COLOR_TYPE_GRAY, PNG_COLOR_TYPE_GRAY_ALPHA}) {
    PngSpec spec = randomPng(colourType, 8);
    spec.iccProfile = profileOf("GRAY");
    const Bytes file = pngFile(spec);
    ASSERT_TRUE(hasChunk(file, "iCCP"));
    EXPECT_EQ(decodeImage(file).iccProfile, Bytes{});
  }
  JpegSpec spec;
  spec.in = JCS_GRAYSCALE;
  spec.iccProfile = profileOf("GRAY");
  EXPECT_EQ(decodeImage(jpegFile(smoothImage(8, 8), spec)).iccProfile, Bytes{});
  spec = {};
  spec.iccProfile = profileOf("CMYK");
  EXPECT_EQ(decodeImage(jpegFile(smoothImage(8, 8), spec)).iccProfile, Bytes{});
}

TEST(Carrying, KeepsTheRgbProfileOfAGreyJpegFile) {
  JpegSpec spec;
  spec.in = JCS_GRAYSCALE;
  spec.iccProfile = profileOf("RGB ");
  EXPECT_EQ(decodeImage(jpegFile(smoothImage(8, 8), spec)).iccProfile, spec.iccProfile);
}

TEST(Carrying, LeavesOutADamagedProfileAndKeepsThePicture) {
  // One of several segments is missing.
  JpegSpec spec;
  spec.markers = {{JPEG_APP0 + 2, joined(bytesOf("ICC_PROFILE\0\x01\x02"s), profileOf("RGB "))}};
  const Bytes half = jpegFile(smoothImage(8, 8), spec);
  // It states a wrong size.
  spec.markers = {{JPEG_APP0 + 2,
                   joined(bytesOf("ICC_PROFILE\0\x01\x01"s), joined(profileOf("RGB "), Bytes(1)))}};
  const Bytes longer = jpegFile(smoothImage(8, 8), spec);
  // The data is not compressed.
  const Bytes plain = pngFile(randomPng(PNG_COLOR_TYPE_RGB, 8));
  const Bytes raw = withChunkBefore(
      plain, "IDAT", pngChunk("iCCP", joined(bytesOf("profile\0\0"s), profileOf("RGB "))));
  ASSERT_TRUE(hasChunk(raw, "iCCP"));

  for (const Bytes& file : {half, longer, raw}) EXPECT_EQ(decodeImage(file).iccProfile, Bytes{});
  EXPECT_EQ(decodeImage(half).pixels, decodeImage(jpegFile(smoothImage(8, 8))).pixels);
  EXPECT_EQ(decodeImage(raw).pixels, decodeImage(plain).pixels);
}

TEST(Carrying, KeepsAProfileOfNothingButAHeader) {
  Image image = randomImage(4, 4, false, 1);
  image.iccProfile = profileOf("RGB ", 132);
  for (const ImageFormat format : {ImageFormat::Png, ImageFormat::Jpeg}) {
    EXPECT_EQ(decodeImage(encodeImage(image, format)).iccProfile, image.iccProfile);
  }
}

TEST(Carrying, RefusesToWriteAProfileThatPngCannotHold) {
  Image image = randomImage(4, 4, false, 1);
  image.iccProfile = profileOf("RGB ", 200);
  image.iccProfile[12] = 'x';                   // the kind of device
  putBigEndian32(image.iccProfile, 128, 1000);  // more tags than there is room for
  EXPECT_TRUE(contains(refusalToEncode(image, ImageFormat::Png), "cannot write the PNG file"));
  EXPECT_EQ(decodeImage(encodeImage(image, ImageFormat::Jpeg)).iccProfile, image.iccProfile);
}

TEST(Carrying, LeavesOutInvalidExifData) {
  JpegSpec spec;
  for (const std::string& remark : {"Exif\0\0"s, "Exif\0\0MM\0"s, "Exif\0\0hello world"s}) {
    spec.markers = {{JPEG_APP0 + 1, bytesOf(remark)}};
    EXPECT_EQ(decodeImage(jpegFile(smoothImage(8, 8), spec)).exif, Bytes{});
  }
  const Bytes plain = pngFile(randomPng(PNG_COLOR_TYPE_RGB, 8));
  const Bytes file = withChunkBefore(plain, "IDAT", pngChunk("eXIf", bytesOf("MMhello world")));
  EXPECT_EQ(decodeImage(file).exif, Bytes{});
}

TEST(Carrying, RefusesExifDataTooLargeForJpeg) {
  Image image = randomImage(4, 4, false, 1);
  image.exif = exifOf(65528);
  const auto refusal = refusalToEncode(image, ImageFormat::Jpeg);
  EXPECT_TRUE(contains(refusal, "EXIF"));
  EXPECT_TRUE(contains(refusal, "PNG"));
  EXPECT_EQ(decodeImage(encodeImage(image, ImageFormat::Png)).exif, image.exif);
}

TEST(Carrying, RefusesAProfileTooLargeForJpeg) {
  constexpr std::size_t most = std::size_t{255} * 65519;
  Image image = randomImage(4, 4, false, 1);
  image.iccProfile = profileOf("RGB ", most);
  EXPECT_EQ(decodeImage(encodeImage(image, ImageFormat::Jpeg)).iccProfile, image.iccProfile);
  image.iccProfile = profileOf("RGB ", most + 1);
  EXPECT_TRUE(contains(refusalToEncode(image, ImageFormat::Jpeg), "profile"));
  EXPECT_EQ(decodeImage(encodeImage(image, ImageFormat::Png)).iccProfile, image.iccProfile);
}

TEST(Carrying, KeepsTheDensityInTheSameFormat) {
  using Unit = PixelDensity::Unit;
  const auto jpegDensity = [](int unit, int across, int down) {
    JpegSpec spec;
    spec.density = {unit, across, down};
    const Image image = decodeImage(jpegFile(smoothImage(8, 8), spec));
    EXPECT_EQ(decodeImage(encodeImage(image, ImageFormat::Jpeg)).density, image.density);
    return image.density;
  };
  EXPECT_EQ(jpegDensity(1, 300, 150), (PixelDensity{300, 150, Unit::Inch}));
  EXPECT_EQ(jpegDensity(2, 30, 31), (PixelDensity{30, 31, Unit::Centimetre}));
  EXPECT_EQ(jpegDensity(0, 2, 1), (PixelDensity{2, 1, Unit::None}));
  EXPECT_EQ(jpegDensity(0, 5, 5), std::nullopt);
  EXPECT_EQ(jpegDensity(1, 0, 5), std::nullopt);
  EXPECT_EQ(jpegDensity(9, 2, 1), std::nullopt);

  const auto pngDensity = [](int unit, png_uint_32 across, png_uint_32 down) {
    PngSpec spec = randomPng(PNG_COLOR_TYPE_RGB, 8);
    spec.density = {across, down, unit};
    const Image image = decodeImage(pngFile(spec));
    EXPECT_EQ(decodeImage(encodeImage(image, ImageFormat::Png)).density, image.density);
    return image.density;
  };
  EXPECT_EQ(pngDensity(PNG_RESOLUTION_METER, 11811, 2835),
            (PixelDensity{11811, 2835, Unit::Metre}));
  EXPECT_EQ(pngDensity(PNG_RESOLUTION_UNKNOWN, 2, 1), (PixelDensity{2, 1, Unit::None}));
  EXPECT_EQ(pngDensity(PNG_RESOLUTION_UNKNOWN, 4, 4), std::nullopt);
  EXPECT_EQ(pngDensity(PNG_RESOLUTION_METER, 0, 4), std::nullopt);
}

TEST(Carrying, ConvertsTheDensityForTheOtherFormat) {
  using Unit = PixelDensity::Unit;
  const auto carried = [](const PixelDensity& density, ImageFormat format) {
    Image image = randomImage(4, 4, false, 1);
    image.density = density;
    return decodeImage(encodeImage(image, format)).density;
  };
  EXPECT_EQ(carried({300, 72, Unit::Inch}, ImageFormat::Png),
            (PixelDensity{11811, 2835, Unit::Metre}));
  EXPECT_EQ(carried({30, 31, Unit::Centimetre}, ImageFormat::Png),
            (PixelDensity{3000, 3100, Unit::Metre}));
  EXPECT_EQ(carried({11811, 2835, Unit::Metre}, ImageFormat::Jpeg),
            (PixelDensity{300, 72, Unit::Inch}));
  EXPECT_EQ(carried({100000, 200000, Unit::None}, ImageFormat::Jpeg),
            (PixelDensity{25000, 50000, Unit::None}));
  // Out of the range of the format.
  EXPECT_EQ(carried({3000000, 3000000, Unit::Metre}, ImageFormat::Jpeg), std::nullopt);
  EXPECT_EQ(carried({10, 10, Unit::Metre}, ImageFormat::Jpeg), std::nullopt);
  EXPECT_EQ(carried({100000000, 100000000, Unit::Inch}, ImageFormat::Png), std::nullopt);
}

TEST(Carrying, KeepsWhatAPngFileSaysOfItsColours) {
  const auto carried = [](const PngSpec& spec) {
    const Image image = decodeImage(pngFile(spec));
    EXPECT_EQ(decodeImage(encodeImage(image, ImageFormat::Png)).pngColourSpace,
              image.pngColourSpace);
    return image.pngColourSpace;
  };
  constexpr std::array<std::int32_t, 8> wide{31270, 32900, 68000, 32000, 26500, 69000, 15000, 6000};
  PngSpec spec = randomPng(PNG_COLOR_TYPE_RGB, 8);
  spec.gamma = 55556;
  EXPECT_EQ(carried(spec), (PngColourSpace{{}, 55556, {}}));
  spec.chromaticities = wide;
  EXPECT_EQ(carried(spec), (PngColourSpace{{}, 55556, wide}));
  spec = randomPng(PNG_COLOR_TYPE_RGB, 8);
  spec.srgbIntent = PNG_sRGB_INTENT_RELATIVE;
  EXPECT_EQ(carried(spec), (PngColourSpace{PNG_sRGB_INTENT_RELATIVE, {}, {}}));
  spec = randomPng(PNG_COLOR_TYPE_RGB, 8);
  // A profile outranks the rest.
  spec.gamma = 55556;
  spec.iccProfile = profileOf("RGB ");
  EXPECT_EQ(carried(spec), PngColourSpace{});
}

}  // namespace
}  // namespace tintora::cli
