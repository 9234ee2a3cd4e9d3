// Which way up a picture is shown, as its EXIF data says.
#pragma once

#include <cstdint>
#include <span>

#include "cli/image_file.h"

namespace tintora::cli {

// Returns the orientation of EXIF data, a TIFF structure: 1 (as the pixels stand) to 8. It is 1 if
// the data says nothing, or nothing that makes sense.
int orientationOf(std::span<const std::uint8_t> exif);

// Returns the picture with its pixels the way up it is shown, and without EXIF data.
Image uprightPicture(const Image& picture);

}  // namespace tintora::cli
