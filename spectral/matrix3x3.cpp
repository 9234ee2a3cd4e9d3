#include "spectral/matrix3x3.h"

#include <cstddef>

namespace tintora {

Matrix3x3 multiply3x3(const Matrix3x3& a, const Matrix3x3& b) {
  Matrix3x3 product;
  for (std::size_t r = 0; r < 3; ++r) {
    for (std::size_t c = 0; c < 3; ++c) {
      product[3 * r + c] = a[3 * r] * b[c] + a[3 * r + 1] * b[3 + c] + a[3 * r + 2] * b[6 + c];
    }
  }
  return product;
}

Inverse3x3 invert3x3(const Matrix3x3& m) {
  const auto [a, b, c, d, e, f, g, h, i] = m;
  const double k1 = e * i - h * f;
  const double k2 = g * f - i * d;
  const double k3 = h * d - g * e;
  const double determinant = a * k1 + b * k2 + c * k3;
  if (determinant == 0.0) return {};

  Matrix3x3 inverse{
      k1, h * c - b * i, b * f - e * c,  //
      k2, a * i - g * c, d * c - a * f,  //
      k3, g * b - a * h, a * e - d * b,
  };
  for (double& entry : inverse) entry /= determinant;
  return {inverse, true};
}

}  // namespace tintora
