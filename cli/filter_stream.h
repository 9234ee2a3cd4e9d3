// Filters an image file row by row.
#pragma once

#include <cstdint>

#include "cli/byte_stream.h"
#include "cli/filtered_rows.h"
#include "cli/image.h"

namespace tintora::cli {

// What went wrong with the image that is read, and with the one that is written.
struct ImageReadError : ImageError {
  using ImageError::ImageError;
};
struct ImageWriteError : ImageError {
  using ImageError::ImageError;
};

struct StreamOptions {
  ImageFormat format;  // of the output
  int quality;         // of JPEG, 1..100
  std::uint64_t pixelLimit;
};

// Reads, filters and writes an image, and flushes the sink. If JPEG becomes PNG, applies the EXIF
// orientation, which readers of PNG ignore. Removes EXIF thumbnails. Keeps the whole picture in
// memory only for interlaced PNG, progressive JPEG and pictures that are turned. Throws the errors
// above; the sink then holds no valid image.
void filterStream(ByteSource& source, ByteSink& sink, const FilterSet& filters,
                  const StreamOptions& options);

}  // namespace tintora::cli
