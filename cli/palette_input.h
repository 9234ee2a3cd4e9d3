// Palettes as the command line gives them: colours, files of colours, and pictures.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "cli/image_file.h"
#include "palette/palette.h"

namespace tintora::cli {

// Colours that were gathered, names in UTF-8 without control characters.
struct InputPalette {
  PaletteBuilder palette;
  std::vector<std::string> leftOut;  // translucent colours, as written
};

// Throws UsageError if the argument, which is no colour, is no file either; "-" is standard input.
void requireFile(const std::string& argument);

// Adds a colour as parseColour reads it, or the colours of a palette file; "-" is standard input.
// Throws UsageError if the argument is neither a colour nor a file, and std::runtime_error, naming
// the file, if the file holds no palette.
void addArgument(InputPalette& input, const std::string& argument);

// Adds the colours of a palette file that was read already. Throws RunError with its name.
void addPaletteText(InputPalette& input, const std::string& name,
                    std::span<const std::uint8_t> contents);

// Adds the main colours of a picture, named by their shares. Throws RunError with the picture's
// name if all of it is transparent.
void addMainColours(InputPalette& input, const std::string& name, const Image& picture,
                    std::size_t most);

// Reads a picture file. Throws std::runtime_error with its name.
Image readPicture(const std::string& path);

// Reads a picture from the contents of its file. Throws RunError with its name.
Image decodePicture(const std::string& path, std::span<const std::uint8_t> contents);

// Returns true if the file begins as a PNG or JPEG picture does.
bool isPicture(std::span<const std::uint8_t> contents);

inline constexpr std::uint64_t mostPictureBytes = std::uint64_t{4} << 30;

// Palette files are small; this leaves room for the style sheets of large sites.
inline constexpr std::uint64_t mostPaletteBytes = std::uint64_t{8} << 20;

// Throws UsageError unless there are two colours to compare and no more than can be checked.
void requirePairs(const InputPalette& input);

}  // namespace tintora::cli
