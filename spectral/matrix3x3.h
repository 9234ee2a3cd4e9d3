// 3x3 matrices in double precision.
#pragma once

#include <array>

namespace tintora {

// Stored row by row; acts on column vectors: out = M * (r, g, b).
using Matrix3x3 = std::array<double, 9>;

inline constexpr Matrix3x3 identity3x3{1.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 1.0};

struct Inverse3x3 {
  Matrix3x3 matrix{};  // all 0 when there is no inverse
  bool succeeded = false;
};

// Returns a * b.
Matrix3x3 multiply3x3(const Matrix3x3& a, const Matrix3x3& b);

// Returns the inverse by cofactors. It fails only if the determinant is computed as exactly 0.0.
Inverse3x3 invert3x3(const Matrix3x3& m);

}  // namespace tintora
