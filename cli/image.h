// Images as they pass row by row between files and filters.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <stdexcept>
#include <vector>

namespace tintora::cli {

// Why an image could not be read or written: one line, without the name of the file.
struct ImageError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// Red, green, blue and opacity, or blue, green, red and opacity.
constexpr std::size_t rgbaChannels = 4;

enum class ImageFormat { Png, Jpeg };

// Pixels for each unit of length, in the unit of the file. Without a unit only the ratio of the two
// numbers has a meaning.
struct PixelDensity {
  enum class Unit { None, Inch, Centimetre, Metre };
  std::uint32_t across = 0, down = 0;
  Unit unit = Unit::None;
  bool operator==(const PixelDensity&) const = default;
};

// What a PNG file without a colour profile can say about its colours. It is copied to the output
// and does not affect the pixels.
struct PngColourSpace {
  std::optional<int> srgbIntent;      // the rendering intent of an sRGB image, 0..3
  std::optional<std::int32_t> gamma;  // of the file, in 1/100000
  // x and y of white, red, green and blue, in 1/100000
  std::optional<std::array<std::int32_t, 8>> chromaticities;
  bool operator==(const PngColourSpace&) const = default;
};

// What a viewer needs beside the pixels.
struct ImageHeader {
  std::uint32_t width = 0, height = 0;
  bool hasAlpha = false;  // without it every pixel is opaque
  std::vector<std::uint8_t> iccProfile;
  std::vector<std::uint8_t> exif;  // a TIFF structure, holds the orientation; or empty
  std::optional<PixelDensity> density;
  PngColourSpace pngColourSpace;  // lost in a JPEG file, which has no place for it
};

// How the samples of a row stand in memory; 16-bit ones in the machine's byte order.
enum class PixelLayout {
  Bgra8,
  Rgba16,
  GreyAlpha8,
  Grey16,
  GreyAlpha16,
  Indexed,  // places in the palette, of 1, 2, 4 or 8 bits, the leftmost pixel in the highest
};

struct PaletteEntry {
  std::uint8_t red = 0, green = 0, blue = 0, alpha = 255;
  bool operator==(const PaletteEntry&) const = default;
};

// What passes by row: the header and the layout of the rows.
struct RowsHeader : ImageHeader {
  PixelLayout layout = PixelLayout::Bgra8;
  int indexBits = 8;                  // Indexed only
  bool isGrey = false;                // Indexed only: its file holds greys and no palette
  std::vector<PaletteEntry> palette;  // Indexed only; for greys one entry for each index
};

// Returns the length of a row in bytes.
std::size_t rowBytes(const RowsHeader& header);

// Returns the evenly spaced greys from black to white that indices of so many bits stand for.
std::vector<PaletteEntry> greyPalette(int indexBits);

// Returns the index of a pixel in a row of indices of so many bits.
unsigned indexAt(const std::uint8_t* row, std::size_t x, int indexBits);

// An image that is read row by row from the top. Both functions throw ImageError.
struct ImageReader {
  RowsHeader header;
  std::function<void(std::uint8_t* row)> readRow;
  // Checks the rest of the file, and returns EXIF data found behind the pixels.
  std::function<std::vector<std::uint8_t>()> finish;
};

// An image that is written row by row from the top. Both functions throw ImageError.
struct ImageWriter {
  std::function<void(const std::uint8_t* row)> writeRow;
  // Finishes the file. Adds EXIF data that was found behind the pixels of the input, if the format
  // has a place for it there.
  std::function<void(std::span<const std::uint8_t> lateExif)> finish;
};

// Throws ImageError if an image of this size has more pixels than the limit.
void checkImageSize(std::uint32_t width, std::uint32_t height, std::uint64_t pixelLimit);

}  // namespace tintora::cli
