#include <array>
#include <nlohmann/json.hpp>
#include <utility>

#include "palette/palette_readers.h"

namespace tintora {

namespace {

using Json = nlohmann::json;

[[noreturn]] void throwAtEntry(std::size_t index, const std::string& reason) {
  throw PaletteError("entry " + std::to_string(index + 1) + " of the array: " + reason);
}

std::uint8_t channelOf(const Json& number, std::size_t index) {
  if (!number.is_number_integer() || number < 0 || number > 255) {
    throwAtEntry(index, "a channel is no whole number of 0 to 255");
  }
  return number.get<std::uint8_t>();
}

Rgb8 colourOf(const Json& value, std::size_t index) {
  if (value.is_array() && value.size() == 3) {
    return {channelOf(value[0], index), channelOf(value[1], index), channelOf(value[2], index)};
  }
  if (!value.is_string()) {
    throwAtEntry(index, "this is neither a colour nor an object with one");
  }
  const auto colour = parseColour(value.get_ref<const std::string&>());
  if (!colour) throwAtEntry(index, "the text is neither #rgb, #rrggbb nor a CSS colour name");
  return *colour;
}

PaletteColour entryOf(const Json& entry, std::size_t index) {
  if (!entry.is_object()) return {colourOf(entry, index), ""};
  constexpr std::array members{"hex", "color", "colour", "value"};
  for (const char* const member : members) {
    const auto found = entry.find(member);
    if (found == entry.end()) continue;
    const auto name = entry.find("name");
    const bool isNamed = name != entry.end() && name->is_string();
    return {colourOf(*found, index), isNamed ? name->get<std::string>() : ""};
  }
  throwAtEntry(index, "the object has no member hex, color, colour or value");
}

}  // namespace

PaletteText readJsonPalette(std::string_view text) {
  Json json;
  try {
    json = Json::parse(text);
  } catch (const Json::parse_error& error) {
    throw PaletteError("this is no valid JSON from byte " + std::to_string(error.byte) + " on");
  } catch (const Json::out_of_range&) {
    throw PaletteError("this is no valid JSON: a number in it is too large");
  }
  if (!json.is_array()) throw PaletteError("this is no JSON array");
  if (json.empty()) throw PaletteError("it holds no colour");
  if (json.size() > mostPaletteColours) {
    throw PaletteError("it holds more than " + std::to_string(mostPaletteColours) + " colours");
  }
  PaletteBuilder palette;
  for (std::size_t i = 0; i < json.size(); ++i) addColour(palette, entryOf(json[i], i));
  return {std::move(palette.colours), {}};
}

}  // namespace tintora
