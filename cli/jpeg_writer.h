// JPEG files, row by row.
#pragma once

#include "cli/byte_stream.h"
#include "cli/image.h"

namespace tintora::cli {

// Begins a file of these rows, Bgra8 or Indexed greys of 8 bits, in the quality 1..100; the sink
// must outlive the writer. Throws ImageError, later for a row that is not opaque too.
ImageWriter startJpeg(ByteSink& sink, const RowsHeader& header, int quality);

}  // namespace tintora::cli
