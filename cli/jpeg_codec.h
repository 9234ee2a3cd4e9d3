// The JPEG side of image_file.h.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "cli/image_file.h"

namespace tintora::cli {

// As decodeImage, for a file that begins like JPEG; profile and EXIF data come unexamined.
Image decodeJpeg(std::span<const std::uint8_t> file, std::uint64_t pixelLimit);

// As encodeImage, for an opaque image that holds to the rules of Image.
std::vector<std::uint8_t> encodeJpeg(const Image& image, int quality);

}  // namespace tintora::cli
