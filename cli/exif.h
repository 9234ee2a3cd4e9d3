// The parts of EXIF data that a filtered picture must not carry along unchanged. Edited in place,
// so that everything else, makers' notes included, stays byte for byte.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace tintora::cli {

// Returns true if the data begins as a TIFF structure, which EXIF data is.
bool isExif(std::span<const std::uint8_t> exif);

// Returns the orientation, 1 to 8 as EXIF 2.3 numbers them; 1, upright, if none is stated.
int exifOrientation(std::span<const std::uint8_t> exif);

// Sets an orientation that is stated to upright.
void setExifUpright(std::vector<std::uint8_t>& exif);

// Cuts the thumbnail off, which would show the picture as it was.
void dropExifThumbnail(std::vector<std::uint8_t>& exif);

}  // namespace tintora::cli
