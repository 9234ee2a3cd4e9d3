// JPEG files, row by row.
#pragma once

#include <cstdint>

#include "cli/byte_stream.h"
#include "cli/image.h"

namespace tintora::cli {

// Opens a file that begins like JPEG; the source must outlive the reader. The rows are Bgra8 or, of
// a grey file, Indexed greys; progressive files are kept in memory by the library. Profile and EXIF
// data come unexamined. Throws ImageError.
ImageReader openJpeg(ByteSource& source, std::uint64_t pixelLimit);

}  // namespace tintora::cli
