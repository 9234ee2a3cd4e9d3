#include "cli/png_codec.h"

#include <png.h>

#include <algorithm>
#include <array>
#include <csetjmp>
#include <cstddef>
#include <new>
#include <string>
#include <string_view>
#include <type_traits>

namespace tintora::cli {

namespace {

using namespace std::string_view_literals;

using FaultText = std::array<char, 200>;

// libpng reports an error through this and must not be returned to.
[[noreturn]] void pngFailed(png_structp png, png_const_charp text) {
  auto& fault = *static_cast<FaultText*>(png_get_error_ptr(png));
  fault.fill('\0');
  std::string_view(text).copy(fault.data(), fault.size() - 1);
  png_longjmp(png, 1);
}

// Warnings are about oddities that leave the picture as it is; damage to it arrives as an error.
void pngWarned(png_structp /*png*/, png_const_charp /*text*/) {}

// Runs a step that calls libpng, and returns whether it came to its end. On an error the step is
// left by a jump that runs no destructors, so that it must not own anything: it works on objects of
// its caller.
template <typename Step>
[[nodiscard]] bool completes(png_structp png, const Step& step) {
  static_assert(std::is_trivially_destructible_v<Step>);
  if (setjmp(png_jmpbuf(png)) != 0) return false;  // NOLINT(cert-err52-cpp)
  step();
  return true;
}

struct PngReader {
  png_structp png = nullptr;
  png_infop info = nullptr;
  FaultText fault{};

  PngReader() {
    png = png_create_read_struct(PNG_LIBPNG_VER_STRING, &fault, pngFailed, pngWarned);
    if (png != nullptr) info = png_create_info_struct(png);
  }
  PngReader(const PngReader&) = delete;
  PngReader& operator=(const PngReader&) = delete;
  ~PngReader() { png_destroy_read_struct(&png, &info, nullptr); }
};

struct PngWriter {
  png_structp png = nullptr;
  png_infop info = nullptr;
  FaultText fault{};

