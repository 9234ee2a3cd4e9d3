#include "engine/srgb.h"

#include <cmath>

namespace tintora {

namespace {

constexpr double slope = 12.92;
constexpr double offset = 0.055;
constexpr double exponent = 2.4;
constexpr double encodedLimit = 0.04045;
constexpr double linearLimit = 0.0031308;

}  // namespace

double decodeSrgb(double encoded) {
  if (encoded <= encodedLimit) return encoded / slope;
  return std::pow((encoded + offset) / (1.0 + offset), exponent);
}

double encodeSrgb(double linear) {
  if (linear <= linearLimit) return linear * slope;
  return (1.0 + offset) * std::pow(linear, 1.0 / exponent) - offset;
}

}  // namespace tintora
