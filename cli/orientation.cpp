#include "cli/orientation.h"

#include <array>
#include <cstring>
#include <utility>

#include "cli/exif.h"

namespace tintora::cli {

bool isSideways(int orientation) {
  constexpr int firstSideways = 5;
  return orientation >= firstSideways;
}

PixelPlace storedPlace(int orientation, PixelPlace shown, std::size_t width, std::size_t height) {
  constexpr std::array<bool, 9> mirrorsX{false, false, true, true, false, false, false, true, true};
  constexpr std::array<bool, 9> mirrorsY{false, false, false, true, true, false, true, true, false};
  const PixelPlace place = isSideways(orientation) ? PixelPlace{shown.y, shown.x} : shown;
  const auto o = static_cast<std::size_t>(orientation);
  return {mirrorsX[o] ? width - 1 - place.x : place.x,
          mirrorsY[o] ? height - 1 - place.y : place.y};
}

Image uprightPicture(const Image& picture) {
  constexpr std::size_t pixelBytes = 4;
  const int orientation = exifOrientation(picture.exif);
  Image upright = picture;
  upright.exif.clear();
  if (isSideways(orientation)) std::swap(upright.width, upright.height);
  std::uint8_t* pixel = upright.pixels.data();
  for (std::size_t y = 0; y < upright.height; ++y) {
    for (std::size_t x = 0; x < upright.width; ++x, pixel += pixelBytes) {
      const PixelPlace from = storedPlace(orientation, {x, y}, picture.width, picture.height);
      std::memcpy(pixel, &picture.pixels[pixelBytes * (from.y * picture.width + from.x)],
                  pixelBytes);
    }
  }
  return upright;
}

}  // namespace tintora::cli
