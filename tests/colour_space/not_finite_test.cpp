// Whatever the matrix, only finite numbers reach the device.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "scene.h"

namespace tintora {
namespace {

using NotFinite = ColourSpaceTest;

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double noNumber = std::numeric_limits<double>::quiet_NaN();

void expectAllFinite() {
  for (std::size_t i = 0; i < colourSpaceView.objectCount; ++i) {
    for (const ColourVertex& vertex : colourSpaceView.objects.at(i).vertexBuffer->vertices) {
      ASSERT_TRUE(std::isfinite(vertex.x) && std::isfinite(vertex.y) && std::isfinite(vertex.z))
          << "object " << i;
    }
  }
}

// Every colour that a refresh writes is opaque.
void expectAllOpaque() {
  for (const SceneRole role :
       {SceneRole::SolidCube, SceneRole::GamutMesh, SceneRole::GamutOutline}) {
    for (const ColourVertex& vertex : verticesOf(role)) {
      ASSERT_EQ(vertex.colour >> 24U, 0xFFU);
    }
  }
}

Matrix3x3 filled(double value) {
  Matrix3x3 matrix;
  matrix.fill(value);
  return matrix;
}

TEST_F(NotFinite, NothingReachesTheDeviceFromExtremeMatrices) {
  const std::vector<double> values{0.0,    -0.0,     -1.0,      1e-320,  -1e-320, 1e16,
                                   -1e16,  1e38,     1e39,      1e300,   -1e300,  1e308,
                                   -1e308, infinity, -infinity, noNumber};
  for (const double value : values) {
    SCOPED_TRACE(value);
    show(filled(value));
    expectAllFinite();
    expectAllOpaque();
    for (std::size_t entry = 0; entry < 9; ++entry) {
      Matrix3x3 matrix = identity3x3;
      matrix[entry] = value;
      show(matrix);
      expectAllFinite();
      expectAllOpaque();
    }
  }
}

TEST_F(NotFinite, NothingReachesTheDeviceFromRandomExponents) {
  std::mt19937 random(20260);
  std::uniform_real_distribution<double> mantissa(-1.0, 1.0);
  std::uniform_int_distribution<int> exponent(-1070, 1023);
  for (int i = 0; i < 300; ++i) {
    Matrix3x3 matrix;
    for (double& entry : matrix) entry = std::ldexp(mantissa(random), exponent(random));
    show(matrix);
    expectAllFinite();
    expectAllOpaque();
  }
}

TEST_F(NotFinite, MatrixOfNotANumberLeavesEverythingInPlace) {
  show(Simulation{CvdType::Deutan, 0.6, SimulationAlgorithm::Yang2008, ""});
  const Vertices cube = verticesOf(SceneRole::SolidCube);
  const Vertices mesh = verticesOf(SceneRole::GamutMesh);
  const Vertices outline = verticesOf(SceneRole::GamutOutline);
  for (const double value : {noNumber, infinity, -infinity}) {
    show(filled(value));
    EXPECT_EQ(verticesOf(SceneRole::SolidCube), cube);
    EXPECT_EQ(verticesOf(SceneRole::GamutMesh), mesh);
    EXPECT_EQ(verticesOf(SceneRole::GamutOutline), outline);
  }
}

// Red and blue alone would still have a finite place.
TEST_F(NotFinite, OneRowOfNotANumberLeavesTheGamutInPlace) {
  const Vertices mesh = verticesOf(SceneRole::GamutMesh);
  const Vertices outline = verticesOf(SceneRole::GamutOutline);
  for (const double value : {noNumber, -infinity}) {
    for (std::size_t row = 0; row < 3; ++row) {
      Matrix3x3 matrix{0.9, 0.1, 0.0, 0.2, 0.7, 0.1, 0.0, 0.3, 0.7};
      for (std::size_t column = 0; column < 3; ++column) matrix[3 * row + column] = value;
      show(matrix);
      EXPECT_EQ(verticesOf(SceneRole::GamutMesh), mesh);
      EXPECT_EQ(verticesOf(SceneRole::GamutOutline), outline);
    }
  }
}

TEST_F(NotFinite, CubeCornerTooFarAwayStaysWhereItWas) {
  show(Matrix3x3{1e300, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 1.0});
  EXPECT_EQ(verticesOf(SceneRole::SolidCube).at(0).x, -1.0F);
  EXPECT_EQ(verticesOf(SceneRole::SolidCube).at(7).x, 1.0F);
}

TEST_F(NotFinite, NothingReachesTheDeviceFromExtremeSeverities) {
  for (const double severity : {-1e300, -100.0, -20.0, -4.0, infinity, -infinity, noNumber}) {
    SCOPED_TRACE(severity);
    for (std::uint32_t type = 0; type < 5; ++type) {
      modelContext.modelCvdType = static_cast<CvdType>(type);
      modelContext.modelSeverity = severity;
      refreshTransformViews();
      expectAllFinite();
    }
  }
}

}  // namespace
}  // namespace tintora
