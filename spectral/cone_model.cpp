#include "spectral/cone_model.h"

#include <array>
#include <cmath>
#include <numbers>

namespace tintora {

namespace {

double powerOfTen(double exponent) {
  return std::exp(exponent * std::numbers::ln10);
}

// Returns the log10 of every wavelength of the grid: the axis on which a template keeps its shape.
const SpectralCurve& logWavelengths() {
  static const SpectralCurve axis = [] {
    SpectralCurve curve;
    for (std::size_t i = 0; i < curve.size(); ++i) {
      curve[i] = std::log10(SpectralGrid::wavelength(i));
    }
    return curve;
  }();
  return axis;
}

// Of the template, by rising powers.
constexpr std::array<long double, 8> templateCoefficients{
    -188862.9708L, 90228.96671L,  -2483.531554L, -6675.007924L,
    1813.525992L,  -215.1778885L, 12.48755862L,  -0.289541501L};

// Computes the polynomial of the template in the square of x, the log10 of a wavelength in nm. Its
// terms reach 1e7 and cancel to about 0, which double precision would answer with an error of 5e-9.
long double logAbsorbance(long double x2) {
  long double sum = 0.0L;
  for (std::size_t i = templateCoefficients.size(); i-- > 0;) {
    sum = sum * x2 + templateCoefficients[i];
  }
  return sum;
}

}  // namespace

void photopigmentTemplate(SpectralCurve& curve, double peak) {
  const double shift = std::log10(peak / 558.0);
  const SpectralCurve& axis = logWavelengths();
  for (std::size_t i = 0; i < curve.size(); ++i) {
    const long double x = axis[i] - shift;
    curve[i] = powerOfTen(static_cast<double>(logAbsorbance(x * x)));
  }
}

void applyOpticalDensity(SpectralCurve& curve, double density) {
  if (!(density > 0.0)) return;
  const double peakAbsorptance = 1.0 - powerOfTen(-density);
  for (double& sample : curve) sample = (1.0 - powerOfTen(-density * sample)) / peakAbsorptance;
}

void buildConeModel(ConeModel& model, double peakS, double peakM, double peakL, double densityS,
                    double densityM, double densityL) {
  model.peakS = peakS;
  model.peakM = peakM;
  model.peakL = peakL;

  photopigmentTemplate(model.S, peakS);
  photopigmentTemplate(model.M, peakM);
  photopigmentTemplate(model.L, peakL);

  applyOpticalDensity(model.S, densityS);
  applyOpticalDensity(model.M, densityM);
  applyOpticalDensity(model.L, densityL);

  multiplyAndNormalise(model.S, model.prereceptoralFilter);
  multiplyAndNormalise(model.M, model.prereceptoralFilter);
  multiplyAndNormalise(model.L, model.prereceptoralFilter);

  for (std::size_t i = 0; i < model.L.size(); ++i) {
    const double L = model.L[i];
    const double M = model.M[i];
    const double S = model.S[i];
    model.achromaticCurve[i] = 0.6 * L + 0.4 * M;
    model.yellowBlueCurve[i] = 0.24 * L + 0.105 * M - 0.7 * S;
    model.redGreenCurve[i] = 1.2 * L - 1.6 * M + 0.4 * S;
  }
}

ConeValues shiftedPeak(CvdType modelCvdType, double modelSeverity) {
  ConeValues peaks = normalPeaks;
  switch (modelCvdType) {
    case CvdType::Protan:
      peaks.L -= modelSeverity * (normalPeaks.L - normalPeaks.M);
      break;
    case CvdType::Deutan:
      peaks.M += modelSeverity * (normalPeaks.L - normalPeaks.M);
      break;
    case CvdType::Tritan:
      peaks.S += modelSeverity * (normalPeaks.M - normalPeaks.S);
      break;
  }
  return peaks;
}

}  // namespace tintora
