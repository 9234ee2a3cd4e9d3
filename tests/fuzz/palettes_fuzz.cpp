// Any bytes as a palette, by every reader: reading them ends in distinct colours or in a
// PaletteError of one line, and the colours that were read are read again from their hex texts.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <set>
#include <string>
#include <string_view>

#include "palette/palette_readers.h"

namespace {

using namespace tintora;

void require(bool holds) {
  if (!holds) std::abort();
}

void checkColours(const PaletteText& palette) {
  require(!palette.colours.empty() && palette.colours.size() <= mostPaletteColours);
  std::set<Rgb8> distinct;
  std::string text;
  for (const PaletteColour& colour : palette.colours) {
    require(distinct.insert(colour.rgb).second);
    require(parseColour(hexText(colour.rgb)) == colour.rgb);
    text += hexText(colour.rgb) + '\n';
  }
  const PaletteText again = readPalette(text);
  require(again.colours.size() == palette.colours.size());
  for (std::size_t i = 0; i < again.colours.size(); ++i) {
    require(again.colours[i].rgb == palette.colours[i].rgb);
  }
}

void checkReader(PaletteText (*read)(std::string_view), std::string_view text) {
  try {
    checkColours(read(text));
  } catch (const PaletteError& error) {
    const std::string_view reason = error.what();
    require(!reason.empty() && reason.find('\n') == std::string_view::npos);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  for (const auto read : {&readPalette, &readGimpPalette, &readJsonPalette, &readHexColours}) {
    checkReader(read, text);
  }
  parseColour(text);
  return 0;
}
