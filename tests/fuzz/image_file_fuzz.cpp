// Any bytes as an image file: reading them ends in an image or an ImageError, an image read can be
// written and read again, and filtering it row by row, with its palette, profile and EXIF data,
// makes a file of the same size or ends in an ImageError.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "cli/exif.h"
#include "cli/filter_stream.h"
#include "cli/image_file.h"
#include "engine/colour_simulation.h"

namespace tintora::cli {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::uint64_t pixelLimit = std::uint64_t{1} << 16;

void require(bool holds) {
  if (!holds) std::abort();
}

std::optional<Image> decoded(std::span<const std::uint8_t> file) {
  try {
    return decodeImage(file, pixelLimit);
  } catch (const ImageError&) {
    return std::nullopt;
  }
}

void checkPng(const Image& image) {
  const Image back = decodeImage(encodeImage(image, ImageFormat::Png));
  require(back.width == image.width && back.height == image.height);
  require(back.hasAlpha == image.hasAlpha);
  require(back.pixels == image.pixels);
  require(back.exif == image.exif);
  require(back.iccProfile == image.iccProfile);
  require(back.pngColourSpace == image.pngColourSpace);
}

void checkJpeg(const Image& image) {
  const Image back = decodeImage(encodeImage(image, ImageFormat::Jpeg));
  require(back.width == image.width && back.height == image.height);
  require(back.exif == image.exif);
  require(back.iccProfile == image.iccProfile);
}

// A profile can be too malformed for PNG, and EXIF data too large for JPEG; nothing else may be in
// the way of an image that was read.
void checkImage(Image image) {
  require(image.width > 0 && image.height > 0);
  require(std::uint64_t{image.width} * image.height <= pixelLimit);
  require(image.pixels.size() == std::size_t{image.width} * image.height * 4);

  constexpr std::size_t mostJpegExif = 65527;
  if (image.exif.size() > mostJpegExif) image.exif.clear();
  bool opaque = true;
  for (std::size_t i = 3; i < image.pixels.size(); i += 4)
    opaque = opaque && image.pixels[i] == 255;
  require(opaque || image.hasAlpha);
  if (opaque && std::max(image.width, image.height) <= 65500) checkJpeg(image);

  try {
    checkPng(image);
  } catch (const ImageError&) {
    require(!image.iccProfile.empty());
    image.iccProfile.clear();
    checkPng(image);
  }
}

// On encoded values, and in linear light, where colour profiles are converted.
const FilterSet& filtersOf(bool linear) {
  static const FilterSet encoded(
      makeSimulation({CvdType::Tritan, 1.0, SimulationAlgorithm::Yang2008}));
  static const FilterSet halfPlanes(
      makeSimulation({CvdType::Protan, 0.7, SimulationAlgorithm::Brettel1997}));
  return linear ? halfPlanes : encoded;
}

void checkFiltering(std::span<const std::uint8_t> file, bool linear, ImageFormat format,
                    const std::optional<Image>& image) {
  ByteSource source;
  source.rest = file;
  ByteSink sink;
  try {
    filterStream(source, sink, filtersOf(linear), {format, 90, pixelLimit});
  } catch (const ImageReadError&) {
    require(!image);
    return;
  } catch (const ImageWriteError&) {
    return;  // a malformed profile, transparency in JPEG, a side too long for it
  }
  require(image.has_value());
  const Image filtered = decodeImage(sink.bytes);
  require(std::uint64_t{filtered.width} * filtered.height ==
          std::uint64_t{image->width} * image->height);
  require(format == ImageFormat::Jpeg || exifOrientation(image->exif) != 1 ||
          filtered.width == image->width);
}

void checkFile(std::span<const std::uint8_t> file) {
  auto image = decoded(file);
  for (const bool linear : {false, true}) {
    for (const ImageFormat format : {ImageFormat::Png, ImageFormat::Jpeg}) {
      checkFiltering(file, linear, format, image);
    }
  }
  if (image) checkImage(std::move(*image));
}

std::uint32_t crcOf(std::span<const std::uint8_t> bytes) {
  std::uint32_t crc = 0xFFFFFFFF;
  for (const std::uint8_t byte : bytes) {
    crc ^= byte;
    for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1) ^ ((crc & 1) != 0 ? 0xEDB88320 : 0);
  }
  return ~crc;
}

// Sets the checksums of a PNG file right, which changed bytes would hardly ever get past.
void repairChecksums(Bytes& file) {
  constexpr std::size_t signature = 8;
  for (std::size_t at = signature; at + 12 <= file.size();) {
    const std::size_t length = std::size_t{file[at]} << 24 | std::size_t{file[at + 1]} << 16 |
                               std::size_t{file[at + 2]} << 8 | file[at + 3];
    if (length > file.size() - at - 12) return;
    const std::uint32_t crc = crcOf(std::span(file).subspan(at + 4, length + 4));
    for (std::size_t i = 0; i < 4; ++i) {
      file[at + 8 + length + i] = static_cast<std::uint8_t>(crc >> (24 - 8 * i));
    }
    at += length + 12;
  }
}

}  // namespace
}  // namespace tintora::cli

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tintora::cli;
  checkFile({data, size});
  constexpr std::uint8_t firstOfPng = 0x89;
  if (size > 0 && data[0] == firstOfPng) {
    Bytes repaired(data, data + size);
    repairChecksums(repaired);
    checkFile(repaired);
  }
  return 0;
}
