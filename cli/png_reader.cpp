#include "cli/png_reader.h"

#include <png.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

#include "cli/png_fault.h"

namespace tintora::cli {

namespace {

using namespace std::string_view_literals;

void destroyReader(png_structpp png, png_infopp info) {
  png_destroy_read_struct(png, info, nullptr);
}

using PngReader = PngHandles<png_create_read_struct, destroyReader>;

[[noreturn]] void throwUnreadable(const FaultText& fault) {
  throw ImageError("cannot read the PNG file: " + std::string(fault.data()));
}

void takeBytes(png_structp png, png_bytep destination, std::size_t count) {
  auto& source = *static_cast<ByteSource*>(png_get_io_ptr(png));
  while (count > 0) {
    if (source.rest.empty() && !refill(source)) {
      png_error(png, source.error == 0 ? "it ends too early" : std::strerror(source.error));
    }
    const std::size_t taken = std::min(count, source.rest.size());
    std::copy_n(source.rest.begin(), taken, destination);
    source.rest = source.rest.subspan(taken);
    destination += taken;
    count -= taken;
  }
}

// Checks width and height at their fixed place: libpng has no clear words for one that is zero.
void checkHasPixels(ByteSource& source) {
  constexpr std::size_t widthOffset = 16;
  constexpr std::size_t heightOffset = 20;
  const auto file = peek(source, heightOffset + 4);
  if (file.size() < heightOffset + 4) return;
  const auto isZero = [&](std::size_t offset) {
    return std::ranges::all_of(file.subspan(offset, 4),
                               [](std::uint8_t byte) { return byte == 0; });
  };
  if (isZero(widthOffset) || isZero(heightOffset)) throw ImageError("the image has no pixels");
}

void readHeader(const PngReader& reader, ByteSource& source) {
  // Far above every real profile, which by default libpng would not take beyond 8 MB.
  constexpr png_alloc_size_t mostChunkBytes = png_alloc_size_t{1} << 28;
  // Chunks not listed are skipped: some, as texts, could unpack to any size.
  constexpr std::string_view wanted = "cHRM\0gAMA\0iCCP\0sRGB\0eXIf\0pHYs\0"sv;
  constexpr int wantedChunks = wanted.size() / "cHRM\0"sv.size();

  png_set_read_fn(reader.png, &source, takeBytes);
  png_set_crc_action(reader.png, PNG_CRC_ERROR_QUIT, PNG_CRC_ERROR_QUIT);
  png_set_user_limits(reader.png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
  png_set_chunk_malloc_max(reader.png, mostChunkBytes);
  png_set_keep_unknown_chunks(reader.png, PNG_HANDLE_CHUNK_NEVER, nullptr, -1);
  png_set_keep_unknown_chunks(reader.png, PNG_HANDLE_CHUNK_AS_DEFAULT,
                              reinterpret_cast<png_const_bytep>(wanted.data()), wantedChunks);
  png_set_keep_unknown_chunks(reader.png, PNG_HANDLE_CHUNK_ALWAYS,
                              reinterpret_cast<png_const_bytep>("acTL"), 1);
  png_read_info(reader.png, reader.info);
}

bool isAnimated(const PngReader& reader) {
  png_unknown_chunkp chunks = nullptr;
  const int count = png_get_unknown_chunks(reader.png, reader.info, &chunks);
  return std::any_of(chunks, chunks + count, [](const png_unknown_chunk& chunk) {
    return std::memcmp(chunk.name, "acTL", 4) == 0;
  });
}

// The kind of pixels in the file, as its header says.
struct PngKind {
  int colourType;
  int bits;
  bool hasTransparency;
};

PixelLayout layoutOf(const PngKind& kind) {
  const bool wide = kind.bits == 16;
  const bool grey = (kind.colourType & PNG_COLOR_MASK_COLOR) == 0;
  const bool alpha = (kind.colourType & PNG_COLOR_MASK_ALPHA) != 0;
  if (kind.colourType == PNG_COLOR_TYPE_PALETTE || (grey && !alpha && !wide)) {
    return PixelLayout::Indexed;
  }
  if (!grey) return wide ? PixelLayout::Rgba16 : PixelLayout::Bgra8;
  if (!wide) return PixelLayout::GreyAlpha8;
  return alpha || kind.hasTransparency ? PixelLayout::GreyAlpha16 : PixelLayout::Grey16;
}

// What libpng knows of palette and transparency; the memory is its own.
struct PngPalette {
  png_colorp colours = nullptr;
  int count = 0;
  png_bytep alphas = nullptr;
  int alphaCount = 0;
  png_color_16p transparent = nullptr;
};

void readPalette(const PngReader& reader, PngPalette& palette) {
  png_get_PLTE(reader.png, reader.info, &palette.colours, &palette.count);
  png_get_tRNS(reader.png, reader.info, &palette.alphas, &palette.alphaCount, &palette.transparent);
}

std::vector<PaletteEntry> paletteOf(const PngPalette& palette, const RowsHeader& header) {
  std::vector<PaletteEntry> entries;
  if (header.isGrey) {
    entries = greyPalette(header.indexBits);
    if (palette.transparent != nullptr && palette.transparent->gray < entries.size()) {
      entries[palette.transparent->gray].alpha = 0;
    }
    return entries;
  }
  for (int i = 0; i < palette.count; ++i) {
    const png_color& colour = palette.colours[i];
    const std::uint8_t alpha =
        palette.alphas != nullptr && i < palette.alphaCount ? palette.alphas[i] : std::uint8_t{255};
    entries.push_back({colour.red, colour.green, colour.blue, alpha});
  }
  return entries;
}

// Has libpng turn the pixels into the layout.
void startRows(const PngReader& reader, const RowsHeader& header, int& passes) {
  const bool indexed = header.layout == PixelLayout::Indexed;
  if (!indexed) {
    if (png_get_valid(reader.png, reader.info, PNG_INFO_tRNS) != 0) {
      png_set_tRNS_to_alpha(reader.png);
    }
    if (std::endian::native == std::endian::little) png_set_swap(reader.png);
    if (header.layout == PixelLayout::Bgra8) png_set_bgr(reader.png);
    const bool colour = header.layout == PixelLayout::Bgra8 || header.layout == PixelLayout::Rgba16;
    if (colour && !header.hasAlpha) png_set_filler(reader.png, 0xFFFF, PNG_FILLER_AFTER);
  }
  passes = png_set_interlace_handling(reader.png);
  png_read_update_info(reader.png, reader.info);
}

// What the file says besides the pixels; the memory is libpng's.
struct PngRemarks {
  std::span<const std::uint8_t> iccProfile, exif;
  png_uint_32 across = 0, down = 0;
  int densityUnit = 0;
  std::array<png_fixed_point, 8> chromaticities{};
  bool hasChromaticities = false;
  png_fixed_point gamma = 0;
  bool hasGamma = false;
  int srgbIntent = 0;
  bool isSrgb = false;
};

void readRemarks(const PngReader& reader, PngRemarks& remarks) {
  png_charp name = nullptr;
  int compression = 0;
  png_bytep bytes = nullptr;
  png_uint_32 count = 0;
  if (png_get_iCCP(reader.png, reader.info, &name, &compression, &bytes, &count) != 0) {
    remarks.iccProfile = {bytes, count};
  }
  if (png_get_eXIf_1(reader.png, reader.info, &count, &bytes) != 0) remarks.exif = {bytes, count};
  png_get_pHYs(reader.png, reader.info, &remarks.across, &remarks.down, &remarks.densityUnit);

  png_fixed_point* xy = remarks.chromaticities.data();
  remarks.isSrgb = png_get_sRGB(reader.png, reader.info, &remarks.srgbIntent) != 0;
  remarks.hasGamma = png_get_gAMA_fixed(reader.png, reader.info, &remarks.gamma) != 0;
  remarks.hasChromaticities = png_get_cHRM_fixed(reader.png, reader.info, xy, xy + 1, xy + 2,
                                                 xy + 3, xy + 4, xy + 5, xy + 6, xy + 7) != 0;
}

void keepRemarks(const PngRemarks& remarks, ImageHeader& image) {
  image.iccProfile.assign(remarks.iccProfile.begin(), remarks.iccProfile.end());
  image.exif.assign(remarks.exif.begin(), remarks.exif.end());
  const bool metres = remarks.densityUnit == PNG_RESOLUTION_METER;
  if (remarks.across > 0 && remarks.down > 0 && (metres || remarks.across != remarks.down)) {
    image.density = PixelDensity{remarks.across, remarks.down,
                                 metres ? PixelDensity::Unit::Metre : PixelDensity::Unit::None};
  }

  // libpng derives each of these from what outranks it.
  if (!remarks.iccProfile.empty()) return;
  if (remarks.isSrgb) {
    image.pngColourSpace.srgbIntent = remarks.srgbIntent;
    return;
  }
  if (remarks.hasGamma) image.pngColourSpace.gamma = remarks.gamma;
  if (remarks.hasChromaticities) image.pngColourSpace.chromaticities = remarks.chromaticities;
}

// A file in the middle of its rows.
struct PngRows {
  PngReader reader;
  ByteSource* source = nullptr;
  std::size_t rowBytes = 0;
  std::uint32_t width = 0, height = 0;
  int passes = 1;
  int indexBits = 0;            // of rows of indices
  std::size_t paletteSize = 0;  // of a palette that has fewer entries than there are indices
  bool hadExif = false;
  // Interlaced rows, each of them made when its first pixels have arrived.
  std::vector<std::unique_ptr<std::uint8_t[]>> interlaced;
  std::size_t next = 0;
};

void readInterlaced(PngRows& rows) {
  rows.interlaced.resize(rows.height);
  std::unique_ptr<std::uint8_t[]> spare;
  for (int pass = 0; pass < rows.passes; ++pass) {
    for (std::uint32_t y = 0; y < rows.height; ++y) {
      auto& row = rows.interlaced[y];
      if (!row && !spare) spare = std::make_unique<std::uint8_t[]>(rows.rowBytes);
      std::uint8_t* const bytes = row ? row.get() : spare.get();
      if (!completes(rows.reader.png, [&] { png_read_row(rows.reader.png, bytes, nullptr); })) {
        throwUnreadable(rows.reader.fault);
      }
      if (!row && PNG_ROW_IN_INTERLACE_PASS(y, pass)) row = std::move(spare);
    }
  }
}

void checkIndices(const PngRows& rows, const std::uint8_t* row) {
  for (std::size_t x = 0; x < rows.width; ++x) {
    if (indexAt(row, x, rows.indexBits) >= rows.paletteSize) {
      throw ImageError("cannot read the PNG file: it has pixels of colours that its palette lacks");
    }
  }
}

void readRow(PngRows& rows, std::uint8_t* row) {
  if (rows.passes == 1) {
    if (!completes(rows.reader.png, [&] { png_read_row(rows.reader.png, row, nullptr); })) {
      throwUnreadable(rows.reader.fault);
    }
    return;
  }
  if (rows.interlaced.empty()) readInterlaced(rows);
  const auto bytes = std::move(rows.interlaced[rows.next++]);
  std::copy_n(bytes.get(), rows.rowBytes, row);
}

std::vector<std::uint8_t> finishRows(PngRows& rows) {
  const PngReader& reader = rows.reader;
  png_bytep exif = nullptr;
  png_uint_32 size = 0;
  if (!completes(reader.png, [&] {
        png_read_end(reader.png, reader.info);
        png_get_eXIf_1(reader.png, reader.info, &size, &exif);
      })) {
    throwUnreadable(reader.fault);
  }
  if (rows.hadExif || exif == nullptr) return {};
  return {exif, exif + size};
}

}  // namespace

ImageReader openPng(ByteSource& source, std::uint64_t pixelLimit) {
  checkHasPixels(source);
  const auto rows = std::make_shared<PngRows>();
  const PngReader& reader = rows->reader;
  if (!completes(reader.png, [&] { readHeader(reader, source); })) throwUnreadable(reader.fault);
  if (isAnimated(reader)) {
    throw ImageError("the picture is animated (APNG), only still pictures are supported");
  }

  RowsHeader header;
  header.width = png_get_image_width(reader.png, reader.info);
  header.height = png_get_image_height(reader.png, reader.info);
  checkImageSize(header.width, header.height, pixelLimit);
  const PngKind kind{png_get_color_type(reader.png, reader.info),
                     png_get_bit_depth(reader.png, reader.info),
                     png_get_valid(reader.png, reader.info, PNG_INFO_tRNS) != 0};
  header.hasAlpha = (kind.colourType & PNG_COLOR_MASK_ALPHA) != 0 || kind.hasTransparency;
  header.layout = layoutOf(kind);
  const bool indexed = header.layout == PixelLayout::Indexed;

  PngRemarks remarks;
  PngPalette palette;
  if (!completes(reader.png, [&] {
        readRemarks(reader, remarks);
        if (indexed) readPalette(reader, palette);
        startRows(reader, header, rows->passes);
      })) {
    throwUnreadable(reader.fault);
  }
  keepRemarks(remarks, header);
  if (indexed) {
    header.indexBits = kind.bits;
    header.isGrey = kind.colourType == PNG_COLOR_TYPE_GRAY;
    header.palette = paletteOf(palette, header);
    rows->indexBits = kind.bits;
    if (header.palette.size() < std::size_t{1} << kind.bits) {
      rows->paletteSize = header.palette.size();
    }
  }
  rows->rowBytes = rowBytes(header);
  rows->width = header.width;
  rows->height = header.height;
  rows->hadExif = !header.exif.empty();
  if (png_get_rowbytes(reader.png, reader.info) != rows->rowBytes) {
    throw ImageError("cannot read the PNG file: its kind of pixels is unknown");
  }
  const auto readAndCheck = [rows](std::uint8_t* row) {
    readRow(*rows, row);
    if (rows->paletteSize > 0) checkIndices(*rows, row);
  };
  return {std::move(header), readAndCheck, [rows] { return finishRows(*rows); }};
}

}  // namespace tintora::cli
