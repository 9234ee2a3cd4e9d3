// 4x4 matrices against the definitions of what they do to points.
#include "colour_space/matrix4x4.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <numbers>

namespace tintora {
namespace {

constexpr float quarterTurn = static_cast<float>(std::numbers::pi / 2.0);

void expectPoint(const Vector3& actual, const Vector3& expected, float tolerance = 1e-6F) {
  EXPECT_NEAR(actual.x, expected.x, tolerance);
  EXPECT_NEAR(actual.y, expected.y, tolerance);
  EXPECT_NEAR(actual.z, expected.z, tolerance);
}

void expectNear(const Matrix4x4& actual, const Matrix4x4& expected, float tolerance) {
  for (std::size_t row = 0; row < 4; ++row) {
    for (std::size_t column = 0; column < 4; ++column) {
      EXPECT_NEAR(actual[row][column], expected[row][column], tolerance)
          << "row " << row << ", column " << column;
    }
  }
}

TEST(Matrix4x4, ProductAppliesTheFirstMatrixFirst) {
  const Matrix4x4 moveThenGrow = multiply(translation({1.0F, 2.0F, 3.0F}), scaling(2.0F));
  expectPoint(transformedPoint({1.0F, 1.0F, 1.0F}, moveThenGrow), {4.0F, 6.0F, 8.0F});
  const Matrix4x4 growThenMove = multiply(scaling(2.0F), translation({1.0F, 2.0F, 3.0F}));
  expectPoint(transformedPoint({1.0F, 1.0F, 1.0F}, growThenMove), {3.0F, 4.0F, 5.0F});
}

TEST(Matrix4x4, ProductHasEveryEntry) {
  Matrix4x4 a{};
  Matrix4x4 b{};
  for (std::size_t row = 0; row < 4; ++row) {
    for (std::size_t column = 0; column < 4; ++column) {
      a[row][column] = static_cast<float>(4 * row + column);
      b[row][column] = static_cast<float>(row) - 2.0F * static_cast<float>(column);
    }
  }
  // Sums over i of (4 r + i)(i - 2 c) = 24 r - 32 r c + 14 - 12 c.
  const Matrix4x4 product = multiply(a, b);
  for (int row = 0; row < 4; ++row) {
    for (int column = 0; column < 4; ++column) {
      EXPECT_EQ(product[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)],
                static_cast<float>(24 * row - 32 * row * column + 14 - 12 * column));
    }
  }
}

TEST(Matrix4x4, RotationsTakeAxesToAxes) {
  expectPoint(transformedPoint({0.0F, 1.0F, 0.0F}, rotationX(quarterTurn)), {0.0F, 0.0F, 1.0F});
  expectPoint(transformedPoint({0.0F, 0.0F, 1.0F}, rotationX(quarterTurn)), {0.0F, -1.0F, 0.0F});
  expectPoint(transformedPoint({0.0F, 0.0F, 1.0F}, rotationY(quarterTurn)), {1.0F, 0.0F, 0.0F});
  expectPoint(transformedPoint({1.0F, 0.0F, 0.0F}, rotationY(quarterTurn)), {0.0F, 0.0F, -1.0F});
  expectPoint(transformedPoint({1.0F, 0.0F, 0.0F}, rotationZ(quarterTurn)), {0.0F, 1.0F, 0.0F});
  expectPoint(transformedPoint({0.0F, 1.0F, 0.0F}, rotationZ(quarterTurn)), {-1.0F, 0.0F, 0.0F});
}

// A third of a turn about the diagonal takes each axis to the next.
TEST(Matrix4x4, RotationAboutTheDiagonalExchangesTheAxes) {
  for (const float length : {0.01F, 1.0F, 300.0F}) {
    const Matrix4x4 third =
        rotationAbout({length, length, length}, static_cast<float>(2.0 * std::numbers::pi / 3.0));
    expectPoint(transformedPoint({1.0F, 0.0F, 0.0F}, third), {0.0F, 1.0F, 0.0F});
    expectPoint(transformedPoint({0.0F, 1.0F, 0.0F}, third), {0.0F, 0.0F, 1.0F});
    expectPoint(transformedPoint({0.0F, 0.0F, 1.0F}, third), {1.0F, 0.0F, 0.0F});
  }
}

TEST(Matrix4x4, RotationAboutAnAxisKeepsTheAxis) {
  const Vector3 axis{0.3F, -0.7F, 0.2F};
  for (const float angle : {-3.0F, -0.1F, 0.0F, 0.5F, 2.0F}) {
    expectPoint(transformedPoint(axis, rotationAbout(axis, angle)), axis);
  }
}

TEST(Matrix4x4, RotationByZeroIsTheIdentity) {
  EXPECT_EQ(rotationAbout({0.0F, 1.375F, 0.0F}, 0.0F), identity4x4);
}

TEST(Matrix4x4, InverseUndoes) {
  const Matrix4x4 m = multiply(multiply(scaling(0.7F), rotationAbout({1.0F, 2.0F, 3.0F}, 0.8F)),
                               translation({4.0F, -5.0F, 6.0F}));
  const auto undone = inverse(m);
  ASSERT_TRUE(undone.has_value());
  expectNear(multiply(m, *undone), identity4x4, 1e-5F);
  expectNear(multiply(*undone, m), identity4x4, 1e-5F);
}

TEST(Matrix4x4, InverseOfAProjectionUndoesIt) {
  const Matrix4x4 m = perspective(0.5F, 1.5F, 1.0F, 100.0F);
  const auto undone = inverse(m);
  ASSERT_TRUE(undone.has_value());
  expectNear(multiply(m, *undone), identity4x4, 1e-5F);
}

TEST(Matrix4x4, SingularMatrixHasNoInverse) {
  EXPECT_FALSE(inverse(Matrix4x4{}).has_value());
  EXPECT_FALSE(inverse(scaling(0.0F)).has_value());
  EXPECT_FALSE(inverse(scaling(std::numeric_limits<float>::quiet_NaN())).has_value());
}

TEST(Matrix4x4, LookAtPutsTheEyeInTheOriginAndItsAimAhead) {
  const Vector3 eye{1.0F, 2.0F, -3.0F};
  const Vector3 at{4.0F, 2.0F, 1.0F};
  const Matrix4x4 view = lookAt(eye, at, {0.0F, 1.0F, 0.0F});
  expectPoint(transformedPoint(eye, view), {0.0F, 0.0F, 0.0F});
  expectPoint(transformedPoint(at, view), {0.0F, 0.0F, 5.0F});
  expectPoint(transformedPoint({1.0F, 3.0F, -3.0F}, view), {0.0F, 1.0F, 0.0F});
  // To the quarterTurn if you look along (3, 0, 4) with y upwards.
  expectPoint(transformedPoint({1.8F, 2.0F, -3.6F}, view), {1.0F, 0.0F, 0.0F});
}

TEST(Matrix4x4, PerspectiveTakesTheFrustumToItsBounds) {
  const auto fieldOfView = static_cast<float>(std::numbers::pi / 3.0);
  const Matrix4x4 projection = perspective(fieldOfView, 2.0F, 1.0F, 100.0F);
  const float up = std::tan(fieldOfView / 2.0F);
  expectPoint(transformedPoint({2.0F * up, up, 1.0F}, projection), {1.0F, 1.0F, 0.0F});
  expectPoint(transformedPoint({-200.0F * up, -100.0F * up, 100.0F}, projection),
              {-1.0F, -1.0F, 1.0F});
}

TEST(Matrix4x4, DirectionsAreNotMoved) {
  const Vector4 moved = transformed({1.0F, 2.0F, 3.0F, 0.0F}, translation({7.0F, 8.0F, 9.0F}));
  EXPECT_EQ(moved, (Vector4{1.0F, 2.0F, 3.0F, 0.0F}));
}

}  // namespace
}  // namespace tintora
