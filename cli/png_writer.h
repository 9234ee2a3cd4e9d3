// PNG files, row by row.
#pragma once

#include "cli/byte_stream.h"
#include "cli/image.h"

namespace tintora::cli {

// What the pixels are like, which decides how they are compressed: those of a drawing repeat, and
// those of a photograph hardly do.
enum class PngContent { Drawing, Photograph };

// Begins a file of these rows, of any layout; the sink must outlive the writer. The layout, the
// alpha channel and the palette stay as they are; Indexed greys must have the palette of
// greyPalette. Throws ImageError.
ImageWriter startPng(ByteSink& sink, const RowsHeader& header,
                     PngContent content = PngContent::Drawing);

}  // namespace tintora::cli
