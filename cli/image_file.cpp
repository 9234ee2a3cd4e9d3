#include "cli/image_file.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <new>
#include <string>
#include <string_view>
#include <utility>

#include "cli/byte_stream.h"
#include "cli/exif.h"
#include "cli/filtered_rows.h"
#include "cli/icc_conversion.h"
#include "cli/jpeg_reader.h"
#include "cli/jpeg_writer.h"
#include "cli/png_reader.h"
#include "cli/png_writer.h"

namespace tintora::cli {

namespace {

using namespace std::string_view_literals;

struct Signature {
  std::size_t offset;
  std::string_view bytes;
  std::string_view format;
};

constexpr Signature pngSignature{0, "\x89PNG\r\n\x1a\n"sv, "PNG"sv};
constexpr Signature jpegSignature{0, "\xff\xd8\xff"sv, "JPEG"sv};

// Formats that people mistake for the above; only named in the message.
constexpr std::array otherSignatures{
    Signature{0, "GIF8"sv, "GIF"sv},     Signature{0, "BM"sv, "BMP"sv},
    Signature{0, "II*\0"sv, "TIFF"sv},   Signature{0, "MM\0*"sv, "TIFF"sv},
    Signature{8, "WEBP"sv, "WebP"sv},    Signature{4, "ftypavif"sv, "AVIF"sv},
    Signature{4, "ftyphei"sv, "HEIF"sv}, Signature{4, "ftypmif1"sv, "HEIF"sv},
    Signature{0, "%PDF-"sv, "PDF"sv},    Signature{0, "\xff\x0a"sv, "JPEG XL"sv},
    Signature{4, "JXL "sv, "JPEG XL"sv}, Signature{4, "jP  "sv, "JPEG 2000"sv},
};

bool holds(std::span<const std::uint8_t> file, const Signature& signature) {
  return holdsAt(file, signature.offset, signature.bytes);
}

[[noreturn]] void throwUnknownFormat(std::span<const std::uint8_t> file) {
  if (file.empty()) throw ImageError("the file is empty");
  const auto* other =
      std::find_if(otherSignatures.begin(), otherSignatures.end(),
                   [&](const Signature& signature) { return holds(file, signature); });
  if (other == otherSignatures.end()) throw ImageError("this is neither a PNG nor a JPEG file");
  throw ImageError("this is neither a PNG nor a JPEG file, it looks like " +
                   std::string(other->format));
}

bool isOpaque(const Image& image) {
  std::uint8_t alphas = 0xFF;
  for (std::size_t i = 3; i < image.pixels.size(); i += 4) alphas &= image.pixels[i];
  return alphas == 0xFF;
}

void checkImage(const Image& image, bool opaque) {
  const std::uint64_t pixels = std::uint64_t{image.width} * image.height;
  if (pixels == 0 || image.pixels.size() % 4 != 0 || image.pixels.size() / 4 != pixels) {
    throw ImageError("the pixels do not fill the width and height of the image");
  }
  if (!image.hasAlpha && !opaque) {
    throw ImageError("an image without alpha channel has transparent pixels");
  }
  if (!image.iccProfile.empty() && profileColours(image.iccProfile) != ProfileColours::Rgb) {
    throw ImageError("the colour profile is damaged or not for RGB colours");
  }
  if (!image.exif.empty() && !isExif(image.exif)) throw ImageError("the EXIF data is damaged");
}

constexpr std::size_t longestSignature = 16;

void readAll(const ImageReader& reader, Image& image) {
  const RowFilter plain = planPlainRows(reader.header);
  std::vector<std::uint8_t> row(rowBytes(reader.header));
  const std::size_t bytes = rowBytes(plain.header);
  image.pixels.resize(bytes * image.height);
  for (std::size_t y = 0; y < image.height; ++y) {
    reader.readRow(row.data());
    plain.filterRow(row.data(), image.pixels.data() + y * bytes);
  }
  const std::vector<std::uint8_t> exif = reader.finish();
  if (isExif(exif)) image.exif = exif;
}

RowsHeader plainHeader(const Image& image) {
  RowsHeader header;
  static_cast<ImageHeader&>(header) = image;
  return header;
}

}  // namespace

ImageReader openImage(ByteSource& source, std::uint64_t pixelLimit) {
  const auto start = peek(source, longestSignature);
  if (source.error != 0) throw ImageError(std::strerror(source.error));
  const bool png = holds(start, pngSignature);
  if (!png && !holds(start, jpegSignature)) throwUnknownFormat(start);
  const std::uint64_t limit = std::min(pixelLimit, highestPixelLimit);
  ImageReader reader = png ? openPng(source, limit) : openJpeg(source, limit);
  ImageHeader& header = reader.header;
  if (profileColours(header.iccProfile) == ProfileColours::None) header.iccProfile.clear();
  if (!isExif(header.exif)) header.exif.clear();
  return reader;
}

bool isJpeg(ByteSource& source) {
  return holds(peek(source, longestSignature), jpegSignature);
}

Image decodeImage(std::span<const std::uint8_t> file, std::uint64_t pixelLimit) {
  try {
    ByteSource source;
    source.rest = file;
    const ImageReader reader = openImage(source, pixelLimit);
    Image image;
    static_cast<ImageHeader&>(image) = reader.header;
    if (profileColours(image.iccProfile) != ProfileColours::Rgb) image.iccProfile.clear();
    readAll(reader, image);
    return image;
  } catch (const std::bad_alloc&) {
    throw ImageError("there is not enough memory to read the image");
  }
}

std::vector<std::uint8_t> encodeImage(const Image& image, ImageFormat format, int quality) {
  const bool opaque = isOpaque(image);
  checkImage(image, opaque);
  if (format == ImageFormat::Jpeg && !opaque) {
    throw ImageError("JPEG cannot keep transparency; choose a PNG output");
  }
  try {
    ByteSink sink;
    const RowsHeader header = plainHeader(image);
    const ImageWriter writer =
        format == ImageFormat::Png ? startPng(sink, header) : startJpeg(sink, header, quality);
    for (std::size_t y = 0; y < image.height; ++y) {
      writer.writeRow(image.pixels.data() + y * rowBytes(header));
    }
    writer.finish({});
    return std::move(sink.bytes);
  } catch (const std::bad_alloc&) {
    throw ImageError("there is not enough memory to write the image");
  }
}

}  // namespace tintora::cli
