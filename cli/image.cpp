#include "cli/image.h"

#include <string>

namespace tintora::cli {

std::size_t rowBytes(const RowsHeader& header) {
  const std::size_t width = header.width;
  switch (header.layout) {
    case PixelLayout::Bgra8:
    case PixelLayout::GreyAlpha16:
      return width * 4;
    case PixelLayout::Rgba16:
      return width * 8;
    case PixelLayout::GreyAlpha8:
    case PixelLayout::Grey16:
      return width * 2;
    case PixelLayout::Indexed:
      break;
  }
  return (width * static_cast<std::size_t>(header.indexBits) + 7) / 8;
}

std::vector<PaletteEntry> greyPalette(int indexBits) {
  std::vector<PaletteEntry> palette;
  const unsigned most = (1U << indexBits) - 1U;
  for (unsigned index = 0; index <= most; ++index) {
    const auto grey = static_cast<std::uint8_t>(index * 255U / most);
    palette.push_back({grey, grey, grey, 255});
  }
  return palette;
}

unsigned indexAt(const std::uint8_t* row, std::size_t x, int indexBits) {
  const std::size_t bit = x * static_cast<std::size_t>(indexBits);
  const unsigned shift = 8U - static_cast<unsigned>(indexBits) - static_cast<unsigned>(bit % 8);
  return (row[bit / 8] >> shift) & ((1U << indexBits) - 1U);
}

void checkImageSize(std::uint32_t width, std::uint32_t height, std::uint64_t pixelLimit) {
  if (std::uint64_t{width} * height > pixelLimit) {
    throw ImageError("the image is " + std::to_string(width) + " x " + std::to_string(height) +
                     " pixels, more than the limit of " + std::to_string(pixelLimit));
  }
}

}  // namespace tintora::cli
