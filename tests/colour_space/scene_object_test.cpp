// The world matrix of an object, and the layout of its vertices.
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>

#include "scene.h"

namespace tintora {
namespace {

using Point = std::array<double, 3>;

// About x, then y, then z, then moved.
Point placed(const SceneObject& object, Point p) {
  const auto turn = [&p](std::size_t from, std::size_t to, double angle) {
    const double a = p[from];
    const double b = p[to];
    p[from] = a * std::cos(angle) - b * std::sin(angle);
    p[to] = a * std::sin(angle) + b * std::cos(angle);
  };
  turn(1, 2, object.rotation.x);
  turn(2, 0, object.rotation.y);
  turn(0, 1, object.rotation.z);
  return {p[0] + object.translation.x, p[1] + object.translation.y, p[2] + object.translation.z};
}

TEST(ColourVertex, IsThreeFloatsAndAPackedColourIn16Bytes) {
  EXPECT_EQ(sizeof(ColourVertex), 16U);
  EXPECT_EQ(offsetof(ColourVertex, y), 4U);
  EXPECT_EQ(offsetof(ColourVertex, z), 8U);
  EXPECT_EQ(offsetof(ColourVertex, colour), 12U);
}

TEST(SceneObject, HoldsTwoThousandVertices) {
  EXPECT_EQ(SceneObject().vertices.size(), 2000U);
}

TEST(WorldMatrix, RotatesAboutXThenYThenZThenMoves) {
  SceneObject object;
  object.translation = {0.5F, -2.0F, 3.0F};
  object.rotation = {0.4F, -0.9F, 1.3F};
  buildWorldMatrix(object);
  for (const Point& point :
       {Point{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}, {1.0, 2.0, 3.0}}) {
    const Point expected = placed(object, point);
    const Vector3 actual = transformedPoint(
        {static_cast<float>(point[0]), static_cast<float>(point[1]), static_cast<float>(point[2])},
        object.world);
    EXPECT_NEAR(actual.x, expected[0], 1e-6);
    EXPECT_NEAR(actual.y, expected[1], 1e-6);
    EXPECT_NEAR(actual.z, expected[2], 1e-6);
  }
}

TEST(WorldMatrix, WithoutRotationOnlyMoves) {
  SceneObject object;
  object.translation = {0.5F, -2.0F, 3.0F};
  buildWorldMatrix(object);
  Matrix4x4 expected = identity4x4;
  expected[3] = {0.5F, -2.0F, 3.0F, 1.0F};
  EXPECT_EQ(object.world, expected);
}

TEST(WorldMatrix, OneAngleAloneRotates) {
  for (const auto angle : {&Vector3::x, &Vector3::y, &Vector3::z}) {
    SceneObject object;
    object.rotation.*angle = 0.25F;
    buildWorldMatrix(object);
    EXPECT_NE(object.world, identity4x4);
  }
}

TEST(WorldMatrix, AngleThatIsNotANumberCountsAsARotation) {
  SceneObject object;
  object.rotation.y = std::numeric_limits<float>::quiet_NaN();
  buildWorldMatrix(object);
  EXPECT_TRUE(std::isnan(object.world[0][0]));
}

}  // namespace
}  // namespace tintora
