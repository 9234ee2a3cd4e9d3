// Spectra on the program's wavelength grid: the published tables, the display primaries and the few
// operations that everything spectral is made of.
#pragma once

#include <array>
#include <cstddef>

namespace tintora {

struct SpectralGrid {
  static constexpr int firstWavelength = 360;  // nm
  static constexpr std::size_t samples = 401;  // 1 nm apart, to 760 nm

  // Returns the wavelength of a sample in nm.
  static constexpr double wavelength(std::size_t sample) {
    return static_cast<double>(firstWavelength) + static_cast<double>(sample);
  }
};

// Sample i stands at 360 + i nm. Sums over a curve are plain sums of its samples.
using SpectralCurve = std::array<double, SpectralGrid::samples>;

// A spectral line of the display, modelled as a Gaussian.
struct DisplayPrimary {
  double amplitude;
  double peak;   // nm
  double width;  // nm, the standard deviation
};

// Yang, Ro, Wong & Lee 2008: the primaries of the display.
inline constexpr DisplayPrimary redPrimary{1.0, 620.0, 10.0};
inline constexpr DisplayPrimary greenPrimary{1.0, 549.0, 10.0};
inline constexpr DisplayPrimary bluePrimary{1.0, 469.0, 10.0};

// Write the CIE 1931 2-degree colour-matching functions into the curve. z-bar ends at 649 nm,
// and fillCieZBar writes no further, so pass it a curve of zeros.
void fillCieXBar(SpectralCurve& curve);
void fillCieYBar(SpectralCurve& curve);
void fillCieZBar(SpectralCurve& curve);

// Write the optical density of the lens and of the macular pigment into the curve, all 401 samples:
// constant up to 390 nm, published values from 391 nm, 0 from 660 nm and from 550 nm.
void fillLensDensity(SpectralCurve& curve);
void fillMacularDensity(SpectralCurve& curve);

// Writes the transmittance of lens and macular pigment together, 0..1, into the curve.
void fillPrereceptoralFilter(SpectralCurve& curve);

// Writes amplitude * exp(-(wavelength - peak)^2 / (2 width^2)) into the curve; peak and width in
// nm.
void gaussianSpectrum(SpectralCurve& curve, double amplitude, double peak, double width);

// Returns the spectrum of a display primary.
SpectralCurve primarySpectrum(const DisplayPrimary& primary);

// Returns the sum of a(i) * b(i) over the whole grid.
double spectralDot(const SpectralCurve& a, const SpectralCurve& b);

// Multiplies the curve by the filter and divides it by its largest sample, unless that is 0 or
// less.
void multiplyAndNormalise(SpectralCurve& a, const SpectralCurve& filter);

}  // namespace tintora
