#include "engine/effect_matrix.h"

#include <array>
#include <cstddef>
#include <cstdint>

#include "engine/custom_transforms.h"
#include "engine/cvd_transforms.h"

namespace tintora {

EffectMatrix effectMatrix = identityEffectMatrix;
TransformDisplay transformDisplay;

namespace {

// The "Alternative transforms:" menu: a heading, then the algorithms. Position 6 is cleared too.
constexpr int alternativeTransformsCleared = 7;

struct AlgorithmItem {
  SimulationAlgorithm algorithm;
  int position;
};
constexpr std::array<AlgorithmItem, 5> algorithmItems{{
    {SimulationAlgorithm::Judd1948, 1},
    {SimulationAlgorithm::Vienot1997Approximated, 2},
    {SimulationAlgorithm::Vienot1999, 3},
    {SimulationAlgorithm::Yang2008, 4},
    {SimulationAlgorithm::Machado2009, 5},
}};

// The "Normal" mode shows the mildest fifth of protan vision.
constexpr double normalVariationShare = 5.0;

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
  for (const auto& [algorithm, position] : algorithmItems) {
    if (algorithm == transformSettings.Option) {
      transformDisplay.checkMenuItem(TransformMenu::AlternativeTransforms, position, true);
    }
  }
}

// Daltonize goes before Inversion here and in the matrix, but not in the title.
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

// A mode or swap that is none of the known ones shows what the model last computed.
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
      return simulationEffect(CvdType::Protan, settings.severity / normalVariationShare);
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

void storeColourEffect(const ColourEffect& effect) {
  for (std::size_t output = 0; output < 3; ++output) {
    for (std::size_t input = 0; input < 3; ++input) {
      effectMatrix[input][output] = static_cast<float>(effect.matrix[3 * output + input]);
    }
    effectMatrix[4][output] = static_cast<float>(effect.offset[output]);
  }
}

}  // namespace tintora
