// PNG files made without the code under test.
#pragma once

#include <png.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "cli/image_file.h"
#include "tests/cli/image_samples.h"

namespace tintora::cli {

inline void abortOnPngError(png_structp /*png*/, png_const_charp text) {
  std::fprintf(stderr, "the test cannot make its PNG file: %s\n", text);
  std::abort();
}

inline void ignorePngWarning(png_structp /*png*/, png_const_charp /*text*/) {}

struct PngSpec {
  png_uint_32 width = 13;
  png_uint_32 height = 11;
  int colourType = PNG_COLOR_TYPE_RGB;
  int depth = 8;
  bool interlaced = false;
  std::vector<std::uint16_t> samples;  // channel by channel, of the depth
  std::vector<png_color> palette;
  Bytes paletteAlpha;
  std::optional<png_color_16> transparent;
  Bytes iccProfile;
  Bytes exif;
  bool exifAtEnd = false;
  std::optional<int> srgbIntent;
  std::optional<png_fixed_point> gamma;
  std::optional<std::array<png_fixed_point, 8>> chromaticities;
  std::optional<std::tuple<png_uint_32, png_uint_32, int>> density;
};

inline std::size_t channelsOf(int colourType) {
  if (colourType == PNG_COLOR_TYPE_GRAY_ALPHA) return 2;
  if (colourType == PNG_COLOR_TYPE_RGB) return 3;
  return colourType == PNG_COLOR_TYPE_RGB_ALPHA ? 4 : 1;
}

inline Bytes packedRow(const PngSpec& spec, std::size_t y) {
  const std::size_t count = spec.width * channelsOf(spec.colourType);
  const auto depth = static_cast<std::size_t>(spec.depth);
  Bytes row((count * depth + 7) / 8);
  for (std::size_t i = 0; i < count; ++i) {
    const unsigned sample = spec.samples.at(y * count + i);
    if (depth == 16) {
      row[2 * i] = static_cast<std::uint8_t>(sample >> 8);
      row[2 * i + 1] = static_cast<std::uint8_t>(sample);
    } else {
      const std::size_t bit = i * depth;
      row[bit / 8] = static_cast<std::uint8_t>(row[bit / 8] | sample << (8 - depth - bit % 8));
    }
  }
  return row;
}

inline Bytes pngFile(const PngSpec& spec) {
  png_structp png =
      png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, abortOnPngError, ignorePngWarning);
  png_infop info = png_create_info_struct(png);
  Bytes file;
  png_set_write_fn(
      png, &file,
      [](png_structp codec, png_bytep bytes, std::size_t count) {
        auto& out = *static_cast<Bytes*>(png_get_io_ptr(codec));
        out.insert(out.end(), bytes, bytes + count);
      },
      [](png_structp /*codec*/) {});
  png_set_IHDR(png, info, spec.width, spec.height, spec.depth, spec.colourType,
               spec.interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE,
               PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  if (!spec.palette.empty()) {
    png_set_PLTE(png, info, spec.palette.data(), static_cast<int>(spec.palette.size()));
  }
  if (!spec.paletteAlpha.empty()) {
    png_set_tRNS(png, info, spec.paletteAlpha.data(), static_cast<int>(spec.paletteAlpha.size()),
                 nullptr);
  }
  if (spec.transparent) png_set_tRNS(png, info, nullptr, 0, &*spec.transparent);
  if (!spec.iccProfile.empty()) {
    png_set_iCCP(png, info, "profile", PNG_COMPRESSION_TYPE_BASE, spec.iccProfile.data(),
                 static_cast<png_uint_32>(spec.iccProfile.size()));
  }
  if (spec.srgbIntent) png_set_sRGB(png, info, *spec.srgbIntent);
  if (spec.gamma) png_set_gAMA_fixed(png, info, *spec.gamma);
  if (spec.chromaticities) {
    const auto& xy = *spec.chromaticities;
    png_set_cHRM_fixed(png, info, xy[0], xy[1], xy[2], xy[3], xy[4], xy[5], xy[6], xy[7]);
  }
  if (spec.density) {
    const auto& [across, down, unit] = *spec.density;
    png_set_pHYs(png, info, across, down, unit);
  }
  Bytes exif = spec.exif;
  const auto setExif = [&] {
    png_set_eXIf_1(png, info, static_cast<png_uint_32>(exif.size()), exif.data());
  };
  if (!exif.empty() && !spec.exifAtEnd) setExif();
  png_write_info(png, info);
  std::vector<Bytes> rows;
  std::vector<png_bytep> rowPointers;
  for (std::size_t y = 0; y < spec.height; ++y) rows.push_back(packedRow(spec, y));
  for (Bytes& row : rows) rowPointers.push_back(row.data());
  png_write_image(png, rowPointers.data());
  if (!exif.empty() && spec.exifAtEnd) setExif();
  png_write_end(png, info);
  png_destroy_write_struct(&png, &info);
  return file;
}

inline PngSpec randomPng(int colourType, int depth, unsigned seed = 1) {
  std::mt19937 random(seed);
  PngSpec spec;
  spec.colourType = colourType;
  spec.depth = depth;
  spec.samples.resize(spec.width * spec.height * channelsOf(colourType));
  for (auto& sample : spec.samples) {
    sample = static_cast<std::uint16_t>(random() & ((1U << depth) - 1));
  }
  if (colourType == PNG_COLOR_TYPE_PALETTE) {
    for (int i = 0; i < 1 << depth; ++i) {
      spec.palette.push_back({static_cast<png_byte>(random()), static_cast<png_byte>(random()),
                              static_cast<png_byte>(random())});
    }
  }
  return spec;
}

// Returns the B G R A pixels of the samples, by the definition of the format.
inline Bytes expectedPixels(const PngSpec& spec) {
  const auto to8 = [&](unsigned sample) {
    const double most = (1 << spec.depth) - 1;
    return static_cast<std::uint8_t>(std::lround(sample * 255.0 / most));
  };
  const std::size_t channels = channelsOf(spec.colourType);
  Bytes pixels;
  for (std::size_t i = 0; i < spec.samples.size(); i += channels) {
    const std::uint16_t* s = &spec.samples[i];
    std::array<std::uint8_t, 4> bgra{};
    if (spec.colourType == PNG_COLOR_TYPE_PALETTE) {
      const png_color& entry = spec.palette.at(s[0]);
      const std::uint8_t alpha = s[0] < spec.paletteAlpha.size() ? spec.paletteAlpha[s[0]] : 255;
      bgra = {entry.blue, entry.green, entry.red, alpha};
    } else if (channels < 3) {
      const bool cut = spec.transparent && s[0] == spec.transparent->gray;
      const std::uint8_t grey = to8(s[0]);
      bgra = {grey, grey, grey,
              channels == 2 ? to8(s[1]) : static_cast<std::uint8_t>(cut ? 0 : 255)};
    } else {
      const bool cut = spec.transparent && s[0] == spec.transparent->red &&
                       s[1] == spec.transparent->green && s[2] == spec.transparent->blue;
      bgra = {to8(s[2]), to8(s[1]), to8(s[0]),
              channels == 4 ? to8(s[3]) : static_cast<std::uint8_t>(cut ? 0 : 255)};
    }
    pixels.insert(pixels.end(), bgra.begin(), bgra.end());
  }
  return pixels;
}

inline std::uint32_t crcOf(const Bytes& bytes) {
  std::uint32_t crc = 0xFFFFFFFF;
  for (const std::uint8_t byte : bytes) {
    crc ^= byte;
    for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1) ^ ((crc & 1) != 0 ? 0xEDB88320 : 0);
  }
  return ~crc;
}

