// PNG files, row by row.
#pragma once

#include "cli/byte_stream.h"
#include "cli/image.h"

namespace tintora::cli {

// Begins a file of these rows, of any layout; the sink must outlive the writer. The layout, the
// alpha channel and the palette stay as they are; Indexed greys must have the palette of
// greyPalette. Throws ImageError.
ImageWriter startPng(ByteSink& sink, const RowsHeader& header);

}  // namespace tintora::cli
