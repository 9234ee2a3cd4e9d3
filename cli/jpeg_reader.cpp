#include "cli/jpeg_reader.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include "cli/jpeg_fault.h"

namespace tintora::cli {

namespace {

// Progressive files have some ten scans. Each costs a pass over the whole picture however few its
// bytes, so a small file of many scans could keep us busy for hours.
constexpr int mostScans = 100;

// The manager comes first: libjpeg hands out its address, which then is that of the whole.
struct JpegSource {
  jpeg_source_mgr manager;
  ByteSource* bytes;
};

struct JpegReader {
  jpeg_decompress_struct codec{};
  jpeg_error_mgr handlers{};
  JpegSource source;
  jpeg_progress_mgr progress{};
  JpegFault fault;

  explicit JpegReader(ByteSource& bytes) : source{{}, &bytes} {
    codec.err = handlersInto(handlers);
    codec.client_data = &fault;
  }
  JpegReader(const JpegReader&) = delete;
  JpegReader& operator=(const JpegReader&) = delete;
  ~JpegReader() { jpeg_destroy_decompress(&codec); }
};

[[noreturn]] void throwUnreadable(const JpegFault& fault) {
  throw ImageError("cannot read the JPEG file: " + std::string(fault.text.data()));
}

void startSource(j_decompress_ptr /*codec*/) {}

void offerRest(jpeg_source_mgr& manager, ByteSource& bytes) {
  manager.next_input_byte = bytes.rest.data();
  manager.bytes_in_buffer = bytes.rest.size();
}

boolean refillSource(j_decompress_ptr codec) {
  ByteSource& bytes = *reinterpret_cast<JpegSource*>(codec->src)->bytes;
  bytes.rest = {};
  if (!refill(bytes)) {
    fail(codec, bytes.error == 0 ? "it ends too early" : std::strerror(bytes.error));
  }
  offerRest(*codec->src, bytes);
  return TRUE;
}

void skipSource(j_decompress_ptr codec, long count) {
  while (count > 0) {
    if (codec->src->bytes_in_buffer == 0) refillSource(codec);
    const std::size_t skipped =
        std::min(static_cast<std::size_t>(count), codec->src->bytes_in_buffer);
    codec->src->next_input_byte += skipped;
    codec->src->bytes_in_buffer -= skipped;
    count -= static_cast<long>(skipped);
  }
}

void endSource(j_decompress_ptr /*codec*/) {}

void limitScans(j_common_ptr codec) {
  if (reinterpret_cast<j_decompress_ptr>(codec)->input_scan_number > mostScans) {
    fail(codec, "it has too many scans");
  }
}

void readHeader(JpegReader& reader) {
  jpeg_create_decompress(&reader.codec);
  jpeg_source_mgr& manager = reader.source.manager;
  manager.init_source = startSource;
  manager.fill_input_buffer = refillSource;
  manager.skip_input_data = skipSource;
  manager.resync_to_restart = jpeg_resync_to_restart;
  manager.term_source = endSource;
  offerRest(manager, *reader.source.bytes);
  reader.codec.src = &manager;
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

void start(JpegReader& reader, bool grey) {
  jpeg_decompress_struct& codec = reader.codec;
  codec.out_color_space = grey ? JCS_GRAYSCALE : JCS_EXT_BGRA;
  codec.dct_method = JDCT_ISLOW;
  jpeg_start_decompress(&codec);
}

}  // namespace

ImageReader openJpeg(ByteSource& source, std::uint64_t pixelLimit) {
  const auto reader = std::make_shared<JpegReader>(source);
  if (!completes(reader->fault, [&] { readHeader(*reader); })) throwUnreadable(reader->fault);
  checkColours(reader->codec);
  RowsHeader header;
  header.width = reader->codec.image_width;
  header.height = reader->codec.image_height;
  checkImageSize(header.width, header.height, pixelLimit);
  header.iccProfile = readIccProfile(*reader);
  header.exif = readExif(reader->codec);
  header.density = readDensity(reader->codec);
  header.isGrey = reader->codec.jpeg_color_space == JCS_GRAYSCALE;
  if (header.isGrey) {
    header.layout = PixelLayout::Indexed;
    header.palette = greyPalette(header.indexBits);
  }
  if (!completes(reader->fault, [&] { start(*reader, header.isGrey); })) {
    throwUnreadable(reader->fault);
  }
  const auto readRow = [reader](std::uint8_t* row) {
    if (!completes(reader->fault, [&] { jpeg_read_scanlines(&reader->codec, &row, 1); })) {
      throwUnreadable(reader->fault);
    }
  };
  const auto finish = [reader]() -> std::vector<std::uint8_t> {
    if (!completes(reader->fault, [&] { jpeg_finish_decompress(&reader->codec); })) {
      throwUnreadable(reader->fault);
    }
    return {};
  };
  return {std::move(header), readRow, finish};
}

}  // namespace tintora::cli
