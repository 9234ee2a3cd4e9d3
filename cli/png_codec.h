// The PNG side of image_file.h.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "cli/image_file.h"

namespace tintora::cli {

// As decodeImage, for a file with the signature of PNG; profile and EXIF data come unexamined.
Image decodePng(std::span<const std::uint8_t> file, std::uint64_t pixelLimit);

// As encodeImage, for an image that holds to the rules of Image.
std::vector<std::uint8_t> encodePng(const Image& image);

}  // namespace tintora::cli
