// An observer: three cone sensitivities made from a photopigment template, and the opponent curves.
#pragma once

#include <cstdint>

#include "spectral/matrix3x3.h"
#include "spectral/spectral_tables.h"

namespace tintora {

// The deficiency that the model simulates. Any other value moves no cone.
enum class CvdType : std::uint32_t { Protan = 1, Deutan = 2, Tritan = 3 };

// One value for each cone: peak wavelengths in nm or photopigment optical densities.
struct ConeValues {
  double S;
  double M;
  double L;
};

// The colour-normal observer of Yang, Ro, Wong & Lee 2008.
inline constexpr ConeValues normalPeaks{420.7, 530.3, 558.9};   // nm
inline constexpr ConeValues normalDensities{0.35, 0.35, 0.35};  // peak optical density

struct ConeModel {
  SpectralCurve L{};  // cone sensitivities, largest sample 1
  SpectralCurve M{};
  SpectralCurve S{};
  SpectralCurve achromaticCurve{};
  SpectralCurve yellowBlueCurve{};
  SpectralCurve redGreenCurve{};
  SpectralCurve prereceptoralFilter{};  // transmittance, set once at start-up
  double peakL = 0.0;                   // nm, of the last build
  double peakM = 0.0;
  double peakS = 0.0;
  Matrix3x3 rgbToLms{};
  Matrix3x3 lmsToRgb{};
  Matrix3x3 rgbToOpponent{};
  Matrix3x3 opponentToRgb{};
  Matrix3x3 simulationResult{};  // used in the normal observer's record only
};

// Writes the photopigment absorbance, largest value about 1, for a peak wavelength in nm.
// Stockman & Sharpe 2000, Vision Research 40, 1711-1737: one shape on a log-wavelength axis.
void photopigmentTemplate(SpectralCurve& curve, double peak);

// Turns a peak-normalised absorbance into a peak-normalised absorptance for a photopigment optical
// density. A density of 0 or less leaves the curve as it is.
void applyOpticalDensity(SpectralCurve& curve, double density);

// Fills the three cone and the three opponent curves through the model's prereceptoral filter and
// records the peaks. Peaks in nm.
void buildConeModel(ConeModel& model, double peakS, double peakM, double peakL, double densityS,
                    double densityM, double densityL);

// Returns the peaks (nm) of the anomalous observer. One cone's peak moves towards its neighbour's
// as the severity grows from 0, and reaches it at 1.
ConeValues shiftedPeak(CvdType modelCvdType, double modelSeverity);

}  // namespace tintora
