// Pictures turned the way up they are shown. Orientations are 1 to 8, as EXIF 2.3 numbers them; 1
// is upright.
#pragma once

#include <cstddef>

#include "cli/image_file.h"

namespace tintora::cli {

// A pixel's column and row, counted from the left and the top.
struct PixelPlace {
  std::size_t x, y;
};

// Returns true if the picture's stored rows are shown as columns.
bool isSideways(int orientation);

// Returns where the pixel that is shown at a place stands in the stored picture, whose width and
// height are given in pixels.
PixelPlace storedPlace(int orientation, PixelPlace shown, std::size_t width, std::size_t height);

// Returns the picture with its pixels the way up it is shown, and without EXIF data.
Image uprightPicture(const Image& picture);

}  // namespace tintora::cli
