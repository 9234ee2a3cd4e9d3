#include "spectral/spectral_tables.h"

#include <algorithm>
#include <cmath>
#include <span>

#include "spectral/published_tables.h"

namespace tintora {

namespace {

// The density tables begin at 391 nm; below it the program holds each at a constant of its own.
constexpr std::size_t densityHeadSamples = 31;
constexpr double lensDensityHead = 2.5122;
constexpr double macularDensityHead = 0.04533;

void fillDensity(SpectralCurve& curve, double head, std::span<const double> published) {
  const auto body = std::fill_n(curve.begin(), densityHeadSamples, head);
  const auto tail = std::copy(published.begin(), published.end(), body);
  std::fill(tail, curve.end(), 0.0);
}

}  // namespace

void fillCieXBar(SpectralCurve& curve) {
  std::ranges::copy(cie1931XBar, curve.begin());
}

void fillCieYBar(SpectralCurve& curve) {
  std::ranges::copy(cie1931YBar, curve.begin());
}

void fillCieZBar(SpectralCurve& curve) {
  std::ranges::copy(cie1931ZBar, curve.begin());
}

void fillLensDensity(SpectralCurve& curve) {
  fillDensity(curve, lensDensityHead, lensOpticalDensity);
}

void fillMacularDensity(SpectralCurve& curve) {
  fillDensity(curve, macularDensityHead, macularOpticalDensity);
}

void fillPrereceptoralFilter(SpectralCurve& curve) {
  SpectralCurve lens;
  SpectralCurve macular;
  fillLensDensity(lens);
  fillMacularDensity(macular);
  for (std::size_t i = 0; i < curve.size(); ++i) curve[i] = std::pow(10.0, -(lens[i] + macular[i]));
}

void gaussianSpectrum(SpectralCurve& curve, double amplitude, double peak, double width) {
  for (std::size_t i = 0; i < curve.size(); ++i) {
    const double distance = SpectralGrid::wavelength(i) - peak;
    curve[i] = amplitude * std::exp(-(distance * distance) / (2.0 * width * width));
  }
}

SpectralCurve primarySpectrum(const DisplayPrimary& primary) {
  SpectralCurve curve;
  gaussianSpectrum(curve, primary.amplitude, primary.peak, primary.width);
  return curve;
}

double spectralDot(const SpectralCurve& a, const SpectralCurve& b) {
  double sum = 0.0;
  for (std::size_t i = 0; i < a.size(); ++i) sum += a[i] * b[i];
  return sum;
}

void multiplyAndNormalise(SpectralCurve& a, const SpectralCurve& filter) {
  for (std::size_t i = 0; i < a.size(); ++i) a[i] *= filter[i];
  const double largest = *std::ranges::max_element(a);
  if (largest > 0.0) {
    for (double& sample : a) sample /= largest;
  }
}

}  // namespace tintora
