// Compares the matrix operations of the views with those of D3DX over many random inputs.
#include <windows.h>
#include <d3dx9.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <random>

#include "colour_space/matrix4x4.h"

namespace tintora::windows_test {
namespace {

constexpr int inputCount = 2000;

class SpaceMatrices : public testing::Test {
 protected:
  float random(float least, float most) {
    return std::uniform_real_distribution<float>(least, most)(engine_);
  }
  Vector3 randomVector() { return {random(-3, 3), random(-3, 3), random(-3, 3)}; }
  // Returns a random vector that is long enough to have a direction.
  Vector3 randomAxis() {
    Vector3 axis = randomVector();
    while (axis.x * axis.x + axis.y * axis.y + axis.z * axis.z < 0.01F) axis = randomVector();
    return axis;
  }
  float randomAngle() { return random(-7, 7); }
  Matrix4x4 randomMatrix() {
    Matrix4x4 matrix{};
    for (auto& row : matrix) {
      for (float& value : row) value = random(-3, 3);
    }
    return matrix;
  }

 private:
  std::mt19937 engine_{20};
};

D3DXVECTOR3 native(const Vector3& v) {
  return {v.x, v.y, v.z};
}

D3DXMATRIX native(const Matrix4x4& m) {
  D3DXMATRIX matrix;
  for (std::size_t row = 0; row < 4; ++row) {
    for (std::size_t column = 0; column < 4; ++column) matrix.m[row][column] = m[row][column];
  }
  return matrix;
}

// Expects equal entries within a millionth of the largest one.
void expectAlike(const Matrix4x4& actual, const D3DXMATRIX& expected, double tolerance = 1e-6) {
  double magnitude = 1.0;
  for (const auto& row : expected.m) {
    for (const float value : row) magnitude = std::max(magnitude, std::abs(double{value}));
  }
  for (std::size_t row = 0; row < 4; ++row) {
    for (std::size_t column = 0; column < 4; ++column) {
      ASSERT_NEAR(actual[row][column], expected.m[row][column], tolerance * magnitude)
          << "row " << row << ", column " << column;
    }
  }
}

TEST_F(SpaceMatrices, Multiply) {
  for (int i = 0; i < inputCount; ++i) {
    const Matrix4x4 a = randomMatrix();
    const Matrix4x4 b = randomMatrix();
    const D3DXMATRIX first = native(a);
    const D3DXMATRIX second = native(b);
    D3DXMATRIX product;
    D3DXMatrixMultiply(&product, &first, &second);
    expectAlike(multiply(a, b), product);
  }
}

// The error of an inverse grows with how much the inverse magnifies.
TEST_F(SpaceMatrices, Invert) {
  for (int i = 0; i < inputCount; ++i) {
    const Matrix4x4 m = randomMatrix();
    const D3DXMATRIX matrix = native(m);
    D3DXMATRIX expected;
    float determinant = 0.0F;
    ASSERT_NE(D3DXMatrixInverse(&expected, &determinant, &matrix), nullptr);
    if (std::abs(determinant) < 20.0F) continue;
    const std::optional<Matrix4x4> actual = inverse(m);
    ASSERT_TRUE(actual.has_value());
    expectAlike(*actual, expected);
  }
}

TEST_F(SpaceMatrices, InvertTheCamera) {
  for (int i = 0; i < inputCount; ++i) {
    const Matrix4x4 m =
        multiply(scaling(random(0.5F, 1.0F)), multiply(rotationAbout(randomAxis(), randomAngle()),
                                                       translation({0.0F, 0.0F, random(4, 6)})));
    const D3DXMATRIX matrix = native(m);
    D3DXMATRIX expected;
    D3DXMatrixInverse(&expected, nullptr, &matrix);
    const std::optional<Matrix4x4> actual = inverse(m);
    ASSERT_TRUE(actual.has_value());
    expectAlike(*actual, expected);
  }
}

TEST_F(SpaceMatrices, RefuseToInvertWhatHasNoInverse) {
  const Matrix4x4 flat = scaling(0.0F);
  const D3DXMATRIX matrix = native(flat);
  D3DXMATRIX result;
  EXPECT_EQ(D3DXMatrixInverse(&result, nullptr, &matrix), nullptr);
  EXPECT_FALSE(inverse(flat).has_value());
}

TEST_F(SpaceMatrices, ScaleAndMove) {
  for (int i = 0; i < inputCount; ++i) {
    const float factor = random(-3, 3);
    const Vector3 by = randomVector();
    D3DXMATRIX expected;
    D3DXMatrixScaling(&expected, factor, factor, factor);
    expectAlike(scaling(factor), expected);
    D3DXMatrixTranslation(&expected, by.x, by.y, by.z);
    expectAlike(translation(by), expected);
  }
}

TEST_F(SpaceMatrices, Rotate) {
  for (int i = 0; i < inputCount; ++i) {
    const float angle = randomAngle();
    D3DXMATRIX expected;
    D3DXMatrixRotationX(&expected, angle);
    expectAlike(rotationX(angle), expected);
    D3DXMatrixRotationY(&expected, angle);
    expectAlike(rotationY(angle), expected);
    D3DXMatrixRotationZ(&expected, angle);
    expectAlike(rotationZ(angle), expected);
    const Vector3 axis = randomAxis();
    const D3DXVECTOR3 direction = native(axis);
    D3DXMatrixRotationAxis(&expected, &direction, angle);
    expectAlike(rotationAbout(axis, angle), expected);
  }
}

// D3DX computes in single precision and loses digits if the eye is close to its target.
TEST_F(SpaceMatrices, LookAtAPoint) {
  const D3DXVECTOR3 home{0.0F, 0.0F, -5.5F};
  const D3DXVECTOR3 origin{0.0F, 0.0F, 0.0F};
  const D3DXVECTOR3 upwards{0.0F, 1.0F, 0.0F};
  D3DXMATRIX expected;
  D3DXMatrixLookAtLH(&expected, &home, &origin, &upwards);
  expectAlike(lookAt({0.0F, 0.0F, -5.5F}, {}, {0.0F, 1.0F, 0.0F}), expected, 0.0);
  for (int i = 0; i < inputCount; ++i) {
    const Vector3 eye{random(-3, 3), random(-3, 3), random(-9, -5)};
    const Vector3 at{random(-1, 1), random(-1, 1), random(-1, 1)};
    const Vector3 up{random(-0.2F, 0.2F), random(0.8F, 1.2F), random(-0.2F, 0.2F)};
    const D3DXVECTOR3 place = native(eye);
    const D3DXVECTOR3 goal = native(at);
    const D3DXVECTOR3 above = native(up);
    D3DXMatrixLookAtLH(&expected, &place, &goal, &above);
    expectAlike(lookAt(eye, at, up), expected);
  }
}

TEST_F(SpaceMatrices, ProjectInPerspective) {
  for (int i = 0; i < inputCount; ++i) {
    const float fieldOfView = random(0.1F, 2.5F);
    const float aspect = random(0.1F, 10.0F);
    const float nearPlane = random(0.1F, 2.0F);
    const float farPlane = random(10.0F, 200.0F);
    D3DXMATRIX expected;
    D3DXMatrixPerspectiveFovLH(&expected, fieldOfView, aspect, nearPlane, farPlane);
    expectAlike(perspective(fieldOfView, aspect, nearPlane, farPlane), expected);
  }
}

TEST_F(SpaceMatrices, TransformVectors) {
  for (int i = 0; i < inputCount; ++i) {
    const Matrix4x4 m = randomMatrix();
    const Vector4 v{random(-3, 3), random(-3, 3), random(-3, 3), random(-1, 1)};
    const D3DXMATRIX matrix = native(m);
    const D3DXVECTOR4 vector{v[0], v[1], v[2], v[3]};
    D3DXVECTOR4 expected;
    D3DXVec4Transform(&expected, &vector, &matrix);
    const Vector4 actual = transformed(v, m);
    constexpr double tolerance = 1e-6 * 30;  // the sums can reach 3 * 3 * 3 + 3
    ASSERT_NEAR(actual[0], expected.x, tolerance);
    ASSERT_NEAR(actual[1], expected.y, tolerance);
    ASSERT_NEAR(actual[2], expected.z, tolerance);
    ASSERT_NEAR(actual[3], expected.w, tolerance);
  }
}

TEST_F(SpaceMatrices, TransformPoints) {
  for (int i = 0; i < inputCount; ++i) {
    // The matrices of a camera and a projection, as used to place the labels.
    const Matrix4x4 m =
        multiply(multiply(rotationAbout(randomAxis(), randomAngle()), translation({0, 0, 9})),
                 perspective(0.5F, random(0.5F, 2.0F), 1.0F, 100.0F));
    const Vector3 point = randomVector();
    const D3DXMATRIX matrix = native(m);
    const D3DXVECTOR3 vector = native(point);
    D3DXVECTOR3 expected;
    D3DXVec3TransformCoord(&expected, &vector, &matrix);
    const Vector3 actual = transformedPoint(point, m);
    const double magnitude =
        std::max({1.0, std::abs(double{expected.x}), std::abs(double{expected.y})});
    ASSERT_NEAR(actual.x, expected.x, 1e-6 * magnitude);
    ASSERT_NEAR(actual.y, expected.y, 1e-6 * magnitude);
    ASSERT_NEAR(actual.z, expected.z, 1e-6 * magnitude);
  }
}

}  // namespace
}  // namespace tintora::windows_test
