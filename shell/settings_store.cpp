#include "shell/settings_store.h"

#include <algorithm>
#include <array>

#include "engine/colour_effects.h"
#include "engine/custom_transforms.h"
#include "platform/program.h"
#include "platform/value_store.h"
#include "shell/shell_state.h"

namespace tintora {

namespace {

// The built-in modes in the order of their stored values.
constexpr std::array<TransformMode, 13> storedModes{
    TransformMode::Normal,       TransformMode::Protan,     TransformMode::Deutan,
    TransformMode::Tritan,       TransformMode::Greyscale,  TransformMode::Invert,
    TransformMode::Brightness,   TransformMode::Contrast,   TransformMode::Saturation,
    TransformMode::ColourFilter, TransformMode::ColourSwap, TransformMode::CircadianLightBlock,
    TransformMode::RedFilter,
};

std::uint32_t storedCustomCount() {
  return static_cast<std::uint32_t>(customTransforms.size());
}

std::int32_t asSigned(std::uint32_t stored) {
  return static_cast<std::int32_t>(stored);
}

struct Setting {
  const char* name;
  std::uint32_t (*save)();
  void (*load)(std::uint32_t stored);
};

constexpr std::size_t selectedSetting = 0;

// In the order in which they are read and written.
constexpr std::array<Setting, 9> storedSettings{{
    {"Selected", [] { return encodeSelection(transformSettings, storedCustomCount()); },
     [](std::uint32_t stored) { decodeSelection(transformSettings, stored, storedCustomCount()); }},
    {"ScrollPc",
     [] { return static_cast<std::uint32_t>(wholePercent(transformSettings.severity)); },
     [](std::uint32_t stored) {
       transformSettings.severity = std::clamp(asSigned(stored) / 100.0, 0.0, 1.0);
     }},
    {"Filter", [] { return static_cast<std::uint32_t>(transformSettings.Filter); },
     [](std::uint32_t stored) {
       transformSettings.Filter = asSigned(stored);
       for (const ColourFilter& filter : colourFilters) {
         if (filter.command == transformSettings.Filter) {
           chooseColourFilter(transformSettings, filter);
         }
       }
     }},
    {"Swap", [] { return static_cast<std::uint32_t>(transformSettings.Swap); },
     [](std::uint32_t stored) {
       transformSettings.Swap =
           std::clamp(ColourSwap{asSigned(stored)}, ColourSwap::RedBlue, ColourSwap::RedBlueInFull);
     }},
    {"Option", [] { return static_cast<std::uint32_t>(transformSettings.Option); },
     [](std::uint32_t stored) { transformSettings.Option = SimulationAlgorithm{stored}; }},
    {"Inversion", [] { return transformSettings.Inversion ? 1U : 0U; },
     [](std::uint32_t stored) { transformSettings.Inversion = stored != 0; }},
    {"Daltonize", [] { return transformSettings.Daltonize ? 1U : 0U; },
     [](std::uint32_t stored) { transformSettings.Daltonize = stored != 0; }},
    {"ColorSpace", [] { return shellState.colourSpaceVisible ? 1U : 0U; },
     [](std::uint32_t stored) { shellState.colourSpaceVisible = stored != 0; }},
    {"View", [] { return static_cast<std::uint32_t>(shellState.view); },
     [](std::uint32_t stored) { shellState.view = ViewCode{asSigned(stored)}; }},
}};

std::array<platform::StoredValue, storedSettings.size()> namedValues() {
  std::array<platform::StoredValue, storedSettings.size()> values;
  for (std::size_t i = 0; i < values.size(); ++i) values[i].name = storedSettings[i].name;
  return values;
}

platform::Rect centredOnScreen() {
  const double scale = platform::screenScale();
  const platform::Size size{platform::scaled(500, scale), platform::scaled(400, scale)};
  const platform::Size screen = platform::screenSize();
  const int left = screen.width / 2 - size.width / 2;
  const int top = screen.height / 2 - size.height / 2;
  return {left, top, left + size.width, top + size.height};
}

}  // namespace

std::uint32_t encodeSelection(const TransformSettings& settings, std::uint32_t count) {
  const auto mode = std::ranges::find(storedModes, settings.Selected);
  if (mode == storedModes.end()) return static_cast<std::uint32_t>(settings.customIndex);
  return count + static_cast<std::uint32_t>(mode - storedModes.begin());
}

void decodeSelection(TransformSettings& settings, std::uint32_t stored, std::uint32_t count) {
  if (stored < count) {
    settings.Selected = TransformMode::Custom;
    settings.customIndex = asSigned(stored);
    return;
  }
  settings.customIndex = 0;
  const std::uint32_t place = stored - count;
  if (place >= storedModes.size()) return;
  settings.Selected = storedModes[place];
  if (settings.Selected == TransformMode::RedFilter) {
    settings.filterRed = fullRedFilter.red;
    settings.filterGreen = fullRedFilter.green;
    settings.filterBlue = fullRedFilter.blue;
  }
}

void loadSettings() {
  transformSettings.customIndex = 0;
  shellState.mainBounds = centredOnScreen();

  auto values = namedValues();
  if (!platform::readValues(values) || !values[selectedSetting].value) {
    transformSettings.customIndex = 0;
    transformSettings.Selected = TransformMode::Protan;
  }
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (values[i].value) storedSettings[i].load(*values[i].value);
  }
}

void saveSettings() {
  auto values = namedValues();
  for (std::size_t i = 0; i < values.size(); ++i) values[i].value = storedSettings[i].save();
  platform::writeValues(values);
}

}  // namespace tintora
