#include "engine/transform_settings.h"

#include <array>
#include <cstddef>
#include <string_view>

namespace tintora {

TransformSettings transformSettings;

namespace {

struct CvdTitleWords {
  std::string_view inversePrefix;
  std::string_view dichromat;
  std::string_view anomalous;
};

// Protan, Deutan, Tritan. The tritan title has always been spelled "Tranform"; keep it.
constexpr std::array<CvdTitleWords, 3> cvdTitleWords{{
    {" Inverse Transform -", " Protanope ", " Protanomalous "},
    {" Inverse Transform -", " Deuteranope ", " Deuteranomalous "},
    {" Inverse Tranform -", " Tritanope ", " Tritanomalous "},
}};

std::string percent(double value) {
  return std::to_string(wholePercent(value));
}

std::string severityTitle(const TransformSettings& settings) {
  return percent(settings.severity) + "% severity";
}

std::string cvdTitle(const TransformSettings& settings) {
  const CvdTitleWords& words = cvdTitleWords[static_cast<std::size_t>(settings.Selected) - 1];
  std::string_view prefix = " Simulation -";
  if (settings.Inversion) {
    prefix = words.inversePrefix;
  } else if (settings.Daltonize) {
    prefix = " Daltonize -";
  }
  const std::string_view type = settings.severity >= 1.0 ? words.dichromat : words.anomalous;
  return std::string(prefix).append(type) + severityTitle(settings);
}

std::string brightnessTitle(const TransformSettings& settings) {
  const std::string_view sign = settings.brightness >= 0.0 ? "+" : "";
  return std::string("Brightness ").append(sign) + percent(settings.brightness) + "%";
}

std::string swapTitle(const TransformSettings& settings) {
  const std::string swap = "Swap " + percent(settings.severity);
  switch (settings.Swap) {
    case ColourSwap::RedBlue:
      return swap + "% Red and Blue";
    case ColourSwap::RedGreen:
      return swap + "% Red and Green";
    case ColourSwap::GreenBlue:
      return swap + "% Green and Blue";
    case ColourSwap::RedBlueInFull:
      return "Swap Red and Blue";
  }
  return severityTitle(settings);
}

}  // namespace

bool isDeficiency(TransformMode mode) {
  return mode == TransformMode::Protan || mode == TransformMode::Deutan ||
         mode == TransformMode::Tritan;
}

bool isSimulation(TransformMode mode) {
  return isDeficiency(mode) || mode == TransformMode::Normal;
}

std::int32_t wholePercent(double value) {
  const double spare = value >= 0.0 ? 0.001 : -0.001;
  return static_cast<std::int32_t>(value * 100.0 + spare);
}

std::string transformTitle(const TransformSettings& settings) {
  switch (settings.Selected) {
    case TransformMode::Protan:
    case TransformMode::Deutan:
    case TransformMode::Tritan:
      return cvdTitle(settings);
    case TransformMode::ColourFilter:
      return percent(settings.severity) + "% " + settings.filterName + " Filter";
    case TransformMode::Greyscale:
      return "Greyscale";
    case TransformMode::Invert:
      return "Invert ";
    case TransformMode::Brightness:
      return brightnessTitle(settings);
    case TransformMode::Normal:
      return "Normal  " + severityTitle(settings);
    case TransformMode::Contrast:
      return "Contrast " + percent(settings.contrast) + "%";
    case TransformMode::Saturation:
      return "Saturation " + percent(settings.saturation) + "%";
    case TransformMode::ColourSwap:
      return swapTitle(settings);
    case TransformMode::CircadianLightBlock:
      return "Circadian Light Block, Brightness " + percent(settings.severity) + "%";
    case TransformMode::RedFilter:
      return "Red Filter";
    case TransformMode::Custom:
      break;
  }
  return severityTitle(settings);
}

}  // namespace tintora
