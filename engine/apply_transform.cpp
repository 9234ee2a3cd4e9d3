#include "engine/apply_transform.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

#include "engine/colour_effects.h"
#include "engine/custom_transforms.h"
#include "engine/cvd_transforms.h"
#include "engine/effect_matrix.h"
#include "engine/transform_display.h"
#include "engine/transform_settings.h"

namespace tintora {

namespace {

// The six positions of the "Alternative transforms:" menu, and one more that is cleared with them.
constexpr int alternativeTransformsCleared = 7;

void checkMainItem(int position, bool checked) {
  transformDisplay.checkMenuItem(TransformMenu::Main, position, checked);
}

void clearCheckMarks() {
  const ViewerItemPositions& items = transformDisplay.positions;
  for (const int position : {1, 2, 3, items.simulation, items.daltonize, items.inverseTransform,
                             items.swapRedAndBlue, items.otherColourEffects}) {
    checkMainItem(position, false);
  }
  for (int position = 0; position < alternativeTransformsCleared; ++position) {
    transformDisplay.checkMenuItem(TransformMenu::AlternativeTransforms, position, false);
  }
}

void checkAlgorithmItem() {
  const AlgorithmPositions& positions = transformDisplay.algorithmPositions;
  const auto algorithm = static_cast<std::size_t>(transformSettings.Option);
  if (algorithm >= positions.size()) return;
  transformDisplay.checkMenuItem(TransformMenu::AlternativeTransforms, positions[algorithm], true);
}

// Returns the position of the item to check. If both flags are set, Daltonize wins here and in the
// matrix, but Inversion wins in the title.
int viewerItemPosition(const TransformSettings& settings) {
  const ViewerItemPositions& items = transformDisplay.positions;
  if (!isDeficiency(settings.Selected)) {
    const bool swapsRedAndBlue =
        settings.Selected == TransformMode::ColourSwap && settings.Swap == ColourSwap::RedBlue;
    return swapsRedAndBlue ? items.swapRedAndBlue : items.otherColourEffects;
  }
  if (settings.Daltonize) return items.daltonize;
  if (settings.Inversion) return items.inverseTransform;
  return items.simulation;
}

ColourEffect simulationEffect(CvdType type, double severity) {
  const TransformSettings& settings = transformSettings;
  return {computeSimulationMatrix(type, severity, settings.Option, settings.Inversion,
                                  settings.Daltonize)};
}

// Returns the matrix that the model last computed, which unknown modes and swaps show.
ColourEffect lastModelEffect() {
  return {modelContext.simulationMatrix};
}

bool isKnownSwap(ColourSwap swap) {
  return swap >= ColourSwap::RedBlue && swap <= ColourSwap::RedBlueInFull;
}

ColourEffect effectOf(const TransformSettings& settings) {
  const std::array<double, 3> passed{settings.filterRed, settings.filterGreen, settings.filterBlue};
  switch (settings.Selected) {
    case TransformMode::Protan:
      return simulationEffect(CvdType::Protan, settings.severity);
    case TransformMode::Deutan:
      return simulationEffect(CvdType::Deutan, settings.severity);
    case TransformMode::Tritan:
      return simulationEffect(CvdType::Tritan, settings.severity);
    case TransformMode::Normal:
      return simulationEffect(CvdType::Protan, settings.severity / normalVariationDivisor);
    case TransformMode::ColourFilter:
      return filterEffect(passed, settings.severity);
    case TransformMode::RedFilter:
      return filterEffect(passed, 1.0);
    case TransformMode::Greyscale:
      return greyscaleEffect();
    case TransformMode::Invert:
      return invertEffect();
    case TransformMode::Brightness:
      return brightnessEffect(settings.brightness);
    case TransformMode::Contrast:
      return contrastEffect(settings.contrast);
    case TransformMode::Saturation:
      return saturationEffect(settings.saturation);
    case TransformMode::CircadianLightBlock:
      return circadianEffect(settings.severity);
    case TransformMode::ColourSwap:
      if (isKnownSwap(settings.Swap)) return swapEffect(settings.Swap, settings.severity);
      break;
    case TransformMode::Custom:
      break;
  }
  return lastModelEffect();
}

}  // namespace

void applyTransform() {
  TransformSettings& settings = transformSettings;
  clearCheckMarks();
  checkAlgorithmItem();
  checkMainItem(viewerItemPosition(settings), true);
  if (settings.Selected == TransformMode::Custom) {
    applyCustomTransform(static_cast<std::uint32_t>(settings.customIndex));
    return;
  }

  storeColourEffect(effectOf(settings));
  if (isDeficiency(settings.Selected)) checkMainItem(static_cast<int>(settings.Selected), true);
  transformDisplay.showTitle(transformTitle(settings));
  transformDisplay.showEffectMatrix(effectMatrix);
  settings.transformOff = false;
  if (isSimulation(settings.Selected)) transformDisplay.refreshTransformViews();
}

void transformOffApply() {
  storeColourEffect({});
  transformDisplay.showEffectMatrix(effectMatrix);
  transformDisplay.showTitle("Transform off, press Tab to turn transform back on");
  transformSettings.transformOff = true;
}

void applyCustomTransform(std::uint32_t index) {
  TransformSettings& settings = transformSettings;
  if (customTransforms.empty()) return;
  if (index >= customTransforms.size()) index = 0;
  settings.customIndex = static_cast<std::int32_t>(index);

  const CustomTransform& entry = customTransforms[index];
  const double strength = entry.adjustable ? settings.severity : 1.0;
  transformDisplay.showTitle(entry.name);

  // Returns identity + (file value - identity) * strength. At strength 0 the identity is shown even
  // if the file's value is infinite.
  const auto blend = [strength](double identity, float value) {
    return strength == 0.0 ? identity : identity + (value - identity) * strength;
  };
  ColourEffect effect;
  for (std::size_t row = 0; row < 3; ++row) {
    for (std::size_t column = 0; column < 3; ++column) {
      double& coefficient = effect.matrix[3 * row + column];
      coefficient = blend(coefficient, entry.rows[row][column]);
    }
    effect.offset[row] = blend(0.0, entry.rows[row][3]);
  }
  storeColourEffect(effect);

  transformDisplay.showEffectMatrix(effectMatrix);
  settings.transformOff = false;
  if (entry.adjustable) {
    transformDisplay.showTitle(entry.name + "   " +
                               std::to_string(wholePercent(settings.severity)) +
                               "% (mouse-wheel adjusts %)");
  }
}

}  // namespace tintora
