#include "cli/filter_stream.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <new>
#include <optional>
#include <utility>
#include <vector>

#include "cli/exif.h"
#include "cli/image_file.h"
#include "cli/jpeg_writer.h"
#include "cli/orientation.h"
#include "cli/png_writer.h"

namespace tintora::cli {

namespace {

// Runs a step and tells which image its failure is about.
template <typename Error, typename Step>
auto telling(const char* noMemory, const Step& step) {
  try {
    return step();
  } catch (const ImageError& error) {
    throw Error(error.what());
  } catch (const std::bad_alloc&) {
    throw Error(noMemory);
  }
}

template <typename Step>
auto reading(const Step& step) {
  return telling<ImageReadError>("there is not enough memory to read the image", step);
}

template <typename Step>
auto writing(const Step& step) {
  return telling<ImageWriteError>("there is not enough memory to write the image", step);
}

// Guesses what the pixels are like: a file that is large for them could not be packed well because
// they hardly repeat.
PngContent contentOf(bool isJpeg, std::optional<std::uint64_t> fileBytes,
                     const RowsHeader& header) {
  constexpr std::uint64_t drawingsShare = 5;
  const std::uint64_t pixelBytes = std::uint64_t{rowBytes(header)} * header.height;
  const bool isLarge = fileBytes && *fileBytes > pixelBytes / drawingsShare;
  return isJpeg || isLarge ? PngContent::Photograph : PngContent::Drawing;
}

ImageWriter startImage(ByteSink& sink, const RowsHeader& header, const StreamOptions& options,
                       PngContent content) {
  if (options.format == ImageFormat::Png) return startPng(sink, header, content);
  return startJpeg(sink, header, options.quality);
}

// ---- Turning

RowsHeader turnedHeader(const RowsHeader& header, int orientation) {
  RowsHeader turned = header;
  setExifUpright(turned.exif);
  if (isSideways(orientation)) {
    std::swap(turned.width, turned.height);
    if (turned.density) std::swap(turned.density->across, turned.density->down);
  }
  return turned;
}

void writeTurned(const std::vector<std::vector<std::uint8_t>>& rows, const RowsHeader& header,
                 int orientation, const ImageWriter& writer) {
  const bool sideways = isSideways(orientation);
  const std::size_t width = sideways ? header.height : header.width;
  const std::size_t height = sideways ? header.width : header.height;
  const std::size_t pixelBytes = rowBytes(header) / header.width;
  std::vector<std::uint8_t> turned(width * pixelBytes);
  for (std::size_t y = 0; y < height; ++y) {
    for (std::size_t x = 0; x < width; ++x) {
      const PixelPlace from = storedPlace(orientation, {x, y}, header.width, header.height);
      std::memcpy(&turned[x * pixelBytes], &rows[from.y][from.x * pixelBytes], pixelBytes);
    }
    writer.writeRow(turned.data());
  }
}

}  // namespace

void filterStream(ByteSource& source, ByteSink& sink, const FilterSet& filters,
                  const StreamOptions& options) {
  const bool fromJpeg = isJpeg(source);
  const std::optional<std::uint64_t> fileBytes = bytesLeft(source);
  ImageReader reader = reading([&] { return openImage(source, options.pixelLimit); });
  dropExifThumbnail(reader.header.exif);
  const RowFilter plan =
      reading([&] { return planRowFilter(reader.header, filters, options.format); });
  const bool turns = fromJpeg && options.format == ImageFormat::Png;
  const int orientation = turns ? exifOrientation(reader.header.exif) : 1;
  const PngContent content = contentOf(fromJpeg, fileBytes, reader.header);
  const ImageWriter writer = writing([&] {
    return startImage(sink, turns ? turnedHeader(plan.header, orientation) : plan.header, options,
                      content);
  });

  std::vector<std::uint8_t> row(rowBytes(reader.header));
  std::vector<std::uint8_t> filtered(rowBytes(plan.header));
  std::vector<std::vector<std::uint8_t>> rows;
  for (std::uint32_t y = 0; y < reader.header.height; ++y) {
    reading([&] {
      reader.readRow(row.data());
      plan.filterRow(row.data(), filtered.data());
      if (orientation != 1) rows.push_back(filtered);
    });
    if (orientation == 1) writing([&] { writer.writeRow(filtered.data()); });
  }
  std::vector<std::uint8_t> lateExif = reading([&] { return reader.finish(); });
  if (!isExif(lateExif)) lateExif.clear();
  dropExifThumbnail(lateExif);
  writing([&] {
    if (orientation != 1) writeTurned(rows, plan.header, orientation, writer);
    writer.finish(lateExif);
    if (!flush(sink)) throw ImageError(std::strerror(sink.error));
  });
}

}  // namespace tintora::cli
