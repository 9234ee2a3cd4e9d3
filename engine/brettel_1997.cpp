#include "engine/brettel_1997.h"

#include <cstddef>

namespace tintora {

namespace {

using Vector = std::array<double, 3>;

// Viénot, Brettel & Mollon 1999, Color Research & Application 24, 243-252: the tristimulus values
// of the ITU-R BT.709 primaries, with the correction of Judd and Vos. Rows X, Y, Z; linear R, G, B.
constexpr Matrix3x3 rgbToXyz{
    0.409568,  0.355041, 0.179167,   //
    0.213389,  0.706743, 0.0798680,  //
    0.0186297, 0.114620, 0.912367,
};

// Smith & Pokorny 1975, Vision Research 15, 161-171: cone responses from these X, Y, Z. Rows L, M,
// S.
constexpr Matrix3x3 xyzToLms{
    0.15514,  0.54312, -0.03286,  //
    -0.15514, 0.45684, 0.03286,   //
    0.0,      0.0,     0.01608,
};

// The colour-matching functions with the correction of Judd and Vos, at the wavelengths that look
// the same to a dichromat and to a viewer with normal colour vision.
constexpr Vector at475nm{0.13287, 0.11284, 0.94220};
constexpr Vector at485nm{0.05699, 0.16987, 0.58640};
constexpr Vector at575nm{0.84394, 0.91558, 0.00197};
constexpr Vector at660nm{0.16161, 0.06100, 0.00001};

struct Dichromat {
  std::size_t missingCone;  // L, M, S
  std::array<Vector, 2> anchors;
};

Dichromat dichromatOf(CvdType type) {
  switch (type) {
    case CvdType::Protan:
      return {0, {at475nm, at575nm}};
    case CvdType::Deutan:
      return {1, {at475nm, at575nm}};
    case CvdType::Tritan:
      break;
  }
  return {2, {at485nm, at660nm}};
}

Vector transformed(const Matrix3x3& m, const Vector& v) {
  return {m[0] * v[0] + m[1] * v[1] + m[2] * v[2], m[3] * v[0] + m[4] * v[1] + m[5] * v[2],
          m[6] * v[0] + m[7] * v[1] + m[8] * v[2]};
}

Vector crossProduct(const Vector& a, const Vector& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

double dotProduct(const Vector& a, const Vector& b) {
  return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

// Replaces the missing cone's response by that of the plane through black with this normal, and
// keeps the other two.
Matrix3x3 projectionOntoPlane(const Vector& normal, std::size_t missingCone) {
  Matrix3x3 projection = identity3x3;
  for (std::size_t cone = 0; cone < 3; ++cone) {
    projection[3 * missingCone + cone] =
        cone == missingCone ? 0.0 : -normal[cone] / normal[missingCone];
  }
  return projection;
}

Matrix3x3 interpolatedFromIdentity(const Matrix3x3& full, double severity) {
  Matrix3x3 matrix;
  for (std::size_t i = 0; i < matrix.size(); ++i) {
    matrix[i] = identity3x3[i] + severity * (full[i] - identity3x3[i]);
  }
  return matrix;
}

}  // namespace

HalfPlanes simulateOnHalfPlanes(CvdType type, double severity) {
  const auto [missingCone, anchors] = dichromatOf(type);
  const Matrix3x3 rgbToLms = multiply3x3(xyzToLms, rgbToXyz);
  const Matrix3x3 lmsToRgb = invert3x3(rgbToLms).matrix;
  const Vector white = transformed(rgbToLms, {1.0, 1.0, 1.0});

  HalfPlanes halfPlanes{};
  for (std::size_t side = 0; side < 2; ++side) {
    const Vector normal = crossProduct(white, transformed(xyzToLms, anchors[side]));
    const Matrix3x3 projection = projectionOntoPlane(normal, missingCone);
    const Matrix3x3 full = multiply3x3(multiply3x3(lmsToRgb, projection), rgbToLms);
    halfPlanes.projections[side] = interpolatedFromIdentity(full, severity);
  }

  // The plane that divides the colours holds the neutral axis and the missing cone's.
  Vector missingAxis{};
  missingAxis[missingCone] = 1.0;
  const Vector divisionInLms = crossProduct(white, missingAxis);
  const double towardsFirst = dotProduct(divisionInLms, transformed(xyzToLms, anchors[0]));
  for (std::size_t channel = 0; channel < 3; ++channel) {
    const Vector lmsOfChannel{rgbToLms[channel], rgbToLms[3 + channel], rgbToLms[6 + channel]};
    const double distance = dotProduct(divisionInLms, lmsOfChannel);
    halfPlanes.division[channel] = towardsFirst > 0.0 ? distance : -distance;
  }
  return halfPlanes;
}

}  // namespace tintora
