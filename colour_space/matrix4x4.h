// 4x4 transforms for row vectors in left-handed space, computed in double precision and kept as
// floats.
#pragma once

#include <array>
#include <optional>

#include "platform/graphics.h"

namespace tintora {

using platform::identity4x4;
using platform::Matrix4x4;

struct Vector3 {
  float x = 0.0F;
  float y = 0.0F;
  float z = 0.0F;
};

using Vector4 = std::array<float, 4>;

// Returns a * b, which applies first a, then b.
Matrix4x4 multiply(const Matrix4x4& a, const Matrix4x4& b);

// Returns the inverse, or nothing if the determinant is 0 or not finite.
std::optional<Matrix4x4> inverse(const Matrix4x4& m);

Matrix4x4 scaling(float factor);
Matrix4x4 translation(const Vector3& by);

// Return rotations, clockwise if you look along the axis towards the origin. Angles are in radians;
// the axis may have any length but 0.
Matrix4x4 rotationX(float angle);
Matrix4x4 rotationY(float angle);
Matrix4x4 rotationZ(float angle);
Matrix4x4 rotationAbout(const Vector3& axis, float angle);

// Returns the view of an eye that looks at a point: x to its right, y up, z away from it.
Matrix4x4 lookAt(const Vector3& eye, const Vector3& at, const Vector3& up);

// Returns a perspective projection. The vertical field of view is in radians, the aspect is width /
// height, and depth runs from 0 at the near plane to 1 at the far plane.
Matrix4x4 perspective(float fieldOfView, float aspect, float nearPlane, float farPlane);

// Returns v * m.
Vector4 transformed(const Vector4& v, const Matrix4x4& m);

// Returns (x, y, z, 1) * m, divided by its w.
Vector3 transformedPoint(const Vector3& point, const Matrix4x4& m);

}  // namespace tintora
