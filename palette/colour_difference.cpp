#include "palette/colour_difference.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "engine/srgb.h"
#include "spectral/matrix3x3.h"

namespace tintora {

namespace {

// IEC 61966-2-1: X, Y, Z of linear R, G, B, to the four decimals of the standard.
constexpr Matrix3x3 rgbToXyz{
    0.4124, 0.3576, 0.1805,  //
    0.2126, 0.7152, 0.0722,  //
    0.0193, 0.1192, 0.9505,
};
// X, Y, Z of R = G = B = 1, so that display greys have no chroma.
constexpr std::array<double, 3> white{0.9505, 1.0, 1.0890};

// CIE 15: where the cube root gives way to a line, and the line.
constexpr double cubeRootFrom = 6.0 / 29.0;
constexpr double lineSlope = 3.0 * cubeRootFrom * cubeRootFrom;
constexpr double lineOffset = 4.0 / 29.0;

double labFunction(double t) {
  constexpr double limit = cubeRootFrom * cubeRootFrom * cubeRootFrom;
  return t > limit ? std::cbrt(t) : t / lineSlope + lineOffset;
}

double inverseLabFunction(double f) {
  return f > cubeRootFrom ? f * f * f : lineSlope * (f - lineOffset);
}

using Triple = std::array<double, 3>;

Triple multiply(const Matrix3x3& m, const Triple& v) {
  return {m[0] * v[0] + m[1] * v[1] + m[2] * v[2], m[3] * v[0] + m[4] * v[1] + m[5] * v[2],
          m[6] * v[0] + m[7] * v[1] + m[8] * v[2]};
}

Triple linearOf(const Colour& colour) {
  return {decodeSrgb(colour[0]), decodeSrgb(colour[1]), decodeSrgb(colour[2])};
}

constexpr double degree = std::numbers::pi / 180.0;

// Returns the angle in degrees, 0..360; 0 without chroma.
double hueAngle(double a, double b) {
  if (a == 0.0 && b == 0.0) return 0.0;
  const double angle = std::atan2(b, a) / degree;
  return angle < 0.0 ? angle + 360.0 : angle;
}

double power7(double x) {
  const double cube = x * x * x;
  return cube * cube * x;
}

// Returns sqrt(C^7 / (C^7 + 25^7)).
double chromaShare(double chroma) {
  constexpr double limit = 6103515625.0;
  const double c7 = power7(chroma);
  return std::sqrt(c7 / (c7 + limit));
}

// Returns the way from the first hue to the second, -180..180; 0 if either colour has no chroma.
double hueDifference(double first, double second, double chromaProduct) {
  if (chromaProduct == 0.0) return 0.0;
  const double difference = second - first;
  if (difference > 180.0) return difference - 360.0;
  return difference < -180.0 ? difference + 360.0 : difference;
}

// Returns the hue halfway; the sum if either colour has no chroma.
double meanHue(double first, double second, double chromaProduct) {
  const double sum = first + second;
  if (chromaProduct == 0.0) return sum;
  if (std::abs(first - second) <= 180.0) return sum / 2.0;
  return (sum < 360.0 ? sum + 360.0 : sum - 360.0) / 2.0;
}

double square(double x) {
  return x * x;
}

}  // namespace

Lab toLab(const Colour& colour) {
  const Triple xyz = multiply(rgbToXyz, linearOf(colour));
  const double fx = labFunction(xyz[0] / white[0]);
  const double fy = labFunction(xyz[1] / white[1]);
  const double fz = labFunction(xyz[2] / white[2]);
  return {116.0 * fy - 16.0, 500.0 * (fx - fy), 200.0 * (fy - fz)};
}

Colour fromLab(const Lab& lab) {
  static const Matrix3x3 xyzToRgb = invert3x3(rgbToXyz).matrix;
  const double fy = (lab.lightness + 16.0) / 116.0;
  const Triple xyz{white[0] * inverseLabFunction(fy + lab.a / 500.0),
                   white[1] * inverseLabFunction(fy),
                   white[2] * inverseLabFunction(fy - lab.b / 200.0)};
  const Triple linear = multiply(xyzToRgb, xyz);
  return {encodeSrgb(linear[0]), encodeSrgb(linear[1]), encodeSrgb(linear[2])};
}

double ciede2000(const Lab& first, const Lab& second) {
  // CIEDE2000 stretches a near the neutral axis.
  const double meanChroma = (std::hypot(first.a, first.b) + std::hypot(second.a, second.b)) / 2.0;
  const double g = 0.5 * (1.0 - chromaShare(meanChroma));
  const double a1 = (1.0 + g) * first.a;
  const double a2 = (1.0 + g) * second.a;
  const double c1 = std::hypot(a1, first.b);
  const double c2 = std::hypot(a2, second.b);
  const double h1 = hueAngle(a1, first.b);
  const double h2 = hueAngle(a2, second.b);

  const double deltaL = second.lightness - first.lightness;
  const double deltaC = c2 - c1;
  const double deltaHue = hueDifference(h1, h2, c1 * c2);
  const double deltaH = 2.0 * std::sqrt(c1 * c2) * std::sin(deltaHue / 2.0 * degree);

  const double l = (first.lightness + second.lightness) / 2.0;
  const double c = (c1 + c2) / 2.0;
  const double h = meanHue(h1, h2, c1 * c2);
  const double t = 1.0 - 0.17 * std::cos((h - 30.0) * degree) + 0.24 * std::cos(2.0 * h * degree) +
                   0.32 * std::cos((3.0 * h + 6.0) * degree) -
                   0.20 * std::cos((4.0 * h - 63.0) * degree);
  const double fromMiddle = square(l - 50.0);
  const double weightL = 1.0 + 0.015 * fromMiddle / std::sqrt(20.0 + fromMiddle);
  const double weightC = 1.0 + 0.045 * c;
  const double weightH = 1.0 + 0.015 * c * t;

  const double rotation = 30.0 * std::exp(-square((h - 275.0) / 25.0));
  const double rotationTerm = -std::sin(2.0 * rotation * degree) * 2.0 * chromaShare(c);
  const double lightness = deltaL / weightL;
  const double chroma = deltaC / weightC;
  const double hue = deltaH / weightH;
  return std::sqrt(std::max(
      0.0, square(lightness) + square(chroma) + square(hue) + rotationTerm * chroma * hue));
}

bool differsAtLeast(const Lab& first, const Lab& second, double least) {
  // Chroma, hue and the rotation term together add nothing negative, because the rotation term
  // stays below 2; and lightness is divided by 1 + 0.015 * 50^2 / sqrt(20 + 50^2) at most.
  constexpr double mostWeightL = 1.75;
  if (std::abs(second.lightness - first.lightness) >= mostWeightL * least) return true;
  return ciede2000(first, second) >= least;
}

double relativeLuminance(const Colour& colour) {
  const Triple linear = linearOf(colour);
  return 0.2126 * linear[0] + 0.7152 * linear[1] + 0.0722 * linear[2];
}

double contrastRatio(double first, double second) {
  constexpr double flare = 0.05;
  return (std::max(first, second) + flare) / (std::min(first, second) + flare);
}

}  // namespace tintora
