#include "cli/jpeg_codec.h"

#include <algorithm>
#include <array>
#include <csetjmp>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <type_traits>

// After <cstdio>, which it needs.
#include <jpeglib.h>

// After <jpeglib.h>: its message numbers depend on how the library was built.
#include <jerror.h>

namespace tintora::cli {

namespace {

using namespace std::string_view_literals;

constexpr int exifMarker = JPEG_APP0 + 1;
constexpr int iccMarker = JPEG_APP0 + 2;
constexpr std::string_view exifTag = "Exif\0\0"sv;
constexpr std::size_t longestMarker = 65533;

// A JFIF density, of pixels per inch or centimetre or only their ratio.
constexpr int jfifRatio = 0;
constexpr int jfifInch = 1;
constexpr int jfifCentimetre = 2;

// Progressive files have some ten scans. Each costs a pass over the whole picture however few its
// bytes, so that a small file of many scans could keep us busy for hours.
constexpr int mostScans = 100;

struct JpegFault {
  std::jmp_buf jump{};
  std::array<char, JMSG_LENGTH_MAX> text{};
};

template <typename Codec>
[[noreturn]] void fail(Codec* codec, const char* text) {
  auto& fault = *static_cast<JpegFault*>(codec->client_data);
  fault.text.fill('\0');
  std::string_view(text).copy(fault.text.data(), fault.text.size() - 1);
  std::longjmp(fault.jump, 1);  // NOLINT(cert-err52-cpp)
}

// libjpeg reports an error through this and must not be returned to.
[[noreturn]] void jpegFailed(j_common_ptr codec) {
  auto& fault = *static_cast<JpegFault*>(codec->client_data);
  codec->err->format_message(codec, fault.text.data());
  std::longjmp(fault.jump, 1);  // NOLINT(cert-err52-cpp)
}

// libjpeg only warns of damage, fills in what it lacks and goes on; such a picture must not pass
// for the real one. The oddities here leave the pixels as they are or as every viewer shows them.
void jpegWarned(j_common_ptr codec, int level) {
  if (level >= 0) return;
  switch (codec->err->msg_code) {
    case JWRN_ADOBE_XFORM:
    case JWRN_BOGUS_ICC:
    case JWRN_EXTRANEOUS_DATA:
    case JWRN_JFIF_MAJOR:
    case JWRN_NOT_SEQUENTIAL:
      return;
    default:
      jpegFailed(codec);
  }
}

// Those of the library that would print are among the replaced ones.
jpeg_error_mgr* handlersInto(jpeg_error_mgr& handlers) {
  jpeg_std_error(&handlers);
  handlers.error_exit = jpegFailed;
  handlers.emit_message = jpegWarned;
  return &handlers;
}

// Runs a step that calls libjpeg, and returns whether it came to its end. On an error the step is
// left by a jump that runs no destructors, so that it must not own anything: it works on objects of
// its caller.
template <typename Step>
[[nodiscard]] bool completes(JpegFault& fault, const Step& step) {
  static_assert(std::is_trivially_destructible_v<Step>);
  if (setjmp(fault.jump) != 0) return false;  // NOLINT(cert-err52-cpp)
  step();
  return true;
}

struct JpegReader {
  jpeg_decompress_struct codec{};
  jpeg_error_mgr handlers{};
  jpeg_source_mgr source{};
  jpeg_progress_mgr progress{};
  JpegFault fault;

  JpegReader() {
    codec.err = handlersInto(handlers);
    codec.client_data = &fault;
  }
  JpegReader(const JpegReader&) = delete;
  JpegReader& operator=(const JpegReader&) = delete;
  ~JpegReader() { jpeg_destroy_decompress(&codec); }
};

// The manager comes first: libjpeg hands out its address, which then is that of the whole.
struct JpegDestination {
  jpeg_destination_mgr manager;
  std::vector<std::uint8_t>* file;
};

struct JpegWriter {
  jpeg_compress_struct codec{};
  jpeg_error_mgr handlers{};
  JpegDestination destination;
  JpegFault fault;

