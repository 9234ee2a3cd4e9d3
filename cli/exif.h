// Edits the parts of EXIF data that would be wrong in a filtered picture, in place, so that
// everything else, including makers' notes, stays the same byte for byte.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace tintora::cli {

// Returns true if the data begins as a TIFF structure, which EXIF data is.
bool isExif(std::span<const std::uint8_t> exif);

// Returns the orientation, 1 to 8 as EXIF 2.3 numbers them; 1, upright, if none is stated.
int exifOrientation(std::span<const std::uint8_t> exif);

// Sets the orientation to upright if the data states one.
void setExifUpright(std::vector<std::uint8_t>& exif);

// Removes the thumbnail, which would show the unfiltered picture.
void dropExifThumbnail(std::vector<std::uint8_t>& exif);

}  // namespace tintora::cli