  PngWriter() {
    png = png_create_write_struct(PNG_LIBPNG_VER_STRING, &fault, pngFailed, pngWarned);
    if (png != nullptr) info = png_create_info_struct(png);
  }
  PngWriter(const PngWriter&) = delete;
  PngWriter& operator=(const PngWriter&) = delete;
  ~PngWriter() { png_destroy_write_struct(&png, &info); }
};

[[noreturn]] void throwUnreadable(const FaultText& fault) {
  throw ImageError("cannot read the PNG file: " + std::string(fault.data()));
}

void takeBytes(png_structp png, png_bytep destination, std::size_t count) {
  auto& rest = *static_cast<std::span<const std::uint8_t>*>(png_get_io_ptr(png));
  if (count > rest.size()) png_error(png, "it ends too early");
  std::copy_n(rest.begin(), count, destination);
  rest = rest.subspan(count);
}

bool append(std::vector<std::uint8_t>& file, std::span<const std::uint8_t> bytes) noexcept {
  try {
    file.insert(file.end(), bytes.begin(), bytes.end());
    return true;
  } catch (const std::bad_alloc&) {
    return false;
  }
}

void appendBytes(png_structp png, png_bytep source, std::size_t count) {
  auto& file = *static_cast<std::vector<std::uint8_t>*>(png_get_io_ptr(png));
  if (!append(file, {source, count})) png_error(png, "there is not enough memory");
}

void flushNothing(png_structp /*png*/) {}

// The width and height stand at a fixed place, and libpng has no clear words for one that is zero.
void checkHasPixels(std::span<const std::uint8_t> file) {
  constexpr std::size_t widthOffset = 16;
  constexpr std::size_t heightOffset = 20;
  if (file.size() < heightOffset + 4) return;
  const auto isZero = [&](std::size_t offset) {
    return std::ranges::all_of(file.subspan(offset, 4),
                               [](std::uint8_t byte) { return byte == 0; });
  };
  if (isZero(widthOffset) || isZero(heightOffset)) throw ImageError("the image has no pixels");
}

void readHeader(const PngReader& reader, std::span<const std::uint8_t>& file) {
  // Far above every real profile, which by default libpng would not take beyond 8 MB.
  constexpr png_alloc_size_t mostChunkBytes = png_alloc_size_t{1} << 28;
  // Chunks not listed are skipped: some, as texts, could unpack to any size.
  constexpr std::string_view wanted = "cHRM\0gAMA\0iCCP\0sRGB\0eXIf\0pHYs\0"sv;
  constexpr int wantedChunks = wanted.size() / "cHRM\0"sv.size();

  png_set_read_fn(reader.png, &file, takeBytes);
  png_set_crc_action(reader.png, PNG_CRC_ERROR_QUIT, PNG_CRC_ERROR_QUIT);
  png_set_user_limits(reader.png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
  png_set_chunk_malloc_max(reader.png, mostChunkBytes);
  png_set_keep_unknown_chunks(reader.png, PNG_HANDLE_CHUNK_NEVER, nullptr, -1);
  png_set_keep_unknown_chunks(reader.png, PNG_HANDLE_CHUNK_AS_DEFAULT,
                              reinterpret_cast<png_const_bytep>(wanted.data()), wantedChunks);
  png_read_info(reader.png, reader.info);
}

// Has libpng turn every kind of pixel into B G R A.
void readPixels(const PngReader& reader, Image& image) {
  png_set_expand(reader.png);
  png_set_scale_16(reader.png);
  png_set_gray_to_rgb(reader.png);
  png_set_bgr(reader.png);
  if (!image.hasAlpha) png_set_filler(reader.png, 0xFF, PNG_FILLER_AFTER);
  const int passes = png_set_interlace_handling(reader.png);
  png_read_update_info(reader.png, reader.info);

  const std::size_t stride = std::size_t{image.width} * 4;
  if (png_get_rowbytes(reader.png, reader.info) != stride) {
    png_error(reader.png, "its kind of pixels is unknown");
  }
  for (int pass = 0; pass < passes; ++pass) {
    for (std::size_t y = 0; y < image.height; ++y) {
      png_read_row(reader.png, image.pixels.data() + y * stride, nullptr);
    }
  }
  png_read_end(reader.png, reader.info);
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

void keepRemarks(const PngRemarks& remarks, Image& image) {
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

void writeColourSpace(const PngWriter& writer, const Image& image) {
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

void writeFile(const PngWriter& writer, const Image& image, std::vector<std::uint8_t>& exif,
               std::vector<std::uint8_t>& file) {
  png_set_write_fn(writer.png, &file, appendBytes, flushNothing);
  png_set_user_limits(writer.png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
  // Packs photographs as tightly as the default level, in half the time or less.
  png_set_compression_level(writer.png, 4);
  png_set_IHDR(writer.png, writer.info, image.width, image.height, 8,
               image.hasAlpha ? PNG_COLOR_TYPE_RGB_ALPHA : PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE,
               PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  writeColourSpace(writer, image);
  if (!exif.empty()) {
    png_set_eXIf_1(writer.png, writer.info, static_cast<png_uint_32>(exif.size()), exif.data());
  }
  if (image.density) writeDensity(writer, *image.density);
  png_write_info(writer.png, writer.info);

  png_set_bgr(writer.png);
  if (!image.hasAlpha) png_set_filler(writer.png, 0, PNG_FILLER_AFTER);
  const std::size_t stride = std::size_t{image.width} * 4;
  for (std::size_t y = 0; y < image.height; ++y) {
    png_write_row(writer.png, image.pixels.data() + y * stride);
  }
  png_write_end(writer.png, writer.info);
}

}  // namespace

Image decodePng(std::span<const std::uint8_t> file, std::uint64_t pixelLimit) {
  checkHasPixels(file);
  PngReader reader;
  if (reader.info == nullptr) throw std::bad_alloc();

  if (!completes(reader.png, [&] { readHeader(reader, file); })) throwUnreadable(reader.fault);
  Image image;
  image.width = png_get_image_width(reader.png, reader.info);
  image.height = png_get_image_height(reader.png, reader.info);
  checkImageSize(image.width, image.height, pixelLimit);
  image.hasAlpha = (png_get_color_type(reader.png, reader.info) & PNG_COLOR_MASK_ALPHA) != 0 ||
                   png_get_valid(reader.png, reader.info, PNG_INFO_tRNS) != 0;
  image.pixels.resize(std::size_t{image.width} * image.height * 4);

  PngRemarks remarks;
  if (!completes(reader.png, [&] {
        readPixels(reader, image);
        readRemarks(reader, remarks);
      })) {
    throwUnreadable(reader.fault);
  }
  keepRemarks(remarks, image);
  return image;
}

std::vector<std::uint8_t> encodePng(const Image& image) {
  if (std::max(image.iccProfile.size(), image.exif.size()) > PNG_UINT_31_MAX) {
    throw ImageError("the colour profile or the EXIF data is too large for PNG");
  }
  PngWriter writer;
  if (writer.info == nullptr) throw std::bad_alloc();
  std::vector<std::uint8_t> exif = image.exif;  // libpng takes it as mutable
  std::vector<std::uint8_t> file;
  if (!completes(writer.png, [&] { writeFile(writer, image, exif, file); })) {
    throw ImageError("cannot write the PNG file: " + std::string(writer.fault.data()));
  }
  return file;
}

}  // namespace tintora::cli
