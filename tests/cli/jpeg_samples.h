// JPEG files made without the code under test.
#pragma once

// The library's header needs the other before it.
// clang-format off
#include <cstdio>
#include <jpeglib.h>
// clang-format on

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <tuple>
#include <utility>
#include <vector>

#include "cli/image_file.h"
#include "tests/cli/png_samples.h"

namespace tintora::cli {

struct JpegSpec {
  J_COLOR_SPACE from = JCS_RGB;  // of the samples
  int channels = 3;
  std::optional<J_COLOR_SPACE> in;  // of the file, if not what the library chooses
  int chromaSampling = 1;           // 2 halves the chroma in both directions
  bool progressive = false;
  bool arithmetic = false;
  bool spectralSelectionOnly = false;
  unsigned restartInterval = 0;
  std::optional<std::tuple<int, int, int>> density;  // unit, across, down
  std::vector<std::pair<int, Bytes>> markers;
  Bytes iccProfile;
};

inline Bytes jpegFile(std::uint32_t width, std::uint32_t height, const Bytes& samples,
                      const JpegSpec& spec = {}) {
  jpeg_compress_struct codec{};
  jpeg_error_mgr handlers{};
  codec.err = jpeg_std_error(&handlers);
  jpeg_create_compress(&codec);
  unsigned char* memory = nullptr;
  unsigned long size = 0;
  jpeg_mem_dest(&codec, &memory, &size);
  codec.image_width = width;
  codec.image_height = height;
  codec.input_components = spec.channels;
  codec.in_color_space = spec.from;
  jpeg_set_defaults(&codec);
  if (spec.in) jpeg_set_colorspace(&codec, *spec.in);
  jpeg_set_quality(&codec, 90, TRUE);
  codec.comp_info[0].h_samp_factor = spec.chromaSampling;
  codec.comp_info[0].v_samp_factor = spec.chromaSampling;
  codec.arith_code = spec.arithmetic ? TRUE : FALSE;
  codec.restart_interval = spec.restartInterval;
  if (spec.density) {
    codec.density_unit = static_cast<UINT8>(std::get<0>(*spec.density));
    codec.X_density = static_cast<UINT16>(std::get<1>(*spec.density));
    codec.Y_density = static_cast<UINT16>(std::get<2>(*spec.density));
  }
  if (spec.progressive) jpeg_simple_progression(&codec);
  // The channels together for the means, then one by one for the rest, all at full precision.
  static constexpr std::array<jpeg_scan_info, 4> plainScans{{{3, {0, 1, 2, 0}, 0, 0, 0, 0},
                                                             {1, {0, 0, 0, 0}, 1, 63, 0, 0},
                                                             {1, {1, 0, 0, 0}, 1, 63, 0, 0},
                                                             {1, {2, 0, 0, 0}, 1, 63, 0, 0}}};
  if (spec.spectralSelectionOnly) {
    codec.scan_info = plainScans.data();
    codec.num_scans = plainScans.size();
  }
  jpeg_start_compress(&codec, TRUE);
  for (const auto& [marker, data] : spec.markers) {
    jpeg_write_marker(&codec, marker, data.data(), static_cast<unsigned>(data.size()));
  }
  if (!spec.iccProfile.empty()) {
    jpeg_write_icc_profile(&codec, spec.iccProfile.data(),
                           static_cast<unsigned>(spec.iccProfile.size()));
  }
  Bytes row;
  const std::size_t stride = std::size_t{width} * static_cast<std::size_t>(spec.channels);
  while (codec.next_scanline < height) {
    const auto start = samples.begin() + static_cast<std::ptrdiff_t>(codec.next_scanline * stride);
    row.assign(start, start + static_cast<std::ptrdiff_t>(stride));
    JSAMPROW pointer = row.data();
    jpeg_write_scanlines(&codec, &pointer, 1);
  }
  jpeg_finish_compress(&codec);
  jpeg_destroy_compress(&codec);
  Bytes file(memory, memory + size);
  std::free(memory);
  return file;
}

inline Bytes jpegFile(const Image& image, JpegSpec spec = {}) {
  spec.from = JCS_EXT_BGRX;
  spec.channels = 4;
  return jpegFile(image.width, image.height, image.pixels, spec);
}

// Returns the R G B pixels that libjpeg decodes from a file.
inline Bytes plainlyDecoded(const Bytes& file) {
  jpeg_decompress_struct codec{};
  jpeg_error_mgr handlers{};
  codec.err = jpeg_std_error(&handlers);
  jpeg_create_decompress(&codec);
  jpeg_mem_src(&codec, file.data(), file.size());
  jpeg_read_header(&codec, TRUE);
  codec.out_color_space = JCS_RGB;
  codec.dct_method = JDCT_ISLOW;
  jpeg_start_decompress(&codec);
  Bytes rgb(std::size_t{codec.output_width} * codec.output_height * 3);
  while (codec.output_scanline < codec.output_height) {
    JSAMPROW row = &rgb[std::size_t{codec.output_scanline} * codec.output_width * 3];
    jpeg_read_scanlines(&codec, &row, 1);
  }
  jpeg_finish_decompress(&codec);
  jpeg_destroy_decompress(&codec);
  return rgb;
}

inline Bytes toBgra(const Bytes& rgb) {
  Bytes bgra;
  for (std::size_t i = 0; i < rgb.size(); i += 3) {
    bgra.insert(bgra.end(), {rgb[i + 2], rgb[i + 1], rgb[i], 255});
  }
  return bgra;
}

// Returns the place of the first marker 0xFF code, or of the last one.
inline std::size_t findMarker(const Bytes& file, std::uint8_t code, bool last = false) {
  const std::array<std::uint8_t, 2> marker{0xFF, code};
  const auto found = last ? std::find_end(file.begin(), file.end(), marker.begin(), marker.end())
                          : std::search(file.begin(), file.end(), marker.begin(), marker.end());
  EXPECT_NE(found, file.end());
  return static_cast<std::size_t>(found - file.begin());
}

inline constexpr std::uint8_t frameMarker = 0xC0;
inline constexpr std::uint8_t tablesMarker = 0xC4;
inline constexpr std::uint8_t scanMarker = 0xDA;
inline constexpr std::uint8_t endMarker = 0xD9;

inline Bytes slice(const Bytes& bytes, std::size_t from, std::size_t to) {
  return {bytes.begin() + static_cast<std::ptrdiff_t>(from),
          bytes.begin() + static_cast<std::ptrdiff_t>(to)};
}

// Returns a file of a few hundred bytes with everything that a reader looks for.
inline Bytes smallRichPng() {
  PngSpec spec = randomPng(PNG_COLOR_TYPE_PALETTE, 4);
  spec.interlaced = true;
  spec.paletteAlpha = {0, 17, 128};
  spec.iccProfile = profileOf("RGB ");
  spec.exif = exifOf();
  spec.density = {2835, 2835, PNG_RESOLUTION_METER};
  return pngFile(spec);
}

inline Bytes smallRichJpeg(bool progressive) {
  JpegSpec spec;
  spec.progressive = progressive;
  spec.chromaSampling = 2;
  spec.restartInterval = 1;
  spec.density = {1, 72, 72};
  spec.markers = {{JPEG_APP0 + 1, joined(bytesOf("Exif\0\0"s), exifOf())},
                  {JPEG_COM, Bytes(40, 'x')}};
  spec.iccProfile = profileOf("RGB ");
  return jpegFile(randomImage(19, 17, false, 3), spec);
}

}  // namespace tintora::cli
