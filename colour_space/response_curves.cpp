#include "colour_space/response_curves.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>

#include "colour_space/colour_space_view.h"
#include "colour_space/labels.h"
#include "spectral/spectral_tables.h"

namespace tintora {

namespace {

// Without the last sample of the grid, at 760 nm.
constexpr std::size_t shownSamples = SpectralGrid::samples - 1;

struct CurveForm {
  SceneRole reference;
  SceneRole live;
  double ConeValues::*cone;
  PackedColour colour;  // of the live curve
};
constexpr std::array<CurveForm, 3> curveForms{{
    {SceneRole::ReferenceS, SceneRole::LiveS, &ConeValues::S, 0xFF0000FF},
    {SceneRole::ReferenceL, SceneRole::LiveL, &ConeValues::L, 0xFFFF0000},
    {SceneRole::ReferenceM, SceneRole::LiveM, &ConeValues::M, 0xFF00FF00},
}};
constexpr PackedColour referenceColour = 0xFF8CA0B4;

// The layout of the curves: 360 nm is at the left, a sensitivity of 0 at the foot.
constexpr double nanometresPerUnit = 100.0;
constexpr double left = -2.0;
constexpr double height = 2.0;
constexpr double foot = -0.8;

const SpectralCurve& transmission() {
  static const SpectralCurve curve = [] {
    SpectralCurve filter;
    fillPrereceptoralFilter(filter);
    return filter;
  }();
  return curve;
}

SpectralCurve coneCurve(double peak, double density) {
  SpectralCurve curve;
  photopigmentTemplate(curve, peak);
  applyOpticalDensity(curve, density);
  multiplyAndNormalise(curve, transmission());
  return curve;
}

void writeCurve(SceneObject& object, const SpectralCurve& curve, PackedColour colour) {
  for (std::size_t i = 0; i < shownSamples; ++i) {
    placeVertex(object.vertices[i], static_cast<double>(i) / nanometresPerUnit + left,
                height * curve[i] + foot, 0.0, colour);
  }
  uploadVertices(object);
}

// Builds a curve of the normal observer.
void buildCurve(SceneRole role, ViewCode view, double ConeValues::*cone, PackedColour colour) {
  SceneObject& object = addObject(role, view, shownSamples, platform::BufferUse::Managed);
  object.kind = platform::PrimitiveKind::LineStrip;
  object.count = static_cast<int>(shownSamples) - 1;
  writeCurve(object, coneCurve(normalPeaks.*cone, normalDensities.*cone), colour);
}

}  // namespace

void buildReferenceCurves() {
  for (const CurveForm& form : curveForms) {
    buildCurve(form.reference, ViewCode::NormalCurves, form.cone, referenceColour);
  }
}

void buildLiveCurves() {
  for (const CurveForm& form : curveForms) {
    buildCurve(form.live, ViewCode::ResponseCurves, form.cone, form.colour);
  }
}

void refreshCurves(CvdType type, double severity) {
  const ConeValues peaks = shiftedPeak(type, std::min(severity, 1.0));
  for (const CurveForm& form : curveForms) {
    SceneObject* const object = sceneObject(form.live);
    if (object == nullptr) continue;
    writeCurve(*object, coneCurve(peaks.*form.cone, normalDensities.*form.cone), form.colour);
  }
}

void drawCurveLabels() {
  constexpr int first = 400;  // nm
  constexpr int last = 700;
  constexpr int step = 50;
  constexpr float y = -1.0F;
  constexpr int offsetX = -8;
  for (int wavelength = first; wavelength <= last; wavelength += step) {
    const int sample = wavelength - SpectralGrid::firstWavelength;
    const auto x = static_cast<float>(sample / nanometresPerUnit + left);
    drawLabel(seenAt({x, y, 0.0F}, offsetX),
              std::to_string(wavelength) + (wavelength == last ? "nm" : ""));
  }
}

}  // namespace tintora
