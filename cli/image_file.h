// PNG and JPEG files as pixels in memory, and back.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "cli/byte_stream.h"
#include "cli/image.h"

namespace tintora::cli {

// An image of 8 bits per channel, as it is shown on screen, and what else a viewer needs to show it
// alike.
struct Image : ImageHeader {         // the profile is of RGB colours, or empty
  std::vector<std::uint8_t> pixels;  // rows from the top, B G R A per pixel, no padding
};

inline constexpr std::uint64_t defaultPixelLimit = std::uint64_t{1} << 28;
inline constexpr std::uint64_t highestPixelLimit = std::uint64_t{1} << 40;
inline constexpr int defaultJpegQuality = 95;

// Reads a PNG or JPEG file; its first bytes tell which it is. Reads every kind of PNG but
// animations, rounding 16 bits per channel to 8, and JPEG in greyscale or colour, but not in CMYK.
// Leaves out profiles for other than RGB colours, damaged profiles and EXIF data, and texts. Throws
// ImageError if the file is neither, is damaged or truncated anywhere before its end marker, or has
// no pixels or more than pixelLimit.
Image decodeImage(std::span<const std::uint8_t> file, std::uint64_t pixelLimit = defaultPixelLimit);

// Writes the image with its profile, its EXIF data and, unless it is out of the range of the
// format, its density. PNG is exact, with an alpha channel only if the image has one; JPEG is of
// the quality (1..100) without chroma subsampling. Throws ImageError for an image that does not
// hold to the rules above, and for what the format cannot keep: in JPEG transparency, more than
// 65500 pixels on a side, EXIF data of more than 65527 bytes or a profile of more than 16 MB; in
// PNG a malformed profile.
std::vector<std::uint8_t> encodeImage(const Image& image, ImageFormat format,
                                      int quality = defaultJpegQuality);

// Opens such a file for reading row by row, in its own layout, without damaged profiles and EXIF
// data. The source must outlive the reader. Throws ImageError.
ImageReader openImage(ByteSource& source, std::uint64_t pixelLimit);

// Returns true if the file begins like JPEG.
bool isJpeg(ByteSource& source);

}  // namespace tintora::cli