  explicit JpegWriter(std::vector<std::uint8_t>& file) : destination{{}, &file} {
    codec.err = handlersInto(handlers);
    codec.client_data = &fault;
  }
  JpegWriter(const JpegWriter&) = delete;
  JpegWriter& operator=(const JpegWriter&) = delete;
  ~JpegWriter() { jpeg_destroy_compress(&codec); }
};

[[noreturn]] void throwUnreadable(const JpegFault& fault) {
  throw ImageError("cannot read the JPEG file: " + std::string(fault.text.data()));
}

void startSource(j_decompress_ptr /*codec*/) {}

// The whole file is in the buffer from the start.
boolean refillSource(j_decompress_ptr codec) {
  fail(codec, "it ends too early");
}

void skipSource(j_decompress_ptr codec, long count) {
  if (count <= 0) return;
  const auto bytes = static_cast<std::size_t>(count);
  if (bytes > codec->src->bytes_in_buffer) refillSource(codec);
  codec->src->next_input_byte += bytes;
  codec->src->bytes_in_buffer -= bytes;
}

void endSource(j_decompress_ptr /*codec*/) {}

void limitScans(j_common_ptr codec) {
  if (reinterpret_cast<j_decompress_ptr>(codec)->input_scan_number > mostScans) {
    fail(codec, "it has too many scans");
  }
}

void readHeader(JpegReader& reader, std::span<const std::uint8_t> file) {
  jpeg_create_decompress(&reader.codec);
  reader.source.init_source = startSource;
  reader.source.fill_input_buffer = refillSource;
  reader.source.skip_input_data = skipSource;
  reader.source.resync_to_restart = jpeg_resync_to_restart;
  reader.source.term_source = endSource;
  reader.source.next_input_byte = file.data();
  reader.source.bytes_in_buffer = file.size();
  reader.codec.src = &reader.source;
  reader.progress.progress_monitor = limitScans;
  reader.codec.progress = &reader.progress;

  jpeg_save_markers(&reader.codec, exifMarker, longestMarker);
  jpeg_save_markers(&reader.codec, iccMarker, longestMarker);
  jpeg_read_header(&reader.codec, TRUE);
}

void checkColours(const jpeg_decompress_struct& codec) {
  switch (codec.jpeg_color_space) {
    case JCS_GRAYSCALE:
    case JCS_RGB:
    case JCS_YCbCr:
      return;
    case JCS_CMYK:
    case JCS_YCCK:
      throw ImageError("the JPEG file is in CMYK, only greyscale and RGB colours are supported");
    default:
      throw ImageError("the JPEG file has " + std::to_string(codec.num_components) +
                       " channels, only greyscale and RGB colours are supported");
  }
}

std::vector<std::uint8_t> readIccProfile(JpegReader& reader) {
  JOCTET* bytes = nullptr;
  unsigned int count = 0;
  if (!completes(reader.fault, [&] { jpeg_read_icc_profile(&reader.codec, &bytes, &count); })) {
    throwUnreadable(reader.fault);
  }
  if (bytes == nullptr) return {};
  const std::unique_ptr<JOCTET, decltype(&std::free)> owner(bytes, std::free);
  return {bytes, bytes + count};
}

std::vector<std::uint8_t> readExif(const jpeg_decompress_struct& codec) {
  for (const jpeg_marker_struct* marker = codec.marker_list; marker != nullptr;
       marker = marker->next) {
    const std::span<const std::uint8_t> data(marker->data, marker->data_length);
    if (marker->marker == exifMarker && data.size() > exifTag.size() &&
        std::ranges::equal(data.first(exifTag.size()), exifTag)) {
      return {data.begin() + exifTag.size(), data.end()};
    }
  }
  return {};
}

std::optional<PixelDensity> readDensity(const jpeg_decompress_struct& codec) {
  if (codec.saw_JFIF_marker == FALSE || codec.X_density == 0 || codec.Y_density == 0) return {};
  switch (codec.density_unit) {
    case jfifInch:
      return PixelDensity{codec.X_density, codec.Y_density, PixelDensity::Unit::Inch};
    case jfifCentimetre:
      return PixelDensity{codec.X_density, codec.Y_density, PixelDensity::Unit::Centimetre};
    case jfifRatio:
      if (codec.X_density == codec.Y_density) return {};
      return PixelDensity{codec.X_density, codec.Y_density, PixelDensity::Unit::None};
    default:
      return {};
  }
}

void readPixels(JpegReader& reader, Image& image) {
  jpeg_decompress_struct& codec = reader.codec;
  codec.out_color_space = JCS_EXT_BGRA;
  codec.dct_method = JDCT_ISLOW;
  jpeg_start_decompress(&codec);
  const std::size_t stride = std::size_t{image.width} * 4;
  while (codec.output_scanline < codec.output_height) {
    JSAMPROW row = image.pixels.data() + codec.output_scanline * stride;
    jpeg_read_scanlines(&codec, &row, 1);
  }
  jpeg_finish_decompress(&codec);
}

bool grow(std::vector<std::uint8_t>& file, std::size_t size) noexcept {
  try {
    file.resize(size);
    return true;
  } catch (const std::bad_alloc&) {
    return false;
  }
}

// The codec writes straight into the vector, from the given place to its end.
void offerSpace(j_compress_ptr codec, std::size_t from, std::size_t size) {
  auto& destination = *reinterpret_cast<JpegDestination*>(codec->dest);
  if (!grow(*destination.file, size)) fail(codec, "there is not enough memory");
  destination.manager.next_output_byte = destination.file->data() + from;
  destination.manager.free_in_buffer = size - from;
}

void startDestination(j_compress_ptr codec) {
  constexpr std::size_t firstSize = std::size_t{1} << 16;
  offerSpace(codec, 0, firstSize);
}

boolean enlargeDestination(j_compress_ptr codec) {
  const std::size_t full = reinterpret_cast<JpegDestination*>(codec->dest)->file->size();
  offerSpace(codec, full, full * 2);
  return TRUE;
}

void endDestination(j_compress_ptr codec) {
  auto& destination = *reinterpret_cast<JpegDestination*>(codec->dest);
  destination.file->resize(destination.file->size() - destination.manager.free_in_buffer);
}

void setDensity(jpeg_compress_struct& codec, const PixelDensity& density) {
  constexpr std::uint64_t most = 65535;
  std::uint64_t across = density.across;
  std::uint64_t down = density.down;
  switch (density.unit) {
    case PixelDensity::Unit::Metre:
      across = (across * 254 + 5000) / 10000;
      down = (down * 254 + 5000) / 10000;
      break;
    case PixelDensity::Unit::None:
      while (std::max(across, down) > most) {
        across = (across + 1) / 2;
        down = (down + 1) / 2;
      }
      break;
    case PixelDensity::Unit::Inch:
    case PixelDensity::Unit::Centimetre:
      break;
  }
  if (std::min(across, down) == 0 || std::max(across, down) > most) return;
  codec.X_density = static_cast<UINT16>(across);
  codec.Y_density = static_cast<UINT16>(down);
  codec.density_unit = density.unit == PixelDensity::Unit::None         ? jfifRatio
                       : density.unit == PixelDensity::Unit::Centimetre ? jfifCentimetre
                                                                        : jfifInch;
}

void writeFile(JpegWriter& writer, const Image& image, int quality,
               std::span<const std::uint8_t> exif) {
  jpeg_compress_struct& codec = writer.codec;
  jpeg_create_compress(&codec);
  writer.destination.manager.init_destination = startDestination;
  writer.destination.manager.empty_output_buffer = enlargeDestination;
  writer.destination.manager.term_destination = endDestination;
  codec.dest = &writer.destination.manager;

  codec.image_width = image.width;
  codec.image_height = image.height;
  codec.input_components = 4;
  codec.in_color_space = JCS_EXT_BGRX;
  jpeg_set_defaults(&codec);
  jpeg_set_quality(&codec, quality, TRUE);
  codec.dct_method = JDCT_ISLOW;
  for (jpeg_component_info& component : std::span(codec.comp_info, 3)) {
    component.h_samp_factor = 1;
    component.v_samp_factor = 1;
  }
  if (image.density) setDensity(codec, *image.density);
  jpeg_start_compress(&codec, TRUE);

  if (!exif.empty()) {
    jpeg_write_marker(&codec, exifMarker, exif.data(), static_cast<unsigned int>(exif.size()));
  }
  if (!image.iccProfile.empty()) {
    jpeg_write_icc_profile(&codec, image.iccProfile.data(),
                           static_cast<unsigned int>(image.iccProfile.size()));
  }
  const std::size_t stride = std::size_t{image.width} * 4;
  while (codec.next_scanline < codec.image_height) {
    // libjpeg only reads from the row, but takes it as mutable.
    auto* row = const_cast<JSAMPROW>(image.pixels.data()) + codec.next_scanline * stride;
    jpeg_write_scanlines(&codec, &row, 1);
  }
  jpeg_finish_compress(&codec);
}

std::vector<std::uint8_t> exifMarkerData(const Image& image) {
  if (image.exif.empty()) return {};
  std::vector<std::uint8_t> data(exifTag.begin(), exifTag.end());
  data.insert(data.end(), image.exif.begin(), image.exif.end());
  return data;
}

// A profile is spread over up to 255 markers, each with a heading of its own.
constexpr std::size_t iccHeading = 14;
constexpr std::size_t longestIccProfile = 255 * (longestMarker - iccHeading);

}  // namespace

Image decodeJpeg(std::span<const std::uint8_t> file, std::uint64_t pixelLimit) {
  JpegReader reader;
  if (!completes(reader.fault, [&] { readHeader(reader, file); })) throwUnreadable(reader.fault);
  checkColours(reader.codec);
  Image image;
  image.width = reader.codec.image_width;
  image.height = reader.codec.image_height;
  checkImageSize(image.width, image.height, pixelLimit);
  image.iccProfile = readIccProfile(reader);
  image.exif = readExif(reader.codec);
  image.density = readDensity(reader.codec);
  image.pixels.resize(std::size_t{image.width} * image.height * 4);
  if (!completes(reader.fault, [&] { readPixels(reader, image); })) throwUnreadable(reader.fault);
  return image;
}

std::vector<std::uint8_t> encodeJpeg(const Image& image, int quality) {
  if (std::max(image.width, image.height) > JPEG_MAX_DIMENSION) {
    throw ImageError("JPEG cannot hold " + std::to_string(image.width) + " x " +
                     std::to_string(image.height) + " pixels; choose a PNG output");
  }
  const std::vector<std::uint8_t> exif = exifMarkerData(image);
  if (exif.size() > longestMarker) {
    throw ImageError("the EXIF data is too large for JPEG; choose a PNG output");
  }
  if (image.iccProfile.size() > longestIccProfile) {
    throw ImageError("the colour profile is too large for JPEG; choose a PNG output");
  }
  std::vector<std::uint8_t> file;
  JpegWriter writer(file);
  if (!completes(writer.fault, [&] { writeFile(writer, image, quality, exif); })) {
    throw ImageError("cannot write the JPEG file: " + std::string(writer.fault.text.data()));
  }
  return file;
}

}  // namespace tintora::cli
