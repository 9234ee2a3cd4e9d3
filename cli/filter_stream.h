// One image file through a transform, row by row.
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

// Reads, filters and writes an image. Whole rows are kept only of interlaced PNG, of progressive
// JPEG and of a picture that is turned: where JPEG becomes PNG, whose readers ignore an EXIF
// orientation, it is applied. EXIF thumbnails are cut off. The sink is flushed at the end. Throws
// the errors above; what the sink then holds is no image.
void filterStream(ByteSource& source, ByteSink& sink, const FilterSet& filters,
                  const StreamOptions& options);

}  // namespace tintora::cli