inline Bytes pngChunk(std::string_view type, const Bytes& data) {
  const Bytes checked = joined(bytesOf(type), data);
  Bytes chunk(4);
  putBigEndian32(chunk, 0, static_cast<std::uint32_t>(data.size()));
  chunk = joined(chunk, checked);
  chunk.resize(chunk.size() + 4);
  putBigEndian32(chunk, chunk.size() - 4, crcOf(checked));
  return chunk;
}

// Returns a file that claims to be of this size but has hardly any data.
inline Bytes pngOfSize(std::uint32_t width, std::uint32_t height) {
  Bytes header(13);
  putBigEndian32(header, 0, width);
  putBigEndian32(header, 4, height);
  header[8] = 8;
  header[9] = PNG_COLOR_TYPE_RGB;
  Bytes file = bytesOf("\x89PNG\r\n\x1a\n");
  file = joined(file, pngChunk("IHDR", header));
  file = joined(file, pngChunk("IDAT", bytesOf("\x78\x9c\x63\x60\0\0\0\x02\0\x01"s)));
  return joined(file, pngChunk("IEND", {}));
}

inline std::vector<std::pair<std::string, Bytes>> chunksOf(const Bytes& file) {
  std::vector<std::pair<std::string, Bytes>> chunks;
  for (std::size_t at = 8; at + 12 <= file.size();) {
    const std::size_t length = bigEndian32(file, at);
    const auto data = file.begin() + static_cast<std::ptrdiff_t>(at) + 8;
    chunks.emplace_back(std::string(data - 4, data),
                        Bytes(data, data + static_cast<std::ptrdiff_t>(length)));
    at += length + 12;
  }
  return chunks;
}

inline bool hasChunk(const Bytes& file, std::string_view type) {
  const auto chunks = chunksOf(file);
  return std::any_of(chunks.begin(), chunks.end(),
                     [&](const auto& chunk) { return chunk.first == type; });
}

// Returns the file with a chunk inserted before the first of that type.
inline Bytes withChunkBefore(const Bytes& file, std::string_view type, const Bytes& chunk) {
  Bytes result(file.begin(), file.begin() + 8);
  bool placed = false;
  for (const auto& [name, data] : chunksOf(file)) {
    if (name == type && !std::exchange(placed, true)) result = joined(result, chunk);
    result = joined(result, pngChunk(name, data));
  }
  return result;
}

}  // namespace tintora::cli
