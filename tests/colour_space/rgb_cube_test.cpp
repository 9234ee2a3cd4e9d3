// The RGB cube: its corners, faces and edges, and where a transform takes them.
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <set>
#include <string>

#include "engine/cvd_transforms.h"
#include "scene.h"

namespace tintora {
namespace {

using platform::BufferUse;
using platform::PrimitiveKind;
using RgbCube = ColourSpaceTest;

struct Corner {
  int x;
  int y;
  int z;
  int red;
  int green;
  int blue;
};
constexpr std::array<Corner, 8> corners{{
    {-1, -1, -1, 255, 0, 0},
    {-1, 1, -1, 255, 255, 0},
    {1, 1, -1, 0, 255, 0},
    {1, -1, -1, 0, 0, 0},
    {-1, -1, 1, 255, 0, 255},
    {-1, 1, 1, 255, 255, 255},
    {1, 1, 1, 0, 255, 255},
    {1, -1, 1, 0, 0, 255},
}};

ExpectedVertices untransformedCorners() {
  ExpectedVertices expected;
  for (const auto& [x, y, z, red, green, blue] : corners) {
    expected.push_back({static_cast<long double>(x), static_cast<long double>(y),
                        static_cast<long double>(z), static_cast<long double>(red),
                        static_cast<long double>(green), static_cast<long double>(blue)});
  }
  return expected;
}

// In units of full brightness: -1 + 2 c along y and z, and the mirror image along x.
ExpectedVertices transformedCorners(const Matrix3x3& m) {
  ExpectedVertices expected;
  for (const Corner& corner : corners) {
    const std::array<long double, 3> unit{corner.red / 255.0L, corner.green / 255.0L,
                                          corner.blue / 255.0L};
    std::array<long double, 3> image{};
    for (std::size_t row = 0; row < 3; ++row) {
      for (std::size_t column = 0; column < 3; ++column) {
        image[row] += static_cast<long double>(m[3 * row + column]) * unit[column];
      }
    }
    const auto shown = [](long double c) { return 255.0L * std::clamp(c, 0.0L, 1.0L); };
    expected.push_back({1.0L - 2.0L * image[0], 2.0L * image[1] - 1.0L, 2.0L * image[2] - 1.0L,
                        shown(image[0]), shown(image[1]), shown(image[2])});
  }
  return expected;
}

TEST_F(RgbCube, HasCornersOfTheirOwnColours) {
  for (const SceneRole role : {SceneRole::SolidCube, SceneRole::WireFrame}) {
    expectVertices(verticesOf(role), untransformedCorners());
    expectConstantColours(verticesOf(role), untransformedCorners());
  }
}

TEST_F(RgbCube, CornersStandWhereTheirComponentsPutThem) {
  for (const ColourVertex& corner : verticesOf(SceneRole::WireFrame)) {
    const auto component = [](float place) { return place > 0.0F ? 0xFFU : 0U; };
    EXPECT_EQ(corner.colour >> 16U & 0xFFU, component(-corner.x));
    EXPECT_EQ(corner.colour >> 8U & 0xFFU, component(corner.y));
    EXPECT_EQ(corner.colour & 0xFFU, component(corner.z));
  }
}

TEST_F(RgbCube, SolidCubeIsTwelveIndexedTriangles) {
  const SceneObject& cube = object(SceneRole::SolidCube);
  EXPECT_EQ(cube.kind, PrimitiveKind::IndexedTriangles);
  EXPECT_EQ(cube.count, 8);
  EXPECT_EQ(cube.primitiveCount, 12);
  EXPECT_EQ(cube.viewCode, ViewCode::RgbCube);
  EXPECT_EQ(cube.vertexBuffer->capacity * sizeof(ColourVertex), 128U);
  EXPECT_EQ(cube.vertexBuffer->use, BufferUse::OnDevice);
  EXPECT_EQ(cube.indexBuffer->use, BufferUse::OnDevice);
  EXPECT_EQ(indicesOf(SceneRole::SolidCube),
            (std::vector<std::uint16_t>{0, 1, 2, 0, 2, 3, 4, 6, 5, 4, 7, 6, 4, 5, 1, 4, 1, 0,
                                        3, 2, 6, 3, 6, 7, 1, 5, 6, 1, 6, 2, 4, 0, 3, 4, 3, 7}));
}

TEST_F(RgbCube, EveryFaceIsTwoTrianglesOfItsFourCorners) {
  const auto& indices = indicesOf(SceneRole::SolidCube);
  for (std::size_t face = 0; face < 6; ++face) {
    const std::set<std::uint16_t> used(indices.begin() + static_cast<std::ptrdiff_t>(6 * face),
                                       indices.begin() + static_cast<std::ptrdiff_t>(6 * face + 6));
    EXPECT_EQ(used.size(), 4U);
    int sharedAxes = 0;
    for (const auto axis : {&Corner::x, &Corner::y, &Corner::z}) {
      std::set<int> values;
      for (const std::uint16_t corner : used) values.insert(corners.at(corner).*axis);
      if (values.size() == 1) ++sharedAxes;
    }
    EXPECT_EQ(sharedAxes, 1) << "face " << face;
  }
}

TEST_F(RgbCube, WireFrameIsTheTwelveEdgesAndTheGreyAxis) {
  const SceneObject& frame = object(SceneRole::WireFrame);
  EXPECT_EQ(frame.kind, PrimitiveKind::IndexedLines);
  EXPECT_EQ(frame.count, 8);
  EXPECT_EQ(frame.primitiveCount, 13);
  EXPECT_EQ(frame.viewCode, ViewCode::RgbCube);
  EXPECT_EQ(frame.vertexBuffer->capacity * sizeof(ColourVertex), 128U);
  EXPECT_EQ(frame.vertexBuffer->use, BufferUse::OnDevice);
  EXPECT_EQ(frame.indexBuffer->use, BufferUse::OnDevice);
  EXPECT_EQ(indicesOf(SceneRole::WireFrame),
            (std::vector<std::uint16_t>{0, 1, 1, 2, 2, 3, 3, 0, 0, 4, 1, 5, 2,
                                        6, 3, 7, 4, 5, 5, 6, 6, 7, 7, 4, 3, 5}));
}

TEST_F(RgbCube, GreyAxisRunsFromBlackToWhite) {
  const auto& indices = indicesOf(SceneRole::WireFrame);
  const Vertices& vertices = verticesOf(SceneRole::WireFrame);
  EXPECT_EQ(vertices.at(indices.at(24)).colour, 0xFF000000U);
  EXPECT_EQ(vertices.at(indices.at(25)).colour, 0xFFFFFFFFU);
}

TEST_F(RgbCube, IdentityFillsTheFrameWithPureColours) {
  show(Simulation{CvdType::Deutan, 1.0, SimulationAlgorithm::Judd1948, ""});
  show(identity3x3);
  EXPECT_EQ(verticesOf(SceneRole::SolidCube), verticesOf(SceneRole::WireFrame));
}

TEST_F(RgbCube, CornersFollowEverySimulation) {
  for (const Simulation& simulation : allSimulations()) {
    SCOPED_TRACE(simulation.name);
    show(simulation);
    expectVertices(verticesOf(SceneRole::SolidCube),
                   transformedCorners(modelContext.uninvertedMatrix));
    if (HasFailure()) return;
  }
}

TEST_F(RgbCube, FrameStaysUntransformed) {
  for (const Simulation& simulation : allSimulations()) {
    show(simulation);
    expectVertices(verticesOf(SceneRole::WireFrame), untransformedCorners());
  }
}

TEST_F(RgbCube, RowAboveOneMovesWhiteOutsideTheFrameWithItsColourClamped) {
  show(Matrix3x3{1.5, 0.25, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 1.0});
  const ColourVertex& whiteCorner = verticesOf(SceneRole::SolidCube).at(5);
  EXPECT_FLOAT_EQ(whiteCorner.x, -2.5F);
  EXPECT_FLOAT_EQ(whiteCorner.y, 1.0F);
  EXPECT_EQ(whiteCorner.colour, 0xFFFFFFFFU);
}

TEST_F(RgbCube, NegativeEntriesMoveCornersBeyondTheFrameWithTheirColoursAtZero) {
  show(Matrix3x3{1.0, -0.5, 0.0, 0.0, 1.0, -0.25, 0.0, 0.0, 1.0});
  const ColourVertex& green = verticesOf(SceneRole::SolidCube).at(2);
  EXPECT_FLOAT_EQ(green.x, 2.0F);
  EXPECT_EQ(green.colour, 0xFF00FF00U);
  const ColourVertex& blue = verticesOf(SceneRole::SolidCube).at(7);
  EXPECT_FLOAT_EQ(blue.y, -1.5F);
  EXPECT_EQ(blue.colour, 0xFF0000FFU);
}

TEST_F(RgbCube, ComponentsAreTruncated) {
  show(Matrix3x3{0.999, 0.0, 0.0, 0.0, 0.5, 0.0, 0.0, 0.0, 0.0039});
  EXPECT_EQ(verticesOf(SceneRole::SolidCube).at(5).colour, 0xFFFE7F00U);
}

TEST_F(RgbCube, ShowsTheDeficiencyAlsoWhileItIsCorrectedOrInverted) {
  computeSimulationMatrix(CvdType::Deutan, 0.6, SimulationAlgorithm::Machado2009, false, false);
  refreshTransformViews();
  const Vertices simulated = verticesOf(SceneRole::SolidCube);
  const Vertices gamut = verticesOf(SceneRole::GamutMesh);
  for (const auto& [inversion, daltonized] : {std::pair{true, false}, {false, true}}) {
    computeSimulationMatrix(CvdType::Deutan, 0.6, SimulationAlgorithm::Machado2009, inversion,
                            daltonized);
    EXPECT_NE(modelContext.simulationMatrix, modelContext.uninvertedMatrix);
    refreshTransformViews();
    EXPECT_EQ(verticesOf(SceneRole::SolidCube), simulated);
    EXPECT_EQ(verticesOf(SceneRole::GamutMesh), gamut);
  }
}

TEST_F(RgbCube, RefreshReplacesNothingButTheVertices) {
  const Calls calls = callsOf([] { show(identity3x3); });
  EXPECT_EQ(calls, (Calls{"fillVertexBuffer 1 8", "fillVertexBuffer 6 400",
                          "fillVertexBuffer 7 400", "fillVertexBuffer 8 400",
                          "fillVertexBuffer 11 1200", "fillVertexBuffer 12 120"}));
}

}  // namespace
}  // namespace tintora
