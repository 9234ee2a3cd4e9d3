#include "cli/palette_input.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "cli/output_file.h"
#include "cli/text.h"
#include "cli/transform_options.h"
#include "palette/main_colours.h"
#include "palette/palette_readers.h"

namespace tintora::cli {

namespace {

std::string percentText(double share) {
  const double percent = 100.0 * share;
  if (percent < 1.0) return "<1%";
  return std::to_string(std::lround(percent)) + "%";
}

}  // namespace

void requireFile(const std::string& argument) {
  std::error_code unknown;
  if (argument == standardStream || std::filesystem::exists(argument, unknown)) return;
  throw UsageError("\"" + argument + "\" is neither a colour (#rgb, #rrggbb or a CSS name) nor a " +
                   "file");
}

void addPaletteText(InputPalette& input, const std::string& name,
                    std::span<const std::uint8_t> contents) {
  if (isPicture(contents)) throw RunError(name + ": this is a picture; --image takes its colours");
  try {
    const std::string text(contents.begin(), contents.end());
    PaletteText palette = readPalette(text);
    for (PaletteColour& colour : palette.colours) {
      addColour(input.palette, {colour.rgb, printable(toUtf8(colour.name))});
    }
    input.leftOut.insert(input.leftOut.end(), palette.leftOut.begin(), palette.leftOut.end());
  } catch (const PaletteError& error) {
    throw RunError(name + ": " + error.what());
  }
}

void addArgument(InputPalette& input, const std::string& argument) {
  if (const auto colour = parseColour(argument)) {
    addColour(input.palette, {*colour, argument.starts_with('#') ? "" : argument});
    return;
  }
  requireFile(argument);
  addPaletteText(input, argument == standardStream ? "standard input" : argument,
                 readFileWhole(argument, mostPaletteBytes));
}

void addMainColours(InputPalette& input, const std::string& name, const Image& picture,
                    std::size_t most) {
  const std::vector<MainColour> colours = mainColours(picture.pixels, most);
  if (colours.empty()) throw RunError(name + ": all of the picture is transparent");
  for (const MainColour& colour : colours) {
    addColour(input.palette, {colour.rgb, percentText(colour.share)});
  }
}

Image readPicture(const std::string& path) {
  return decodePicture(path, readFileWhole(path, mostPictureBytes));
}

Image decodePicture(const std::string& path, std::span<const std::uint8_t> contents) {
  try {
    return decodeImage(contents);
  } catch (const ImageError& error) {
    throw RunError(path + ": " + error.what());
  }
}

bool isPicture(std::span<const std::uint8_t> contents) {
  constexpr std::array<std::uint8_t, 4> png{0x89, 'P', 'N', 'G'};
  constexpr std::array<std::uint8_t, 3> jpeg{0xFF, 0xD8, 0xFF};
  const auto begins = [&](std::span<const std::uint8_t> signature) {
    return contents.size() >= signature.size() &&
           std::equal(signature.begin(), signature.end(), contents.begin());
  };
  return begins(png) || begins(jpeg);
}

void requirePairs(const InputPalette& input) {
  const std::size_t count = input.palette.colours.size();
  if (count < 2) {
    throw UsageError(
        "two different colours at least are needed to compare; a shell wants quotes around "
        "\"#...\"");
  }
  if (count > mostPaletteColours) {
    throw UsageError("there are more than " + std::to_string(mostPaletteColours) + " colours");
  }
}

}  // namespace tintora::cli
