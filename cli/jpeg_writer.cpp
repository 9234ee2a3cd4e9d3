#include "cli/jpeg_writer.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <string>

#include "cli/jpeg_fault.h"

namespace tintora::cli {

namespace {

// The manager comes first: libjpeg hands out its address, which then is that of the whole.
struct JpegDestination {
  jpeg_destination_mgr manager;
  ByteSink* sink;
  std::array<std::uint8_t, 1U << 14> buffer;
};

struct JpegWriter {
  jpeg_compress_struct codec{};
  jpeg_error_mgr handlers{};
  JpegDestination destination;
  JpegFault fault;

  explicit JpegWriter(ByteSink& sink) : destination{{}, &sink, {}} {
    codec.err = handlersInto(handlers);
    codec.client_data = &fault;
  }
  JpegWriter(const JpegWriter&) = delete;
  JpegWriter& operator=(const JpegWriter&) = delete;
  ~JpegWriter() { jpeg_destroy_compress(&codec); }
};

void startDestination(j_compress_ptr codec) {
  auto& destination = *reinterpret_cast<JpegDestination*>(codec->dest);
  destination.manager.next_output_byte = destination.buffer.data();
  destination.manager.free_in_buffer = destination.buffer.size();
}

void putFilled(j_compress_ptr codec, std::size_t filled) {
  auto& destination = *reinterpret_cast<JpegDestination*>(codec->dest);
  if (!put(*destination.sink, std::span(destination.buffer).first(filled))) {
    fail(codec, std::strerror(destination.sink->error));
  }
  startDestination(codec);
}

// Writes the whole buffer: the library asks for more room only when all of it is filled.
boolean emptyDestination(j_compress_ptr codec) {
  putFilled(codec, reinterpret_cast<JpegDestination*>(codec->dest)->buffer.size());
  return TRUE;
}

void endDestination(j_compress_ptr codec) {
  const auto& destination = *reinterpret_cast<JpegDestination*>(codec->dest);
  putFilled(codec, destination.buffer.size() - destination.manager.free_in_buffer);
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

void writeHeader(JpegWriter& writer, const RowsHeader& header, int quality,
                 std::span<const std::uint8_t> exif) {
  jpeg_compress_struct& codec = writer.codec;
  jpeg_create_compress(&codec);
  writer.destination.manager.init_destination = startDestination;
  writer.destination.manager.empty_output_buffer = emptyDestination;
  writer.destination.manager.term_destination = endDestination;
  codec.dest = &writer.destination.manager;

  const bool grey = header.layout == PixelLayout::Indexed;
  codec.image_width = header.width;
  codec.image_height = header.height;
  codec.input_components = grey ? 1 : 4;
  codec.in_color_space = grey ? JCS_GRAYSCALE : JCS_EXT_BGRX;
  jpeg_set_defaults(&codec);
  jpeg_set_quality(&codec, quality, TRUE);
  codec.dct_method = JDCT_ISLOW;
  const auto components = static_cast<std::size_t>(codec.num_components);
  for (jpeg_component_info& component : std::span(codec.comp_info, components)) {
    component.h_samp_factor = 1;
    component.v_samp_factor = 1;
  }
  if (header.density) setDensity(codec, *header.density);
  jpeg_start_compress(&codec, TRUE);

  if (!exif.empty()) {
    jpeg_write_marker(&codec, exifMarker, exif.data(), static_cast<unsigned int>(exif.size()));
  }
  if (!header.iccProfile.empty()) {
    jpeg_write_icc_profile(&codec, header.iccProfile.data(),
                           static_cast<unsigned int>(header.iccProfile.size()));
  }
}

std::vector<std::uint8_t> exifMarkerData(const ImageHeader& image) {
  if (image.exif.empty()) return {};
  std::vector<std::uint8_t> data(exifTag.begin(), exifTag.end());
  data.insert(data.end(), image.exif.begin(), image.exif.end());
  return data;
}

// A profile is spread over up to 255 markers, each with a heading of its own.
constexpr std::size_t iccHeading = 14;
constexpr std::size_t longestIccProfile = 255 * (longestMarker - iccHeading);

bool isOpaque(const std::uint8_t* row, std::size_t width) {
  std::uint8_t alphas = 0xFF;
  for (std::size_t x = 0; x < width; ++x) alphas &= row[4 * x + 3];
  return alphas == 0xFF;
}

[[noreturn]] void throwUnwritable(const JpegWriter& writer) {
  throw ImageError("cannot write the JPEG file: " + std::string(writer.fault.text.data()));
}

}  // namespace

ImageWriter startJpeg(ByteSink& sink, const RowsHeader& header, int quality) {
  if (std::max(header.width, header.height) > JPEG_MAX_DIMENSION) {
    throw ImageError("JPEG cannot hold " + std::to_string(header.width) + " x " +
                     std::to_string(header.height) + " pixels; choose a PNG output");
  }
  const std::vector<std::uint8_t> exif = exifMarkerData(header);
  if (exif.size() > longestMarker) {
    throw ImageError("the EXIF data is too large for JPEG; choose a PNG output");
  }
  if (header.iccProfile.size() > longestIccProfile) {
    throw ImageError("the colour profile is too large for JPEG; choose a PNG output");
  }
  const auto writer = std::make_shared<JpegWriter>(sink);
  if (!completes(writer->fault, [&] { writeHeader(*writer, header, quality, exif); })) {
    throwUnwritable(*writer);
  }
  // Rows of greys have no alpha, whatever the file said that they came from.
  const bool hasAlpha = header.hasAlpha && header.layout != PixelLayout::Indexed;
  const auto writeRow = [writer, hasAlpha, width = header.width](const std::uint8_t* row) {
    if (hasAlpha && !isOpaque(row, width)) {
      throw ImageError("JPEG cannot keep transparency; choose a PNG output");
    }
    // libjpeg only reads from the row, but takes it as mutable.
    auto* samples = const_cast<JSAMPROW>(row);
    if (!completes(writer->fault, [&] { jpeg_write_scanlines(&writer->codec, &samples, 1); })) {
      throwUnwritable(*writer);
    }
  };
  const auto finish = [writer](std::span<const std::uint8_t> /*lateExif*/) {
    if (!completes(writer->fault, [&] { jpeg_finish_compress(&writer->codec); })) {
      throwUnwritable(*writer);
    }
  };
  return {writeRow, finish};
}

}  // namespace tintora::cli
