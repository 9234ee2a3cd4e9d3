// PNG files, row by row.
#pragma once

#include <cstdint>

#include "cli/byte_stream.h"
#include "cli/image.h"

namespace tintora::cli {

// Opens a file with the signature of PNG; the source must outlive the reader. Rows are kept only of
// interlaced files, as their pixels arrive. Profile and EXIF data come unexamined. Throws
// ImageError, for animations too.
ImageReader openPng(ByteSource& source, std::uint64_t pixelLimit);

}  // namespace tintora::cli
