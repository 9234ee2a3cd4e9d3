// PNG and JPEG files as pixels in memory, and back.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <stdexcept>
#include <vector>

namespace tintora::cli {

// Why an image could not be read or written: one line, without the name of the file.
struct ImageError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

enum class ImageFormat { Png, Jpeg };

// How many pixels there are meant to be to a unit of length, in the unit that the file gave.
// Without a unit only the ratio of the two counts.
struct PixelDensity {
  enum class Unit { None, Inch, Centimetre, Metre };
  std::uint32_t across = 0, down = 0;
  Unit unit = Unit::None;
  bool operator==(const PixelDensity&) const = default;
};

// What a PNG file without a colour profile can say about its colours. It is only carried along: the
// pixels are as they stand in the file.
struct PngColourSpace {
  std::optional<int> srgbIntent;      // the rendering intent of an sRGB image, 0..3
  std::optional<std::int32_t> gamma;  // of the file, in 1/100000
  // x and y of white, red, green and blue, in 1/100000
  std::optional<std::array<std::int32_t, 8>> chromaticities;
  bool operator==(const PngColourSpace&) const = default;
};

// An image of 8 bits per channel, as it is shown on screen, and what else a viewer needs to show it
// alike.
struct Image {
  std::uint32_t width = 0, height = 0;
  std::vector<std::uint8_t> pixels;      // rows from the top, B G R A per pixel, no padding
  bool hasAlpha = false;                 // without it every A is 255
  std::vector<std::uint8_t> iccProfile;  // of RGB colours, or empty
  std::vector<std::uint8_t> exif;        // a TIFF structure, holds the orientation; or empty
  std::optional<PixelDensity> density;
  PngColourSpace pngColourSpace;  // lost in a JPEG file, which has no place for it
};

inline constexpr std::uint64_t defaultPixelLimit = std::uint64_t{1} << 28;
inline constexpr std::uint64_t highestPixelLimit = std::uint64_t{1} << 40;
inline constexpr int defaultJpegQuality = 95;

// Reads a PNG or JPEG file, told apart by how it begins. Every kind of PNG is read, 16 bits per
// channel rounded to 8; JPEG in greyscale or colour, but not in CMYK. A profile for other than RGB
// colours and damaged profiles and EXIF data are left out, as are texts and other remarks. Of an
// animation it is the still image. Throws ImageError for a file that is neither, is damaged or cut
// short anywhere up to its end marker, has no pixels, or has more than pixelLimit of them
// .
Image decodeImage(std::span<const std::uint8_t> file, std::uint64_t pixelLimit = defaultPixelLimit);

// Writes the image with its profile, its EXIF data and, unless it is out of the range of the
// format, its density. PNG is exact, with an alpha channel only if the image has one; JPEG is of
// the quality (1..100) without chroma subsampling. Throws ImageError for an image that does not
// hold to the rules above, and for what the format cannot keep: in JPEG transparency, more than
// 65500 pixels on a side, EXIF data of more than 65527 bytes or a profile of more than 16 MB; in
// PNG a malformed profile.
std::vector<std::uint8_t> encodeImage(const Image& image, ImageFormat format,
                                      int quality = defaultJpegQuality);

// Throws ImageError if an image of this size has more pixels than the limit.
void checkImageSize(std::uint32_t width, std::uint32_t height, std::uint64_t pixelLimit);

}  // namespace tintora::cli
