// Images and parts of files for the tests of the codecs.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "cli/image_file.h"
#include "tests/cli/bytes.h"

namespace tintora::cli {

using namespace std::string_literals;

inline Bytes joined(const Bytes& first, const Bytes& second) {
  Bytes both = first;
  both.insert(both.end(), second.begin(), second.end());
  return both;
}

inline void putBigEndian32(Bytes& bytes, std::size_t at, std::uint32_t value) {
  for (std::size_t i = 0; i < 4; ++i) {
    bytes.at(at + i) = static_cast<std::uint8_t>(value >> (24 - 8 * i));
  }
}

inline std::uint32_t bigEndian32(const Bytes& bytes, std::size_t at) {
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < 4; ++i) value = value << 8 | bytes.at(at + i);
  return value;
}

// Returns the error with which decodeImage refuses a file, or nothing if it reads it.
inline std::optional<std::string> refusalOf(const Bytes& file,
                                            std::uint64_t limit = defaultPixelLimit) {
  try {
    decodeImage(file, limit);
  } catch (const ImageError& error) {
    EXPECT_EQ(std::string(error.what()).find('\n'), std::string::npos);
    return error.what();
  }
  return std::nullopt;
}

inline std::optional<std::string> refusalToEncode(const Image& image, ImageFormat format) {
  try {
    encodeImage(image, format);
  } catch (const ImageError& error) {
    return error.what();
  }
  return std::nullopt;
}

inline bool contains(const std::optional<std::string>& text, std::string_view part) {
  return text && text->find(part) != std::string::npos;
}

// Returns a colour profile of this size: a header that names the colour space, no tags, and
// padding.
inline Bytes profileOf(std::string_view colourSpace, std::size_t size = 300) {
  Bytes profile(size);
  std::mt19937 random(7);
  for (std::size_t i = 132; i < size; ++i) profile[i] = static_cast<std::uint8_t>(random());
  putBigEndian32(profile, 0, static_cast<std::uint32_t>(size));
  const auto put = [&](std::size_t at, std::string_view text) {
    std::copy(text.begin(), text.end(), profile.begin() + static_cast<std::ptrdiff_t>(at));
  };
  put(8, "\x02\x40");
  put(12, "mntr");
  put(16, colourSpace);
  put(20, "XYZ ");
  put(36, "acsp");
  putBigEndian32(profile, 68, 0xF6D6);
  putBigEndian32(profile, 72, 0x10000);
  putBigEndian32(profile, 76, 0xD32D);
  return profile;
}

// Returns EXIF data of this size: an orientation and padding.
inline Bytes exifOf(std::size_t size = 26) {
  Bytes exif = bytesOf("MM\0*\0\0\0\x08\0\x01\x01\x12\0\x03\0\0\0\x01\0\x06\0\0\0\0\0\0"s);
  exif.resize(size, 0x5A);
  return exif;
}

inline Image randomImage(std::uint32_t width, std::uint32_t height, bool hasAlpha, unsigned seed) {
  std::mt19937 random(seed);
  Image image;
  image.width = width;
  image.height = height;
  image.hasAlpha = hasAlpha;
  image.pixels.resize(std::size_t{width} * height * 4);
  for (std::size_t i = 0; i < image.pixels.size(); ++i) {
    const auto value = random() % 300;
    image.pixels[i] = static_cast<std::uint8_t>(i % 4 == 3 && !hasAlpha ? 255
                                                : value < 256           ? value
                                                                        : value % 2 * 255);
  }
  return image;
}

// Returns an image without noise or edges, which JPEG hardly changes.
inline Image smoothImage(std::uint32_t width, std::uint32_t height) {
  Image image = randomImage(width, height, false, 1);
  for (std::size_t y = 0; y < height; ++y) {
    for (std::size_t x = 0; x < width; ++x) {
      std::uint8_t* pixel = &image.pixels[(y * width + x) * 4];
      pixel[0] = static_cast<std::uint8_t>(x * 200 / width + 20);
      pixel[1] = static_cast<std::uint8_t>(y * 200 / height + 20);
      pixel[2] = static_cast<std::uint8_t>((x + y) * 200 / (width + height) + 20);
    }
  }
  return image;
}

inline int largestDifference(const Bytes& a, const Bytes& b) {
  if (a.size() != b.size()) return std::numeric_limits<int>::max();
  int largest = 0;
  for (std::size_t i = 0; i < a.size(); ++i) largest = std::max(largest, std::abs(a[i] - b[i]));
  return largest;
}

}  // namespace tintora::cli
