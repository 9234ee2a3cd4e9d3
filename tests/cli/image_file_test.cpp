#include "cli/image_file.h"

#include <gtest/gtest.h>
#include <png.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <limits>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

// After <cstdio>, which it needs.
#include <jpeglib.h>

namespace tintora::cli {
namespace {

using namespace std::string_literals;
using Bytes = std::vector<std::uint8_t>;

Bytes bytesOf(std::string_view text) {
  return {text.begin(), text.end()};
}

Bytes joined(const Bytes& first, const Bytes& second) {
  Bytes both = first;
  both.insert(both.end(), second.begin(), second.end());
  return both;
}

void putBigEndian32(Bytes& bytes, std::size_t at, std::uint32_t value) {
  for (std::size_t i = 0; i < 4; ++i) {
    bytes.at(at + i) = static_cast<std::uint8_t>(value >> (24 - 8 * i));
  }
}

std::uint32_t bigEndian32(const Bytes& bytes, std::size_t at) {
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < 4; ++i) value = value << 8 | bytes.at(at + i);
  return value;
}

// What decodeImage says of a file it refuses; nothing if it does not refuse it.
std::optional<std::string> refusalOf(const Bytes& file, std::uint64_t limit = maxImagePixels) {
  try {
    decodeImage(file, limit);
  } catch (const ImageError& error) {
    EXPECT_EQ(std::string(error.what()).find('\n'), std::string::npos);
    return error.what();
  }
  return std::nullopt;
}

std::optional<std::string> refusalToEncode(const Image& image, ImageFormat format) {
  try {
    encodeImage(image, format);
  } catch (const ImageError& error) {
    return error.what();
  }
  return std::nullopt;
}

bool contains(const std::optional<std::string>& text, std::string_view part) {
  return text && text->find(part) != std::string::npos;
}

// A profile of a colour space of four letters: a header, no tags, and a filling up to the size.
Bytes profileOf(std::string_view colourSpace, std::size_t size = 300) {
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

// EXIF data with an orientation and a filling up to the size.
Bytes exifOf(std::size_t size = 26) {
  Bytes exif = bytesOf("MM\0*\0\0\0\x08\0\x01\x01\x12\0\x03\0\0\0\x01\0\x06\0\0\0\0\0\0"s);
  exif.resize(size, 0x5A);
  return exif;
}

Image randomImage(std::uint32_t width, std::uint32_t height, bool hasAlpha, unsigned seed) {
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

// Without noise and edges, so that JPEG keeps it closely.
Image smoothImage(std::uint32_t width, std::uint32_t height) {
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

int largestDifference(const Bytes& a, const Bytes& b) {
  if (a.size() != b.size()) return std::numeric_limits<int>::max();
  int largest = 0;
  for (std::size_t i = 0; i < a.size(); ++i) largest = std::max(largest, std::abs(a[i] - b[i]));
  return largest;
}

// ---- PNG files made without the code under test

void abortOnPngError(png_structp /*png*/, png_const_charp text) {
  std::fprintf(stderr, "the test cannot make its PNG file: %s\n", text);
  std::abort();
}

void ignorePngWarning(png_structp /*png*/, png_const_charp /*text*/) {}

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

std::size_t channelsOf(int colourType) {
  if (colourType == PNG_COLOR_TYPE_GRAY_ALPHA) return 2;
  if (colourType == PNG_COLOR_TYPE_RGB) return 3;
  return colourType == PNG_COLOR_TYPE_RGB_ALPHA ? 4 : 1;
}

Bytes packedRow(const PngSpec& spec, std::size_t y) {
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

Bytes pngFile(const PngSpec& spec) {
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

PngSpec randomPng(int colourType, int depth, unsigned seed = 1) {
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

// The B G R A that the samples mean, by the arithmetic of the definition.
Bytes expectedPixels(const PngSpec& spec) {
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

std::uint32_t crcOf(const Bytes& bytes) {
  std::uint32_t crc = 0xFFFFFFFF;
  for (const std::uint8_t byte : bytes) {
    crc ^= byte;
    for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1) ^ ((crc & 1) != 0 ? 0xEDB88320 : 0);
  }
  return ~crc;
}

Bytes pngChunk(std::string_view type, const Bytes& data) {
  const Bytes checked = joined(bytesOf(type), data);
  Bytes chunk(4);
  putBigEndian32(chunk, 0, static_cast<std::uint32_t>(data.size()));
  chunk = joined(chunk, checked);
  chunk.resize(chunk.size() + 4);
  putBigEndian32(chunk, chunk.size() - 4, crcOf(checked));
  return chunk;
}

// A file that claims to be of this size and has hardly any data.
Bytes pngOfSize(std::uint32_t width, std::uint32_t height) {
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

std::vector<std::pair<std::string, Bytes>> chunksOf(const Bytes& file) {
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

bool hasChunk(const Bytes& file, std::string_view type) {
  const auto chunks = chunksOf(file);
  return std::any_of(chunks.begin(), chunks.end(),
                     [&](const auto& chunk) { return chunk.first == type; });
}

// The file with a chunk put in before the first of that type.
Bytes withChunkBefore(const Bytes& file, std::string_view type, const Bytes& chunk) {
  Bytes result(file.begin(), file.begin() + 8);
  bool placed = false;
  for (const auto& [name, data] : chunksOf(file)) {
    if (name == type && !std::exchange(placed, true)) result = joined(result, chunk);
    result = joined(result, pngChunk(name, data));
  }
  return result;
}

// ---- JPEG files made without the code under test

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

Bytes jpegFile(std::uint32_t width, std::uint32_t height, const Bytes& samples,
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
  const Bytes file(memory, memory + size);
  std::free(memory);
  return file;
}

Bytes jpegFile(const Image& image, JpegSpec spec = {}) {
  spec.from = JCS_EXT_BGRX;
  spec.channels = 4;
  return jpegFile(image.width, image.height, image.pixels, spec);
}

// What the library itself makes of a JPEG file, as R G B.
Bytes plainlyDecoded(const Bytes& file) {
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

Bytes toBgra(const Bytes& rgb) {
  Bytes bgra;
  for (std::size_t i = 0; i < rgb.size(); i += 3) {
    bgra.insert(bgra.end(), {rgb[i + 2], rgb[i + 1], rgb[i], 255});
  }
  return bgra;
}

// Where the marker 0xFF code stands, from the end if last.
std::size_t findMarker(const Bytes& file, std::uint8_t code, bool last = false) {
  const std::array<std::uint8_t, 2> marker{0xFF, code};
  const auto found = last ? std::find_end(file.begin(), file.end(), marker.begin(), marker.end())
                          : std::search(file.begin(), file.end(), marker.begin(), marker.end());
  EXPECT_NE(found, file.end());
  return static_cast<std::size_t>(found - file.begin());
}

constexpr std::uint8_t frameMarker = 0xC0;
constexpr std::uint8_t tablesMarker = 0xC4;
constexpr std::uint8_t scanMarker = 0xDA;
constexpr std::uint8_t endMarker = 0xD9;

Bytes slice(const Bytes& bytes, std::size_t from, std::size_t to) {
  return {bytes.begin() + static_cast<std::ptrdiff_t>(from),
          bytes.begin() + static_cast<std::ptrdiff_t>(to)};
}

// A file of a few hundred bytes with one of everything that is read from it.
Bytes smallRichPng() {
  PngSpec spec = randomPng(PNG_COLOR_TYPE_PALETTE, 4);
  spec.interlaced = true;
  spec.paletteAlpha = {0, 17, 128};
  spec.iccProfile = profileOf("RGB ");
  spec.exif = exifOf();
  spec.density = {2835, 2835, PNG_RESOLUTION_METER};
  return pngFile(spec);
}

Bytes smallRichJpeg(bool progressive) {
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

// ---- PNG in

struct PngKind {
  const char* name;
  int colourType;
  int depth;
};

using PngKindAndInterlace = std::tuple<PngKind, bool>;

std::string nameOfKind(const testing::TestParamInfo<PngKindAndInterlace>& test) {
  const auto& [kind, interlaced] = test.param;
  return kind.name + (interlaced ? "Interlaced"s : ""s);
}

const auto kindsWithoutAlpha = testing::Values(
    PngKind{"Grey1", PNG_COLOR_TYPE_GRAY, 1}, PngKind{"Grey2", PNG_COLOR_TYPE_GRAY, 2},
    PngKind{"Grey4", PNG_COLOR_TYPE_GRAY, 4}, PngKind{"Grey8", PNG_COLOR_TYPE_GRAY, 8},
    PngKind{"Grey16", PNG_COLOR_TYPE_GRAY, 16}, PngKind{"Rgb8", PNG_COLOR_TYPE_RGB, 8},
    PngKind{"Rgb16", PNG_COLOR_TYPE_RGB, 16}, PngKind{"Palette1", PNG_COLOR_TYPE_PALETTE, 1},
    PngKind{"Palette2", PNG_COLOR_TYPE_PALETTE, 2}, PngKind{"Palette4", PNG_COLOR_TYPE_PALETTE, 4},
    PngKind{"Palette8", PNG_COLOR_TYPE_PALETTE, 8});

const auto kindsWithAlpha = testing::Values(PngKind{"GreyAlpha8", PNG_COLOR_TYPE_GRAY_ALPHA, 8},
                                            PngKind{"GreyAlpha16", PNG_COLOR_TYPE_GRAY_ALPHA, 16},
                                            PngKind{"Rgba8", PNG_COLOR_TYPE_RGB_ALPHA, 8},
                                            PngKind{"Rgba16", PNG_COLOR_TYPE_RGB_ALPHA, 16});

class DecodePngKind : public testing::TestWithParam<PngKindAndInterlace> {};

TEST_P(DecodePngKind, GivesThePixelsTheSamplesMean) {
  const auto& [kind, interlaced] = GetParam();
  PngSpec spec = randomPng(kind.colourType, kind.depth);
  spec.interlaced = interlaced;
  const Image image = decodeImage(pngFile(spec));
  EXPECT_EQ(image.width, spec.width);
  EXPECT_EQ(image.height, spec.height);
  EXPECT_EQ(image.hasAlpha, (kind.colourType & PNG_COLOR_MASK_ALPHA) != 0);
  EXPECT_EQ(image.pixels, expectedPixels(spec));
}

INSTANTIATE_TEST_SUITE_P(WithoutAlpha, DecodePngKind,
                         testing::Combine(kindsWithoutAlpha, testing::Bool()), nameOfKind);
INSTANTIATE_TEST_SUITE_P(WithAlpha, DecodePngKind,
                         testing::Combine(kindsWithAlpha, testing::Bool()), nameOfKind);

class DecodePngTransparencyChunk : public testing::TestWithParam<PngKindAndInterlace> {};

TEST_P(DecodePngTransparencyChunk, GivesTheAlphaItMeans) {
  const auto& [kind, interlaced] = GetParam();
  PngSpec spec = randomPng(kind.colourType, kind.depth);
  spec.interlaced = interlaced;
  if (kind.colourType == PNG_COLOR_TYPE_PALETTE) {
    spec.paletteAlpha = {0, 100};
  } else if (kind.colourType == PNG_COLOR_TYPE_GRAY) {
    spec.transparent = png_color_16{0, 0, 0, 0, spec.samples[20]};
  } else {
    spec.transparent = png_color_16{0, spec.samples[60], spec.samples[61], spec.samples[62], 0};
  }
  const Image image = decodeImage(pngFile(spec));
  EXPECT_TRUE(image.hasAlpha);
  EXPECT_EQ(image.pixels, expectedPixels(spec));
}

INSTANTIATE_TEST_SUITE_P(AllKinds, DecodePngTransparencyChunk,
                         testing::Combine(kindsWithoutAlpha, testing::Bool()), nameOfKind);

TEST(DecodePng, RoundsEverySampleOf16BitsToTheNearestOf8) {
  PngSpec spec;
  spec.width = spec.height = 256;
  spec.colourType = PNG_COLOR_TYPE_GRAY;
  spec.depth = 16;
  for (unsigned sample = 0; sample < 65536; ++sample) {
    spec.samples.push_back(static_cast<std::uint16_t>(sample));
  }
  EXPECT_EQ(decodeImage(pngFile(spec)).pixels, expectedPixels(spec));
}

TEST(DecodePng, TellsSamplesOf16BitsApartFromTheTransparentOneBeforeRounding) {
  PngSpec spec;
  spec.width = 2;
  spec.height = 1;
  spec.colourType = PNG_COLOR_TYPE_GRAY;
  spec.depth = 16;
  spec.samples = {0x8080, 0x8081};
  spec.transparent = png_color_16{0, 0, 0, 0, 0x8080};
  EXPECT_EQ(decodeImage(pngFile(spec)).pixels, (Bytes{128, 128, 128, 0, 128, 128, 128, 255}));
}

TEST(DecodePng, LeavesThePixelsAsTheyAreWhateverTheGamma) {
  for (const int depth : {8, 16}) {
    PngSpec spec = randomPng(PNG_COLOR_TYPE_RGB, depth);
    spec.gamma = 100000;
    spec.chromaticities = {31270, 32900, 70000, 29000, 20000, 70000, 15000, 5000};
    const Bytes file = pngFile(spec);
    ASSERT_TRUE(hasChunk(file, "gAMA"));
    EXPECT_EQ(decodeImage(file).pixels, expectedPixels(spec));
  }
}

TEST(DecodePng, IgnoresTextsAndUnknownRemarksAndWhatFollowsTheEnd) {
  const Bytes plain = pngFile(randomPng(PNG_COLOR_TYPE_RGB, 8));
  Bytes file = withChunkBefore(plain, "IDAT", pngChunk("tEXt", bytesOf("Title\0x"s)));
  file = withChunkBefore(file, "IDAT", pngChunk("teST", bytesOf("anything")));
  file = joined(file, bytesOf("trailing bytes"));
  EXPECT_EQ(decodeImage(file).pixels, decodeImage(plain).pixels);
}

TEST(DecodePng, FindsExifDataAfterThePixelsToo) {
  PngSpec spec = randomPng(PNG_COLOR_TYPE_RGB, 8);
  spec.exif = exifOf();
  spec.exifAtEnd = true;
  const Bytes file = pngFile(spec);
  ASSERT_EQ(chunksOf(file).at(chunksOf(file).size() - 2).first, "eXIf");
  EXPECT_EQ(decodeImage(file).exif, spec.exif);
}

// ---- JPEG in

TEST(DecodeJpeg, GivesWhatTheLibraryDecodesForEveryKind) {
  const Image image = smoothImage(37, 29);
  JpegSpec subsampled;
  subsampled.chromaSampling = 2;
  JpegSpec progressive;
  progressive.progressive = true;
  JpegSpec arithmetic;
  arithmetic.arithmetic = true;
  JpegSpec restarts;
  restarts.restartInterval = 2;
  JpegSpec rgb;
  rgb.in = JCS_RGB;
  JpegSpec grey;
  grey.in = JCS_GRAYSCALE;
  const std::map<std::string, JpegSpec> kinds{
      {"plain", {}},          {"subsampled", subsampled}, {"progressive", progressive},
      {"restarts", restarts}, {"arithmetic", arithmetic}, {"RGB", rgb},
      {"greyscale", grey},
  };
  for (const auto& [name, spec] : kinds) {
    SCOPED_TRACE(name);
    const Bytes file = jpegFile(image, spec);
    const Image decoded = decodeImage(file);
    EXPECT_EQ(decoded.width, 37U);
    EXPECT_EQ(decoded.height, 29U);
    EXPECT_FALSE(decoded.hasAlpha);
    EXPECT_EQ(decoded.pixels, toBgra(plainlyDecoded(file)));
    if (name != "greyscale") {
      EXPECT_LE(largestDifference(decoded.pixels, image.pixels), 12);
    }
  }
}

TEST(DecodeJpeg, RefusesCmyk) {
  const Bytes samples(16 * 16 * 4, 100);
  JpegSpec cmyk;
  cmyk.from = JCS_CMYK;
  cmyk.channels = 4;
  EXPECT_TRUE(contains(refusalOf(jpegFile(16, 16, samples, cmyk)), "CMYK"));
  cmyk.in = JCS_YCCK;
  EXPECT_TRUE(contains(refusalOf(jpegFile(16, 16, samples, cmyk)), "CMYK"));
}

TEST(DecodeJpeg, RefusesTwoChannels) {
  JpegSpec spec;
  spec.from = JCS_UNKNOWN;
  spec.channels = 2;
  EXPECT_TRUE(contains(refusalOf(jpegFile(16, 16, Bytes(16 * 16 * 2, 100), spec)), "2 channels"));
}

TEST(DecodeJpeg, RefusesAFileOfEndlessScansButNotOfMany) {
  JpegSpec spec;
  spec.spectralSelectionOnly = true;
  const Bytes file = jpegFile(smoothImage(24, 24), spec);
  const std::size_t end = findMarker(file, endMarker, true);
  const Bytes lastScan = slice(file, findMarker(file, tablesMarker, true), end);
  const auto withScans = [&](int count) {
    Bytes longer = slice(file, 0, end);
    for (int i = 0; i < count; ++i) longer = joined(longer, lastScan);
    return joined(longer, slice(file, end, file.size()));
  };
  EXPECT_EQ(decodeImage(withScans(50)).pixels, decodeImage(file).pixels);
  EXPECT_TRUE(contains(refusalOf(withScans(5000)), "too many scans"));
}

TEST(DecodeJpeg, ToleratesStrayBytesBetweenTheDataAndTheEnd) {
  const Bytes file = jpegFile(smoothImage(24, 24));
  const std::size_t end = findMarker(file, endMarker, true);
  const Bytes longer =
      joined(joined(slice(file, 0, end), Bytes(40, 0)), slice(file, end, file.size()));
  EXPECT_EQ(decodeImage(longer).pixels, decodeImage(file).pixels);
}

TEST(DecodeJpeg, IgnoresWhatFollowsTheEnd) {
  const Bytes file = jpegFile(smoothImage(24, 24));
  EXPECT_EQ(decodeImage(joined(file, bytesOf("trailing bytes"))).pixels, decodeImage(file).pixels);
}

TEST(DecodeJpeg, RefusesAPictureWhoseDataEndsBeforeItsEndMarker) {
  for (const bool progressive : {false, true}) {
    JpegSpec spec;
    spec.progressive = progressive;
    const Bytes file = jpegFile(randomImage(64, 64, false, 5), spec);
    const std::size_t scan = findMarker(file, scanMarker, true);
    const std::size_t middle = (scan + file.size()) / 2;
    const Bytes shorter = joined(slice(file, 0, middle), {0xFF, endMarker});
    EXPECT_TRUE(refusalOf(shorter).has_value());
  }
}

// ---- Damage

TEST(DecodeImage, RefusesAFileCutShortAtAnyLength) {
  constexpr std::size_t longestSignature = 8;
  const Bytes jpeg = smallRichJpeg(false);
  const std::size_t end = findMarker(jpeg, endMarker, true);
  // All its pixels are there before its last remark.
  const Bytes remarkAtEnd = joined(slice(jpeg, 0, end), bytesOf("\xFF\xFE\0\x07hello\xFF\xD9"s));
  JpegSpec arithmetic;
  arithmetic.arithmetic = true;

  // Up to the last byte: that of a PNG belongs to a checksum, that of a JPEG to the end marker.
  for (const Bytes& file :
       {smallRichPng(), pngFile(randomPng(PNG_COLOR_TYPE_RGB_ALPHA, 16)), jpeg, smallRichJpeg(true),
        jpegFile(smoothImage(9, 9), arithmetic), remarkAtEnd}) {
    ASSERT_EQ(refusalOf(file), std::nullopt);
    for (std::size_t length = 0; length < file.size(); ++length) {
      const auto refusal = refusalOf(slice(file, 0, length));
      ASSERT_TRUE(refusal.has_value()) << length << " of " << file.size() << " bytes";
      if (length >= longestSignature) {
        ASSERT_TRUE(contains(refusal, "ends too early")) << length << ": " << *refusal;
      }
    }
  }
}

TEST(DecodeImage, RefusesAPngFileWithAnyByteChanged) {
  const Bytes file = smallRichPng();
  for (std::size_t i = 0; i < file.size(); ++i) {
    for (const int flip : {0x01, 0x20, 0x80, 0xFF}) {
      Bytes damaged = file;
      damaged[i] = static_cast<std::uint8_t>(damaged[i] ^ flip);
      ASSERT_TRUE(refusalOf(damaged).has_value()) << "byte " << i << " changed by " << flip;
    }
  }
}

TEST(DecodeImage, GivesFromAJpegFileWithAByteChangedAPictureOrARefusal) {
  constexpr std::uint64_t limit = 1 << 20;
  for (const bool progressive : {false, true}) {
    const Bytes file = smallRichJpeg(progressive);
    int refusals = 0;
    for (std::size_t i = 0; i < file.size(); ++i) {
      for (const int flip : {0x01, 0x20, 0x80, 0xFF}) {
        Bytes damaged = file;
        damaged[i] = static_cast<std::uint8_t>(damaged[i] ^ flip);
        try {
          const Image image = decodeImage(damaged, limit);
          ASSERT_LE(std::uint64_t{image.width} * image.height, limit);
          ASSERT_EQ(image.pixels.size(), std::size_t{image.width} * image.height * 4);
        } catch (const ImageError&) {
          ++refusals;
        }
      }
    }
    EXPECT_GT(refusals, static_cast<int>(file.size()) / 2);
  }
}

TEST(DecodeImage, NamesWhatAnUnknownFileLooksLike) {
  EXPECT_TRUE(contains(refusalOf({}), "empty"));
  EXPECT_TRUE(contains(refusalOf(bytesOf("hello, world")), "neither a PNG nor a JPEG"));
  EXPECT_FALSE(contains(refusalOf(bytesOf("hello, world")), "looks like"));
  EXPECT_TRUE(contains(refusalOf(bytesOf("GIF89a......")), "looks like GIF"));
  EXPECT_TRUE(contains(refusalOf(bytesOf("RIFF\x10\0\0\0WEBPVP8 "s)), "looks like WebP"));
  EXPECT_TRUE(contains(refusalOf(bytesOf("II*\0\x08\0\0\0"s)), "looks like TIFF"));
}

TEST(DecodeImage, RefusesAnImageWithoutPixels) {
  EXPECT_TRUE(contains(refusalOf(pngOfSize(0, 5)), "no pixels"));
  EXPECT_TRUE(contains(refusalOf(pngOfSize(5, 0)), "no pixels"));
  for (const std::size_t field : {5U, 7U}) {
    Bytes jpeg = jpegFile(smoothImage(8, 8));
    const std::size_t frame = findMarker(jpeg, frameMarker);
    jpeg[frame + field] = jpeg[frame + field + 1] = 0;
    EXPECT_TRUE(contains(refusalOf(jpeg), "mpty"));
  }
}

TEST(DecodeImage, RefusesMorePixelsThanTheLimitAndTellsBoth) {
  const std::string expected = "60000 x 60000 pixels, more than the limit of 268435456";
  EXPECT_TRUE(contains(refusalOf(pngOfSize(60000, 60000)), expected));
  // The largest sides of a PNG file, which no number of bytes could hold.
  EXPECT_TRUE(contains(
      refusalOf(pngOfSize(0x7FFFFFFF, 0x7FFFFFFF), std::numeric_limits<std::uint64_t>::max()),
      "2147483647 x 2147483647 pixels, more than the limit of 268435456"));

  Bytes jpeg = jpegFile(smoothImage(8, 8));
  const std::size_t frame = findMarker(jpeg, frameMarker);
  putBigEndian32(jpeg, frame + 5, 60000U << 16 | 60000U);
  EXPECT_TRUE(contains(refusalOf(jpeg), expected));
}

TEST(DecodeImage, ReadsAsManyPixelsAsTheLimitAllows) {
  for (const Bytes& file :
       {pngFile(randomPng(PNG_COLOR_TYPE_RGB, 8)), jpegFile(smoothImage(13, 11))}) {
    EXPECT_EQ(refusalOf(file, 13 * 11), std::nullopt);
    EXPECT_TRUE(
        contains(refusalOf(file, 13 * 11 - 1), "13 x 11 pixels, more than the limit of 142"));
  }
}

TEST(DecodeImage, PrintsNothingAboutDamagedFiles) {
  testing::internal::CaptureStderr();
  testing::internal::CaptureStdout();
  for (const Bytes& file : {smallRichPng(), smallRichJpeg(false), smallRichJpeg(true)}) {
    for (std::size_t i = 0; i < file.size(); i += 3) {
      refusalOf(slice(file, 0, i));
      Bytes damaged = file;
      damaged[i] = static_cast<std::uint8_t>(~damaged[i]);
      refusalOf(damaged, 1 << 20);
    }
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

// ---- Out

TEST(EncodePng, KeepsEveryPixelExactly) {
  for (const auto& [width, height] : {std::pair{1U, 1U}, {1U, 300U}, {300U, 1U}, {67U, 43U}}) {
    for (const bool hasAlpha : {false, true}) {
      const Image image = randomImage(width, height, hasAlpha, width + height);
      const Image back = decodeImage(encodeImage(image, ImageFormat::Png));
      EXPECT_EQ(back.width, width);
      EXPECT_EQ(back.height, height);
      EXPECT_EQ(back.hasAlpha, hasAlpha);
      EXPECT_EQ(back.pixels, image.pixels);
    }
  }
}

TEST(EncodePng, KeepsColoursUnderFullTransparency) {
  Image image = randomImage(16, 16, true, 9);
  for (std::size_t i = 3; i < image.pixels.size(); i += 4) image.pixels[i] = 0;
  EXPECT_EQ(decodeImage(encodeImage(image, ImageFormat::Png)).pixels, image.pixels);
}

TEST(EncodePng, WritesAnAlphaChannelOnlyForAnImageThatHasOne) {
  const auto colourType = [](bool hasAlpha) {
    const Image image = randomImage(4, 4, hasAlpha, 2);
    return chunksOf(encodeImage(image, ImageFormat::Png)).at(0).second.at(9);
  };
  EXPECT_EQ(colourType(false), PNG_COLOR_TYPE_RGB);
  EXPECT_EQ(colourType(true), PNG_COLOR_TYPE_RGB_ALPHA);
}

TEST(EncodePng, HoldsAnImageWiderThanTheLibraryExpects) {
  const Image image = randomImage(1000001, 1, false, 4);
  EXPECT_EQ(decodeImage(encodeImage(image, ImageFormat::Png)).pixels, image.pixels);
}

TEST(EncodeJpeg, WritesNothingAfterTheEndMarker) {
  for (const std::uint32_t size : {1U, 50U, 500U}) {
    const Bytes file = encodeImage(randomImage(size, size, false, size), ImageFormat::Jpeg);
    EXPECT_EQ(findMarker(file, endMarker), file.size() - 2);
  }
}

TEST(EncodeJpeg, KeepsASmoothImageClosely) {
  const Image image = smoothImage(67, 43);
  const Image back = decodeImage(encodeImage(image, ImageFormat::Jpeg));
  EXPECT_EQ(back.width, 67U);
  EXPECT_EQ(back.height, 43U);
  EXPECT_FALSE(back.hasAlpha);
  EXPECT_LE(largestDifference(back.pixels, image.pixels), 4);
}

TEST(EncodeJpeg, KeepsColoursThatChangeFromPixelToPixel) {
  Image image = smoothImage(32, 32);
  for (std::size_t i = 0; i < image.pixels.size(); i += 4) {
    const bool even = i / 4 % 2 == 0;
    image.pixels[i] = even ? 220 : 40;
    image.pixels[i + 1] = 60;
    image.pixels[i + 2] = even ? 40 : 220;
  }
  const Image back = decodeImage(encodeImage(image, ImageFormat::Jpeg));
  EXPECT_LE(largestDifference(back.pixels, image.pixels), 10);
}

TEST(EncodeJpeg, KeepsRandomPixelsNearEnough) {
  const Image image = randomImage(64, 64, false, 6);
  const Image back = decodeImage(encodeImage(image, ImageFormat::Jpeg));
  double sum = 0;
  for (std::size_t i = 0; i < image.pixels.size(); ++i) {
    sum += std::abs(image.pixels[i] - back.pixels[i]);
  }
  EXPECT_LT(sum / static_cast<double>(image.pixels.size()), 6);
}

TEST(EncodeJpeg, RefusesTransparencyAndNamesTheWayOut) {
  Image image = randomImage(8, 8, true, 3);
  for (std::size_t i = 3; i < image.pixels.size(); i += 4) image.pixels[i] = 255;
  EXPECT_EQ(refusalToEncode(image, ImageFormat::Jpeg), std::nullopt);
  image.pixels[4 * 63 + 3] = 254;
  const auto refusal = refusalToEncode(image, ImageFormat::Jpeg);
  EXPECT_TRUE(contains(refusal, "transparency"));
  EXPECT_TRUE(contains(refusal, "PNG"));
}

TEST(EncodeJpeg, RefusesMorePixelsOnASideThanTheFormatHolds) {
  EXPECT_EQ(refusalToEncode(randomImage(65500, 1, false, 1), ImageFormat::Jpeg), std::nullopt);
  EXPECT_TRUE(
      contains(refusalToEncode(randomImage(65501, 1, false, 1), ImageFormat::Jpeg), "65501"));
  EXPECT_TRUE(
      contains(refusalToEncode(randomImage(1, 65501, false, 1), ImageFormat::Jpeg), "65501"));
}

TEST(EncodeImage, RefusesAnImageThatContradictsItself) {
  for (const ImageFormat format : {ImageFormat::Png, ImageFormat::Jpeg}) {
    const Image good = randomImage(4, 4, false, 1);
    ASSERT_EQ(refusalToEncode(good, format), std::nullopt);
    Image image = good;
    image.pixels.pop_back();
    EXPECT_TRUE(contains(refusalToEncode(image, format), "do not fill"));
    image = good;
    image.height = 5;
    EXPECT_TRUE(contains(refusalToEncode(image, format), "do not fill"));
    image = good;
    image.width = image.height = 0x80000000;  // their product and 4 together overflow to zero
    image.pixels.clear();
    EXPECT_TRUE(contains(refusalToEncode(image, format), "do not fill"));
    EXPECT_TRUE(contains(refusalToEncode(Image{}, format), "do not fill"));
    image = good;
    image.pixels[7] = 0;
    EXPECT_TRUE(contains(refusalToEncode(image, format), "without alpha"));
    image = good;
    image.iccProfile = profileOf("GRAY");
    EXPECT_TRUE(contains(refusalToEncode(image, format), "profile"));
    image = good;
    image.exif = bytesOf("not a TIFF structure");
    EXPECT_TRUE(contains(refusalToEncode(image, format), "EXIF"));
  }
}

// ---- What is carried along

// The four ways from a file in one format to one in the other.
struct Passage {
  const char* name;
  ImageFormat from, to;
};

class CarriedAcross : public testing::TestWithParam<Passage> {
 protected:
  // The image read from a file of the first format, written in the second and read again.
  Image carried(const Bytes& iccProfile, const Bytes& exif) const {
    return decodeImage(encodeImage(decodeImage(source(iccProfile, exif)), GetParam().to));
  }

  Bytes source(const Bytes& iccProfile, const Bytes& exif) const {
    if (GetParam().from == ImageFormat::Png) {
      PngSpec spec = randomPng(PNG_COLOR_TYPE_RGB, 8);
      spec.iccProfile = iccProfile;
      spec.exif = exif;
      return pngFile(spec);
    }
    JpegSpec spec;
    spec.iccProfile = iccProfile;
    // Another remark under the marker that EXIF data has as well.
    spec.markers = {{JPEG_APP0 + 1, bytesOf("http://example.org/\0<x/>"s)}};
    if (!exif.empty()) {
      spec.markers.emplace_back(JPEG_APP0 + 1, joined(bytesOf("Exif\0\0"s), exif));
    }
    return jpegFile(smoothImage(13, 11), spec);
  }
};

TEST_P(CarriedAcross, ProfileAndExifDataComeOutUnchanged) {
  const Bytes profile = profileOf("RGB ", 400);
  const Image image = carried(profile, exifOf(99));
  EXPECT_EQ(image.iccProfile, profile);
  EXPECT_EQ(image.exif, exifOf(99));
}

TEST_P(CarriedAcross, AProfileOfManySegmentsComesOutUnchanged) {
  const Bytes profile = profileOf("RGB ", 200000);
  EXPECT_EQ(carried(profile, {}).iccProfile, profile);
}

TEST_P(CarriedAcross, ExifDataAsLargeAsJpegHoldsComesOutUnchanged) {
  EXPECT_EQ(carried({}, exifOf(65527)).exif, exifOf(65527));
}

TEST_P(CarriedAcross, NothingIsAddedToAPlainFile) {
  const Image image = carried({}, {});
  EXPECT_EQ(image.iccProfile, Bytes{});
  EXPECT_EQ(image.exif, Bytes{});
  EXPECT_EQ(image.density, std::nullopt);
  EXPECT_EQ(image.pngColourSpace, PngColourSpace{});
}

INSTANTIATE_TEST_SUITE_P(AllPassages, CarriedAcross,
                         testing::Values(Passage{"PngToPng", ImageFormat::Png, ImageFormat::Png},
                                         Passage{"PngToJpeg", ImageFormat::Png, ImageFormat::Jpeg},
                                         Passage{"JpegToJpeg", ImageFormat::Jpeg,
                                                 ImageFormat::Jpeg},
                                         Passage{"JpegToPng", ImageFormat::Jpeg, ImageFormat::Png}),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(Carrying, LeavesOutAProfileForOtherThanRgbColours) {
  for (const int colourType : {PNG_COLOR_TYPE_GRAY, PNG_COLOR_TYPE_GRAY_ALPHA}) {
    PngSpec spec = randomPng(colourType, 8);
    spec.iccProfile = profileOf("GRAY");
    const Bytes file = pngFile(spec);
    ASSERT_TRUE(hasChunk(file, "iCCP"));
    EXPECT_EQ(decodeImage(file).iccProfile, Bytes{});
  }
  JpegSpec spec;
  spec.in = JCS_GRAYSCALE;
  spec.iccProfile = profileOf("GRAY");
  EXPECT_EQ(decodeImage(jpegFile(smoothImage(8, 8), spec)).iccProfile, Bytes{});
  spec = {};
  spec.iccProfile = profileOf("CMYK");
  EXPECT_EQ(decodeImage(jpegFile(smoothImage(8, 8), spec)).iccProfile, Bytes{});
}

TEST(Carrying, KeepsTheRgbProfileOfAGreyJpegFile) {
  JpegSpec spec;
  spec.in = JCS_GRAYSCALE;
  spec.iccProfile = profileOf("RGB ");
  EXPECT_EQ(decodeImage(jpegFile(smoothImage(8, 8), spec)).iccProfile, spec.iccProfile);
}

TEST(Carrying, LeavesOutADamagedProfileAndKeepsThePicture) {
  // A segment of several is missing.
  JpegSpec spec;
  spec.markers = {{JPEG_APP0 + 2, joined(bytesOf("ICC_PROFILE\0\x01\x02"s), profileOf("RGB "))}};
  const Bytes half = jpegFile(smoothImage(8, 8), spec);
  // The size that it states is another.
  spec.markers = {{JPEG_APP0 + 2,
                   joined(bytesOf("ICC_PROFILE\0\x01\x01"s), joined(profileOf("RGB "), Bytes(1)))}};
  const Bytes longer = jpegFile(smoothImage(8, 8), spec);
  // What should be compressed is not.
  const Bytes plain = pngFile(randomPng(PNG_COLOR_TYPE_RGB, 8));
  const Bytes raw = withChunkBefore(
      plain, "IDAT", pngChunk("iCCP", joined(bytesOf("profile\0\0"s), profileOf("RGB "))));
  ASSERT_TRUE(hasChunk(raw, "iCCP"));

  for (const Bytes& file : {half, longer, raw}) EXPECT_EQ(decodeImage(file).iccProfile, Bytes{});
  EXPECT_EQ(decodeImage(half).pixels, decodeImage(jpegFile(smoothImage(8, 8))).pixels);
  EXPECT_EQ(decodeImage(raw).pixels, decodeImage(plain).pixels);
}

TEST(Carrying, KeepsAProfileOfNothingButAHeader) {
  Image image = randomImage(4, 4, false, 1);
  image.iccProfile = profileOf("RGB ", 132);
  for (const ImageFormat format : {ImageFormat::Png, ImageFormat::Jpeg}) {
    EXPECT_EQ(decodeImage(encodeImage(image, format)).iccProfile, image.iccProfile);
  }
}

TEST(Carrying, RefusesToWriteAProfileThatPngCannotHold) {
  Image image = randomImage(4, 4, false, 1);
  image.iccProfile = profileOf("RGB ", 200);
  image.iccProfile[12] = 'x';                   // the kind of device
  putBigEndian32(image.iccProfile, 128, 1000);  // more tags than there is room for
  EXPECT_TRUE(contains(refusalToEncode(image, ImageFormat::Png), "cannot write the PNG file"));
  EXPECT_EQ(decodeImage(encodeImage(image, ImageFormat::Jpeg)).iccProfile, image.iccProfile);
}

TEST(Carrying, LeavesOutExifDataThatIsNone) {
  JpegSpec spec;
  for (const std::string& remark : {"Exif\0\0"s, "Exif\0\0MM\0"s, "Exif\0\0hello world"s}) {
    spec.markers = {{JPEG_APP0 + 1, bytesOf(remark)}};
    EXPECT_EQ(decodeImage(jpegFile(smoothImage(8, 8), spec)).exif, Bytes{});
  }
  const Bytes plain = pngFile(randomPng(PNG_COLOR_TYPE_RGB, 8));
  const Bytes file = withChunkBefore(plain, "IDAT", pngChunk("eXIf", bytesOf("MMhello world")));
  EXPECT_EQ(decodeImage(file).exif, Bytes{});
}

TEST(Carrying, RefusesExifDataTooLargeForJpeg) {
  Image image = randomImage(4, 4, false, 1);
  image.exif = exifOf(65528);
  const auto refusal = refusalToEncode(image, ImageFormat::Jpeg);
  EXPECT_TRUE(contains(refusal, "EXIF"));
  EXPECT_TRUE(contains(refusal, "PNG"));
  EXPECT_EQ(decodeImage(encodeImage(image, ImageFormat::Png)).exif, image.exif);
}

TEST(Carrying, RefusesAProfileTooLargeForJpeg) {
  constexpr std::size_t most = std::size_t{255} * 65519;
  Image image = randomImage(4, 4, false, 1);
  image.iccProfile = profileOf("RGB ", most);
  EXPECT_EQ(decodeImage(encodeImage(image, ImageFormat::Jpeg)).iccProfile, image.iccProfile);
  image.iccProfile = profileOf("RGB ", most + 1);
  EXPECT_TRUE(contains(refusalToEncode(image, ImageFormat::Jpeg), "profile"));
  EXPECT_EQ(decodeImage(encodeImage(image, ImageFormat::Png)).iccProfile, image.iccProfile);
}

TEST(Carrying, KeepsTheDensityInTheSameFormat) {
  using Unit = PixelDensity::Unit;
  const auto jpegDensity = [](int unit, int across, int down) {
    JpegSpec spec;
    spec.density = {unit, across, down};
    const Image image = decodeImage(jpegFile(smoothImage(8, 8), spec));
    EXPECT_EQ(decodeImage(encodeImage(image, ImageFormat::Jpeg)).density, image.density);
    return image.density;
  };
  EXPECT_EQ(jpegDensity(1, 300, 150), (PixelDensity{300, 150, Unit::Inch}));
  EXPECT_EQ(jpegDensity(2, 30, 31), (PixelDensity{30, 31, Unit::Centimetre}));
  EXPECT_EQ(jpegDensity(0, 2, 1), (PixelDensity{2, 1, Unit::None}));
  EXPECT_EQ(jpegDensity(0, 5, 5), std::nullopt);
  EXPECT_EQ(jpegDensity(1, 0, 5), std::nullopt);
  EXPECT_EQ(jpegDensity(9, 2, 1), std::nullopt);

  const auto pngDensity = [](int unit, png_uint_32 across, png_uint_32 down) {
    PngSpec spec = randomPng(PNG_COLOR_TYPE_RGB, 8);
    spec.density = {across, down, unit};
    const Image image = decodeImage(pngFile(spec));
    EXPECT_EQ(decodeImage(encodeImage(image, ImageFormat::Png)).density, image.density);
    return image.density;
  };
  EXPECT_EQ(pngDensity(PNG_RESOLUTION_METER, 11811, 2835),
            (PixelDensity{11811, 2835, Unit::Metre}));
  EXPECT_EQ(pngDensity(PNG_RESOLUTION_UNKNOWN, 2, 1), (PixelDensity{2, 1, Unit::None}));
  EXPECT_EQ(pngDensity(PNG_RESOLUTION_UNKNOWN, 4, 4), std::nullopt);
  EXPECT_EQ(pngDensity(PNG_RESOLUTION_METER, 0, 4), std::nullopt);
}

TEST(Carrying, ConvertsTheDensityForTheOtherFormat) {
  using Unit = PixelDensity::Unit;
  const auto carried = [](const PixelDensity& density, ImageFormat format) {
    Image image = randomImage(4, 4, false, 1);
    image.density = density;
    return decodeImage(encodeImage(image, format)).density;
  };
  EXPECT_EQ(carried({300, 72, Unit::Inch}, ImageFormat::Png),
            (PixelDensity{11811, 2835, Unit::Metre}));
  EXPECT_EQ(carried({30, 31, Unit::Centimetre}, ImageFormat::Png),
            (PixelDensity{3000, 3100, Unit::Metre}));
  EXPECT_EQ(carried({11811, 2835, Unit::Metre}, ImageFormat::Jpeg),
            (PixelDensity{300, 72, Unit::Inch}));
  EXPECT_EQ(carried({100000, 200000, Unit::None}, ImageFormat::Jpeg),
            (PixelDensity{25000, 50000, Unit::None}));
  // Out of the range of the format.
  EXPECT_EQ(carried({3000000, 3000000, Unit::Metre}, ImageFormat::Jpeg), std::nullopt);
  EXPECT_EQ(carried({10, 10, Unit::Metre}, ImageFormat::Jpeg), std::nullopt);
  EXPECT_EQ(carried({100000000, 100000000, Unit::Inch}, ImageFormat::Png), std::nullopt);
}

TEST(Carrying, KeepsWhatAPngFileSaysOfItsColours) {
  const auto carried = [](const PngSpec& spec) {
    const Image image = decodeImage(pngFile(spec));
    EXPECT_EQ(decodeImage(encodeImage(image, ImageFormat::Png)).pngColourSpace,
              image.pngColourSpace);
    return image.pngColourSpace;
  };
  constexpr std::array<std::int32_t, 8> wide{31270, 32900, 68000, 32000, 26500, 69000, 15000, 6000};
  PngSpec spec = randomPng(PNG_COLOR_TYPE_RGB, 8);
  spec.gamma = 55556;
  EXPECT_EQ(carried(spec), (PngColourSpace{{}, 55556, {}}));
  spec.chromaticities = wide;
  EXPECT_EQ(carried(spec), (PngColourSpace{{}, 55556, wide}));
  spec = randomPng(PNG_COLOR_TYPE_RGB, 8);
  spec.srgbIntent = PNG_sRGB_INTENT_RELATIVE;
  EXPECT_EQ(carried(spec), (PngColourSpace{PNG_sRGB_INTENT_RELATIVE, {}, {}}));
  spec = randomPng(PNG_COLOR_TYPE_RGB, 8);
  // A profile outranks the rest.
  spec.gamma = 55556;
  spec.iccProfile = profileOf("RGB ");
  EXPECT_EQ(carried(spec), PngColourSpace{});
}

}  // namespace
}  // namespace tintora::cli
