#include "cli/orientation.h"

#include <array>
#include <cstddef>
#include <cstring>
#include <utility>

namespace tintora::cli {

namespace {

constexpr int asItStands = 1;
constexpr std::size_t bytesPerPixel = 4;

// A number of a TIFF structure, least significant byte first if it begins with "II".
std::uint32_t number(std::span<const std::uint8_t> tiff, std::size_t at, std::size_t bytes) {
  const bool littleEndian = tiff[0] == 'I';
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < bytes; ++i) {
    value = value << 8U | tiff[at + (littleEndian ? bytes - 1 - i : i)];
  }
  return value;
}

struct Place {
  std::uint32_t x, y;
};

// Where the pixel at a place of the upright picture stands in the other, which is that wide and
// high.
Place sourceOf(int orientation, Place to, std::uint32_t width, std::uint32_t height) {
  const bool turned = orientation > 4;
  const Place place = turned ? Place{to.y, to.x} : to;
  constexpr std::array<bool, 9> mirrorsX{false, false, true, true, false, false, false, true, true};
  constexpr std::array<bool, 9> mirrorsY{false, false, false, true, true, false, true, true, false};
  const auto o = static_cast<std::size_t>(orientation);
  return {mirrorsX[o] ? width - 1 - place.x : place.x,
          mirrorsY[o] ? height - 1 - place.y : place.y};
}

}  // namespace

int orientationOf(std::span<const std::uint8_t> exif) {
  constexpr std::size_t headerSize = 8;
  constexpr std::size_t entrySize = 12;
  constexpr std::uint32_t orientationTag = 0x0112;
  constexpr std::uint32_t shortType = 3;
  if (exif.size() < headerSize) return asItStands;
  const std::size_t directory = number(exif, 4, 4);
  if (directory > exif.size() - 2) return asItStands;
  const std::size_t entries = number(exif, directory, 2);
  for (std::size_t i = 0; i < entries; ++i) {
    const std::size_t entry = directory + 2 + i * entrySize;
    if (entry + entrySize > exif.size()) break;
    if (number(exif, entry, 2) != orientationTag) continue;
    if (number(exif, entry + 2, 2) != shortType || number(exif, entry + 4, 4) != 1) break;
    const std::uint32_t value = number(exif, entry + 8, 2);
    return value >= 1 && value <= 8 ? static_cast<int>(value) : asItStands;
  }
  return asItStands;
}

Image uprightPicture(const Image& picture) {
  const int orientation = orientationOf(picture.exif);
  Image upright = picture;
  upright.exif.clear();
  if (orientation == asItStands) return upright;
  if (orientation > 4) std::swap(upright.width, upright.height);
  std::uint8_t* pixel = upright.pixels.data();
  for (std::uint32_t y = 0; y < upright.height; ++y) {
    for (std::uint32_t x = 0; x < upright.width; ++x, pixel += bytesPerPixel) {
      const Place from = sourceOf(orientation, {x, y}, picture.width, picture.height);
      const std::size_t at = std::size_t{from.y} * picture.width + from.x;
      std::memcpy(pixel, picture.pixels.data() + bytesPerPixel * at, bytesPerPixel);
    }
  }
  return upright;
}

}  // namespace tintora::cli
