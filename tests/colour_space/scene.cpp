#include "scene.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include "engine/cvd_transforms.h"

namespace tintora {

namespace {

void expectCoordinate(float actual, long double expected) {
  const long double tolerance = 1e-6L * std::max(1.0L, std::abs(expected));
  EXPECT_NEAR(static_cast<double>(actual), static_cast<double>(expected),
              static_cast<double>(tolerance));
}

// If the exact value is a whole number, the last bit of the computation decides between that number
// and the one below.
void expectComponent(std::uint32_t actual, long double expected) {
  const long double nearest = std::round(expected);
  if (std::abs(expected - nearest) < 1e-6L && nearest > 0.0L) {
    EXPECT_LE(actual, static_cast<std::uint32_t>(nearest));
    EXPECT_GE(actual + 1, static_cast<std::uint32_t>(nearest));
  } else {
    EXPECT_EQ(actual, static_cast<std::uint32_t>(expected));
  }
}

void forget() {
  colourSpaceView = ColourSpaceView();
  modelContext = ModelContext();
  platform::resetNullDesktop();
}

}  // namespace

std::vector<Simulation> allSimulations() {
  constexpr std::array types{CvdType::Protan, CvdType::Deutan, CvdType::Tritan};
  constexpr std::array severities{0.0, 0.6, 1.0};
  std::vector<Simulation> all;
  for (std::uint32_t algorithm = 0; algorithm < 5; ++algorithm) {
    for (const CvdType type : types) {
      for (const double severity : severities) {
        all.push_back({type, severity, static_cast<SimulationAlgorithm>(algorithm),
                       "type " + std::to_string(static_cast<int>(type)) + ", severity " +
                           std::to_string(severity) + ", algorithm " + std::to_string(algorithm)});
      }
    }
  }
  return all;
}

void show(const Simulation& simulation) {
  computeSimulationMatrix(simulation.type, simulation.severity, simulation.algorithm, false, false);
  refreshTransformViews();
}

void show(const Matrix3x3& matrix) {
  modelContext.uninvertedMatrix = matrix;
  refreshTransformViews();
}

const SceneObject& object(SceneRole role) {
  return colourSpaceView.objects.at(static_cast<std::size_t>(role));
}

const Vertices& verticesOf(SceneRole role) {
  return object(role).vertexBuffer->vertices;
}

const std::vector<std::uint16_t>& indicesOf(SceneRole role) {
  return object(role).indexBuffer->indices;
}

void expectVertex(const ColourVertex& actual, const ExpectedVertex& expected) {
  expectCoordinate(actual.x, expected.x);
  expectCoordinate(actual.y, expected.y);
  expectCoordinate(actual.z, expected.z);
  EXPECT_EQ(actual.colour >> 24U, 0xFFU);
  expectComponent(actual.colour >> 16U & 0xFFU, expected.red);
  expectComponent(actual.colour >> 8U & 0xFFU, expected.green);
  expectComponent(actual.colour & 0xFFU, expected.blue);
}

void expectVertices(const Vertices& actual, const ExpectedVertices& expected) {
  ASSERT_EQ(actual.size(), expected.size());
  for (std::size_t i = 0; i < actual.size(); ++i) {
    SCOPED_TRACE("vertex " + std::to_string(i));
    expectVertex(actual[i], expected[i]);
    if (::testing::Test::HasFailure()) return;
  }
}

void expectConstantColours(const Vertices& actual, const ExpectedVertices& expected) {
  ASSERT_EQ(actual.size(), expected.size());
  for (std::size_t i = 0; i < actual.size(); ++i) {
    const auto& [x, y, z, red, green, blue] = expected[i];
    const auto colour =
        static_cast<PackedColour>(((255.0L * 256.0L + red) * 256.0L + green) * 256.0L + blue);
    ASSERT_EQ(actual[i].colour, colour) << "vertex " << i;
  }
}

ColourSpaceTest::ColourSpaceTest() {
  forget();
  initialiseModelContext(modelContext);
  createDevice(&window, 400, 400, true);
}

}  // namespace tintora
