#include "cli/image_file.h"

#include <algorithm>
#include <cstddef>
#include <new>
#include <string>
#include <string_view>

#include "cli/jpeg_codec.h"
#include "cli/png_codec.h"

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

bool holdsAt(std::span<const std::uint8_t> data, std::size_t offset, std::string_view bytes) {
  return data.size() >= offset + bytes.size() &&
         std::equal(bytes.begin(), bytes.end(), data.begin() + static_cast<std::ptrdiff_t>(offset),
                    [](char a, std::uint8_t b) { return static_cast<std::uint8_t>(a) == b; });
}

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

// Colours are always handled as RGB, so a profile for grey or CMYK would tell viewers nonsense.
bool isRgbProfile(std::span<const std::uint8_t> profile) {
  constexpr std::size_t headerAndTagCount = 132;
  constexpr std::size_t colourSpaceOffset = 16;
  constexpr std::size_t signatureOffset = 36;
  if (profile.size() < headerAndTagCount) return false;
  const std::uint32_t statedSize = std::uint32_t{profile[0]} << 24 |
                                   std::uint32_t{profile[1]} << 16 |
                                   std::uint32_t{profile[2]} << 8 | profile[3];
  return statedSize == profile.size() && holdsAt(profile, colourSpaceOffset, "RGB "sv) &&
         holdsAt(profile, signatureOffset, "acsp"sv);
}

bool isTiff(std::span<const std::uint8_t> exif) {
  constexpr std::size_t headerSize = 8;
  return exif.size() >= headerSize && (holdsAt(exif, 0, "II*\0"sv) || holdsAt(exif, 0, "MM\0*"sv));
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
  if (!image.iccProfile.empty() && !isRgbProfile(image.iccProfile)) {
    throw ImageError("the colour profile is damaged or not for RGB colours");
  }
  if (!image.exif.empty() && !isTiff(image.exif)) throw ImageError("the EXIF data is damaged");
}

Image decodeByFormat(std::span<const std::uint8_t> file, std::uint64_t pixelLimit) {
  if (holds(file, pngSignature)) return decodePng(file, pixelLimit);
  if (holds(file, jpegSignature)) return decodeJpeg(file, pixelLimit);
  throwUnknownFormat(file);
}

}  // namespace

Image decodeImage(std::span<const std::uint8_t> file, std::uint64_t pixelLimit) {
  try {
    Image image = decodeByFormat(file, std::min(pixelLimit, highestPixelLimit));
    if (!isRgbProfile(image.iccProfile)) image.iccProfile.clear();
    if (!isTiff(image.exif)) image.exif.clear();
    return image;
  } catch (const std::bad_alloc&) {
    throw ImageError("there is not enough memory to read the image");
  }
}

std::vector<std::uint8_t> encodeImage(const Image& image, ImageFormat format, int quality) {
  const bool opaque = isOpaque(image);
  checkImage(image, opaque);
  try {
    if (format == ImageFormat::Png) return encodePng(image);
    if (!opaque) throw ImageError("JPEG cannot keep transparency; choose a PNG output");
    return encodeJpeg(image, quality);
  } catch (const std::bad_alloc&) {
    throw ImageError("there is not enough memory to write the image");
  }
}

void checkImageSize(std::uint32_t width, std::uint32_t height, std::uint64_t pixelLimit) {
  if (std::uint64_t{width} * height > pixelLimit) {
    throw ImageError("the image is " + std::to_string(width) + " x " + std::to_string(height) +
                     " pixels, more than the limit of " + std::to_string(pixelLimit));
  }
}

}  // namespace tintora::cli
