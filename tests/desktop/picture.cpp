#include "picture.h"

#include <png.h>

#include <algorithm>
#include <ostream>

namespace tintora::desktop_test {

void PrintTo(const Area& area, std::ostream* out) {
  *out << area.width << "x" << area.height << " at " << area.x << "," << area.y;
}

Area common(const Area& a, const Area& b) {
  const int x = std::max(a.x, b.x);
  const int y = std::max(a.y, b.y);
  return {x, y, std::max(0, std::min(a.right(), b.right()) - x),
          std::max(0, std::min(a.bottom(), b.bottom()) - y)};
}

Colour colourOf(std::uint32_t pixel) {
  const auto channel = [pixel](unsigned int shift) {
    return static_cast<double>((pixel >> shift) & 0xFFU);
  };
  return {channel(16), channel(8), channel(0)};
}

Picture solid(int width, int height, std::uint32_t pixel) {
  return {width, height,
          std::vector(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), pixel)};
}

Picture partOf(const Picture& picture, const Area& part) {
  Picture result = solid(part.width, part.height, 0);
  for (int y = 0; y < part.height; ++y) {
    for (int x = 0; x < part.width; ++x) {
      result.pixels[static_cast<std::size_t>(y * part.width + x)] =
          picture.at(part.x + x, part.y + y);
    }
  }
  return result;
}

void replacePart(Picture& picture, const Picture& other, const Area& part) {
  for (int y = part.y; y < part.bottom(); ++y) {
    const auto start = static_cast<std::ptrdiff_t>(y) * picture.width + part.x;
    std::copy_n(other.pixels.begin() + start, part.width, picture.pixels.begin() + start);
  }
}

Picture noise(int width, int height, std::uint32_t seed) {
  Picture picture = solid(width, height, 0);
  std::uint32_t state = seed * 2654435761U + 1;
  for (std::uint32_t& pixel : picture.pixels) {
    state = state * 1664525U + 1013904223U;
    pixel = 0xFF000000U | (state >> 8);
  }
  return picture;
}

Colour filtered(const Colour& colour, const ColourEffect& effect) {
  Colour result{};
  for (std::size_t output = 0; output < 3; ++output) {
    double sum = 255.0 * static_cast<double>(effect[20 + output]);
    for (std::size_t input = 0; input < 3; ++input) {
      sum += static_cast<double>(effect[5 * input + output]) * colour[input];
    }
    result[output] = std::clamp(sum, 0.0, 255.0);
  }
  return result;
}

void savePicture(const Picture& picture, const std::string& path) {
  std::vector<std::uint8_t> bytes;
  for (const std::uint32_t pixel : picture.pixels) {
    for (const unsigned int shift : {16U, 8U, 0U}) {
      bytes.push_back(static_cast<std::uint8_t>(pixel >> shift));
    }
  }
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = static_cast<png_uint_32>(picture.width);
  image.height = static_cast<png_uint_32>(picture.height);
  image.format = PNG_FORMAT_RGB;
  png_image_write_to_file(&image, path.c_str(), 0, bytes.data(), 0, nullptr);
}

Picture readPicture(const std::string& path) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  if (png_image_begin_read_from_file(&image, path.c_str()) == 0) return {};
  // With this format, a pixel is 0xAARRGGBB in this machine's memory.
  image.format = PNG_FORMAT_BGRA;
  Picture picture = solid(static_cast<int>(image.width), static_cast<int>(image.height), 0);
  if (png_image_finish_read(&image, nullptr, picture.pixels.data(), 0, nullptr) == 0) return {};
  return picture;
}

}  // namespace tintora::desktop_test
