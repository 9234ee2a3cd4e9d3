#include "cli/png_writer.h"

#include <png.h>
#include <zlib.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <memory>
#include <string>

#include "cli/png_fault.h"

namespace tintora::cli {

namespace {

using PngWriter = PngHandles<png_create_write_struct, png_destroy_write_struct>;

void putBytes(png_structp png, png_bytep bytes, std::size_t count) {
  auto& sink = *static_cast<ByteSink*>(png_get_io_ptr(png));
  if (!put(sink, {bytes, count})) png_error(png, std::strerror(sink.error));
}

void flushNothing(png_structp /*png*/) {}

// How the pixels of a layout stand in a file.
struct WrittenKind {
  int colourType;
  int bits;
};

WrittenKind kindOf(const RowsHeader& header) {
  const int colour = header.hasAlpha ? PNG_COLOR_TYPE_RGB_ALPHA : PNG_COLOR_TYPE_RGB;
  switch (header.layout) {
    case PixelLayout::Indexed:
      return {header.isGrey ? PNG_COLOR_TYPE_GRAY : PNG_COLOR_TYPE_PALETTE, header.indexBits};
    case PixelLayout::GreyAlpha8:
      return {PNG_COLOR_TYPE_GRAY_ALPHA, 8};
    case PixelLayout::Grey16:
      return {PNG_COLOR_TYPE_GRAY, 16};
    case PixelLayout::GreyAlpha16:
      return {PNG_COLOR_TYPE_GRAY_ALPHA, 16};
    case PixelLayout::Rgba16:
      return {colour, 16};
    case PixelLayout::Bgra8:
      break;
  }
  return {colour, 8};
}

void writeColourSpace(const PngWriter& writer, const ImageHeader& image) {
  if (!image.iccProfile.empty()) {
    // At its full length of 79 the name keeps libpng, when it reads a very small profile again,
    // from taking it for cut short.
    constexpr const char* name =
        "colour profile, taken over unchanged from the image that this one was made from";
    png_set_iCCP(writer.png, writer.info, name, PNG_COMPRESSION_TYPE_BASE, image.iccProfile.data(),
                 static_cast<png_uint_32>(image.iccProfile.size()));
    return;
  }
  const PngColourSpace& space = image.pngColourSpace;
  if (space.srgbIntent) png_set_sRGB(writer.png, writer.info, *space.srgbIntent);
  if (space.gamma) png_set_gAMA_fixed(writer.png, writer.info, *space.gamma);
  if (space.chromaticities) {
    const auto& xy = *space.chromaticities;
    png_set_cHRM_fixed(writer.png, writer.info, xy[0], xy[1], xy[2], xy[3], xy[4], xy[5], xy[6],
                       xy[7]);
  }
}

void writeDensity(const PngWriter& writer, const PixelDensity& density) {
  const auto perMetre = [&](std::uint64_t value) {
    switch (density.unit) {
      case PixelDensity::Unit::Inch:
        return (value * 10000 + 127) / 254;
      case PixelDensity::Unit::Centimetre:
        return value * 100;
      case PixelDensity::Unit::None:
      case PixelDensity::Unit::Metre:
        break;
    }
    return value;
  };
  const std::uint64_t across = perMetre(density.across);
  const std::uint64_t down = perMetre(density.down);
  if (std::min(across, down) == 0 || std::max(across, down) > PNG_UINT_31_MAX) return;
  png_set_pHYs(
      writer.png, writer.info, static_cast<png_uint_32>(across), static_cast<png_uint_32>(down),
      density.unit == PixelDensity::Unit::None ? PNG_RESOLUTION_UNKNOWN : PNG_RESOLUTION_METER);
}

// What is written of a palette: its colours, and its alphas up to the last that is not opaque.
struct WrittenPalette {
  std::vector<png_color> colours;
  std::vector<png_byte> alphas;
};

WrittenPalette paletteOf(const RowsHeader& header) {
  WrittenPalette palette;
  if (header.layout != PixelLayout::Indexed || header.isGrey) return palette;
  for (const PaletteEntry& entry : header.palette) {
    palette.colours.push_back({entry.red, entry.green, entry.blue});
    palette.alphas.push_back(entry.alpha);
  }
  while (!palette.alphas.empty() && palette.alphas.back() == 255) palette.alphas.pop_back();
  return palette;
}

// Writes the EXIF data as a plain chunk: libpng writes what it is given as EXIF data both before
// and after the pixels.
void writeExif(const PngWriter& writer, std::span<const std::uint8_t> exif) {
  if (exif.empty()) return;
  png_write_chunk(writer.png, reinterpret_cast<png_const_bytep>("eXIf"), exif.data(), exif.size());
}

void setCompression(const PngWriter& writer, const RowsHeader& header, PngContent content) {
  // Packs colours as tightly as the default level, in half the time or less.
  constexpr int colourLevel = 4;
  constexpr int indexedLevel = 7;
  const bool isIndexed = header.layout == PixelLayout::Indexed;
  png_set_compression_level(writer.png, isIndexed ? indexedLevel : colourLevel);
  // Looks for no repetitions but runs. That takes a third of the time, and photographs change their
  // size by a few percent, to either side.
  const bool hasGradations = !isIndexed || (header.isGrey && header.indexBits == 8);
  if (content == PngContent::Photograph && hasGradations) {
    png_set_compression_strategy(writer.png, Z_RLE);
  }
}

void writeHeader(const PngWriter& writer, const RowsHeader& header, const WrittenPalette& palette,
                 PngContent content, ByteSink& sink) {
  const auto [colourType, bits] = kindOf(header);
  png_set_write_fn(writer.png, &sink, putBytes, flushNothing);
  png_set_user_limits(writer.png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
  png_set_check_for_invalid_index(writer.png, 0);  // the reader checks the indices
  setCompression(writer, header, content);
  png_set_IHDR(writer.png, writer.info, header.width, header.height, bits, colourType,
               PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  writeColourSpace(writer, header);
  if (!palette.colours.empty()) {
    png_set_PLTE(writer.png, writer.info, palette.colours.data(),
                 static_cast<int>(palette.colours.size()));
  }
  if (!palette.alphas.empty()) {
    png_set_tRNS(writer.png, writer.info, palette.alphas.data(),
                 static_cast<int>(palette.alphas.size()), nullptr);
  }
  if (header.density) writeDensity(writer, *header.density);
  png_write_info(writer.png, writer.info);
  writeExif(writer, header.exif);

  if (header.layout == PixelLayout::Bgra8) png_set_bgr(writer.png);
  if (bits == 16 && std::endian::native == std::endian::little) png_set_swap(writer.png);
  const bool filled = header.layout == PixelLayout::Bgra8 || header.layout == PixelLayout::Rgba16;
  if (filled && !header.hasAlpha) png_set_filler(writer.png, 0, PNG_FILLER_AFTER);
}

[[noreturn]] void throwUnwritable(const PngWriter& writer) {
  throw ImageError("cannot write the PNG file: " + std::string(writer.fault.data()));
}

}  // namespace

ImageWriter startPng(ByteSink& sink, const RowsHeader& header, PngContent content) {
  if (std::max(header.iccProfile.size(), header.exif.size()) > PNG_UINT_31_MAX) {
    throw ImageError("the colour profile or the EXIF data is too large for PNG");
  }
  const auto writer = std::make_shared<PngWriter>();
  const WrittenPalette palette = paletteOf(header);
  if (!completes(writer->png, [&] { writeHeader(*writer, header, palette, content, sink); })) {
    throwUnwritable(*writer);
  }
  const auto writeRow = [writer](const std::uint8_t* row) {
    if (!completes(writer->png, [&] { png_write_row(writer->png, row); })) {
      throwUnwritable(*writer);
    }
  };
  const auto finish = [writer](std::span<const std::uint8_t> lateExif) {
    if (!completes(writer->png, [&] {
          writeExif(*writer, lateExif);
          png_write_end(writer->png, nullptr);
        })) {
      throwUnwritable(*writer);
    }
  };
  return {writeRow, finish};
}

}  // namespace tintora::cli
