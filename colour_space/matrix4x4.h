// 4x4 matrices in space: row vectors, left-handed, computed in double precision and kept as floats.
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

// a * b: first a, then b.
Matrix4x4 multiply(const Matrix4x4& a, const Matrix4x4& b);

// The inverse; none where the determinant is 0 or no number.
std::optional<Matrix4x4> inverse(const Matrix4x4& m);

Matrix4x4 scaling(float factor);
Matrix4x4 translation(const Vector3& by);

// Rotations, clockwise as seen looking along the axis towards the origin. Angles in radians; the
// axis may have any length but 0.
Matrix4x4 rotationX(float angle);
Matrix4x4 rotationY(float angle);
Matrix4x4 rotationZ(float angle);
Matrix4x4 rotationAbout(const Vector3& axis, float angle);

// From the world to what an eye sees that looks at a point: x to the right, y up, z away from it.
Matrix4x4 lookAt(const Vector3& eye, const Vector3& at, const Vector3& up);

// The vertical field of view in radians, the aspect as width / height, and the distances between
// which depth runs from 0 to 1.
Matrix4x4 perspective(float fieldOfView, float aspect, float nearPlane, float farPlane);

// v * m
Vector4 transformed(const Vector4& v, const Matrix4x4& m);

// The point (x, y, z, 1) * m, divided by its w.
Vector3 transformedPoint(const Vector3& point, const Matrix4x4& m);

}  // namespace tintora
