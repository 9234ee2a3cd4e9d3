// The chromaticity diagram: spectral locus, primaries, gamut and labels.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "projection.h"
#include "reference_diagram.h"
#include "scene.h"

namespace tintora {
namespace {

using platform::BufferUse;
using platform::DrawnText;
using platform::nullGraphics;
using platform::PrimitiveKind;
using SpectralLocus = ColourSpaceTest;
using PrimariesTriangle = ColourSpaceTest;
using Gamut = ColourSpaceTest;
using WavelengthLabels = ColourSpaceTest;

constexpr std::size_t top = 10;

ExpectedVertices untransformed(const std::vector<ReferenceColour>& colours) {
  ExpectedVertices expected;
  for (const ReferenceColour& colour : colours) expected.push_back(referenceVertex(colour));
  return expected;
}

ExpectedVertices transformedBy(const Matrix3x3& matrix,
                               const std::vector<ReferenceColour>& colours) {
  ExpectedVertices expected;
  for (const ReferenceColour& colour : colours) {
    expected.push_back(referenceVertex(colour, matrix));
  }
  return expected;
}

// Returns the distance of a vertex from the line through two others.
double distanceFromLine(const ColourVertex& vertex, const ColourVertex& a, const ColourVertex& b) {
  const double dx = static_cast<double>(b.x) - static_cast<double>(a.x);
  const double dy = static_cast<double>(b.y) - static_cast<double>(a.y);
  const double toX = static_cast<double>(vertex.x) - static_cast<double>(a.x);
  const double toY = static_cast<double>(vertex.y) - static_cast<double>(a.y);
  return std::abs(dx * toY - dy * toX) / std::hypot(dx, dy);
}

// Returns the labels of a frame of the diagram: all texts but the title and its shadow.
std::vector<DrawnText> labelsDrawn() {
  const std::vector<DrawnText>& texts = nullGraphics().texts;
  return {texts.begin() + 2, texts.end()};
}

TEST_F(SpectralLocus, RunsThroughEveryWavelengthAndOutToEveryTickMark) {
  const ExpectedVertices expected = referenceLocus();
  ASSERT_EQ(expected.size(), 448U);
  const Vertices& vertices = verticesOf(SceneRole::SpectralLocus);
  ASSERT_GE(vertices.size(), 448U);
  const Vertices written(vertices.begin(), vertices.begin() + 448);
  expectVertices(written, expected);
  expectConstantColours(written, expected);
}

TEST_F(SpectralLocus, IsAStripOf447Lines) {
  const SceneObject& locus = object(SceneRole::SpectralLocus);
  EXPECT_EQ(locus.kind, PrimitiveKind::LineStrip);
  EXPECT_EQ(locus.count, 447);
  EXPECT_EQ(locus.primitiveCount, 0);
  EXPECT_EQ(locus.viewCode, ViewCode::ChromaticityDiagram);
  EXPECT_EQ(locus.indexBuffer, nullptr);
  EXPECT_EQ(locus.vertexBuffer->use, BufferUse::Managed);
}

TEST_F(SpectralLocus, NeverHoldsMoreThan460Vertices) {
  const SceneObject& locus = object(SceneRole::SpectralLocus);
  EXPECT_EQ(locus.vertexBuffer->capacity * sizeof(ColourVertex), 7360U);
  EXPECT_LE(locus.count + 1, 460);
  EXPECT_LE(verticesOf(SceneRole::SpectralLocus).size(), 460U);
}

TEST_F(SpectralLocus, EveryLabelledWavelengthAddsTwoVertices) {
  EXPECT_EQ(object(SceneRole::SpectralLocus).count + 1,
            static_cast<int>(400 + 2 * referenceLabels().size()));
}

TEST_F(SpectralLocus, IsLeftOpen) {
  const Vertices& vertices = verticesOf(SceneRole::SpectralLocus);
  const ColourVertex& first = vertices.front();
  const ColourVertex& last = vertices.at(447);
  EXPECT_GT(std::hypot(first.x - last.x, first.y - last.y), 1.0F);
}

TEST_F(SpectralLocus, NeverMoves) {
  const Vertices built = verticesOf(SceneRole::SpectralLocus);
  for (const Simulation& simulation : allSimulations()) {
    show(simulation);
    EXPECT_EQ(verticesOf(SceneRole::SpectralLocus), built);
  }
}

TEST_F(PrimariesTriangle, RunsAlongTheHuesBetweenThePrimaries) {
  expectVertices(verticesOf(SceneRole::PrimariesTriangle), untransformed(referenceEdgeColours()));
}

TEST_F(PrimariesTriangle, IsAClosedStripOf119Lines) {
  for (const SceneRole role : {SceneRole::PrimariesTriangle, SceneRole::GamutOutline}) {
    const SceneObject& triangle = object(role);
    EXPECT_EQ(triangle.kind, PrimitiveKind::LineStrip);
    EXPECT_EQ(triangle.count, 119);
    EXPECT_EQ(triangle.primitiveCount, 0);
    EXPECT_EQ(triangle.viewCode, ViewCode::ChromaticityDiagram);
    EXPECT_EQ(triangle.indexBuffer, nullptr);
    EXPECT_EQ(triangle.vertexBuffer->capacity * sizeof(ColourVertex), 1920U);
    EXPECT_EQ(triangle.vertexBuffer->use, BufferUse::Managed);
    EXPECT_EQ(verticesOf(role).front(), verticesOf(role).back());
  }
}

TEST_F(PrimariesTriangle, NeverMoves) {
  const Vertices built = verticesOf(SceneRole::PrimariesTriangle);
  for (const Simulation& simulation : allSimulations()) {
    show(simulation);
    EXPECT_EQ(verticesOf(SceneRole::PrimariesTriangle), built);
  }
}

TEST_F(PrimariesTriangle, LiesWithinTheLocus) {
  const Vertices& locus = verticesOf(SceneRole::SpectralLocus);
  const auto rightmost = std::ranges::max(locus, {}, &ColourVertex::x).x;
  const auto highest = std::ranges::max(locus, {}, &ColourVertex::y).y;
  for (const ColourVertex& vertex : verticesOf(SceneRole::PrimariesTriangle)) {
    EXPECT_LT(vertex.x, rightmost);
    EXPECT_LT(vertex.y, highest);
  }
}

TEST_F(Gamut, IsBuiltUntransformed) {
  expectVertices(verticesOf(SceneRole::GamutMesh), untransformed(referenceMeshColours()));
  expectVertices(verticesOf(SceneRole::GamutOutline), untransformed(referenceEdgeColours()));
}

TEST_F(Gamut, EachPatchHasOneComponentAtFull) {
  constexpr std::array<PackedColour, 3> whole{0xFF0000U, 0x00FF00U, 0x0000FFU};
  const Vertices& mesh = verticesOf(SceneRole::GamutMesh);
  for (std::size_t i = 0; i < mesh.size(); ++i) {
    const PackedColour component = whole.at(i / 400);
    EXPECT_EQ(mesh[i].colour & component, component) << i;
  }
}

// White, in equal parts of the primaries, is the corner that the three patches share.
TEST_F(Gamut, IsWhiteAtTheChromaticityOfAllPrimariesTogether) {
  const ExpectedVertex white = referenceVertex({255.0L, 255.0L, 255.0L});
  for (const std::size_t corner : {399U, 799U, 1199U}) {
    expectVertex(verticesOf(SceneRole::GamutMesh).at(corner), white);
    EXPECT_EQ(verticesOf(SceneRole::GamutMesh).at(corner).colour, 0xFFFFFFFFU);
  }
}

TEST_F(Gamut, MeshIs2166IndexedTriangles) {
  const SceneObject& mesh = object(SceneRole::GamutMesh);
  EXPECT_EQ(mesh.kind, PrimitiveKind::IndexedTriangles);
  EXPECT_EQ(mesh.count, 1200);
  EXPECT_EQ(mesh.primitiveCount, 2166);
  EXPECT_EQ(mesh.viewCode, ViewCode::ChromaticityDiagram);
  EXPECT_EQ(mesh.vertexBuffer->capacity * sizeof(ColourVertex), 19200U);
  EXPECT_EQ(mesh.vertexBuffer->use, BufferUse::Managed);
  EXPECT_EQ(mesh.indexBuffer->use, BufferUse::OnDevice);
  EXPECT_EQ(indicesOf(SceneRole::GamutMesh).size() * sizeof(std::uint16_t), 14400U);
}

TEST_F(Gamut, MeshIndicesJoinNeighboursOfOnePatch) {
  const auto& indices = indicesOf(SceneRole::GamutMesh);
  ASSERT_GE(indices.size(), 6498U);
  std::size_t next = 0;
  for (int patch = 0; patch < 3; ++patch) {
    for (int r = 1; r <= 19; ++r) {
      for (int c = 0; c <= 18; ++c) {
        const auto p = [patch](int row, int column) { return 400 * patch + 20 * row + column; };
        for (const int expected :
             {p(r - 1, c), p(r - 1, c + 1), p(r, c), p(r - 1, c + 1), p(r, c + 1), p(r, c)}) {
          ASSERT_EQ(indices[next++], expected)
              << "patch " << patch << " row " << r << " column " << c;
        }
      }
    }
  }
}

TEST_F(Gamut, FollowsEverySimulation) {
  const std::vector<ReferenceColour> mesh = referenceMeshColours();
  const std::vector<ReferenceColour> edges = referenceEdgeColours();
  for (const Simulation& simulation : allSimulations()) {
    SCOPED_TRACE(simulation.name);
    show(simulation);
    const Matrix3x3& matrix = modelContext.uninvertedMatrix;
    expectVertices(verticesOf(SceneRole::GamutMesh), transformedBy(matrix, mesh));
    expectVertices(verticesOf(SceneRole::GamutOutline), transformedBy(matrix, edges));
    if (HasFailure()) return;
  }
}

TEST_F(Gamut, IdentityLaysTheOutlineOnThePrimariesTriangle) {
  show(Simulation{CvdType::Tritan, 1.0, SimulationAlgorithm::Judd1948, ""});
  show(identity3x3);
  expectVertices(verticesOf(SceneRole::GamutOutline), untransformed(referenceEdgeColours()));
  expectVertices(verticesOf(SceneRole::GamutMesh), untransformed(referenceMeshColours()));
}

TEST_F(Gamut, DichromatCollapsesItOntoALine) {
  // Exactly of rank 2.
  show(Matrix3x3{0.12, 0.88, 0.0, 0.12, 0.88, 0.0, 0.0, 0.0, 1.0});
  const Vertices& outline = verticesOf(SceneRole::GamutOutline);
  const ColourVertex& blue = outline.front();
  const ColourVertex& yellow = outline.at(60);
  ASSERT_GT(std::hypot(blue.x - yellow.x, blue.y - yellow.y), 0.5F);
  for (const SceneRole role : {SceneRole::GamutMesh, SceneRole::GamutOutline}) {
    for (const ColourVertex& vertex : verticesOf(role)) {
      EXPECT_LT(distanceFromLine(vertex, blue, yellow), 1e-5);
    }
  }
}

TEST_F(Gamut, ColourThatBecomesBlackStaysWhereItWas) {
  const Vertices mesh = verticesOf(SceneRole::GamutMesh);
  const Vertices outline = verticesOf(SceneRole::GamutOutline);
  // Pure red becomes black without red; every other colour moves.
  const Matrix3x3 blind{-0.5, 0.0, 0.0, -0.1, 0.8, 0.1, 0.0, 0.1, 0.6};
  show(blind);
  const std::vector<ReferenceColour> colours = referenceEdgeColours();
  std::size_t kept = 0;
  for (std::size_t i = 0; i < colours.size(); ++i) {
    SCOPED_TRACE(i);
    const auto& [red, green, blue] = colours[i];
    const long double brightest = std::max(
        {-0.5L * red, -0.1L * red + 0.8L * green + 0.1L * blue, 0.1L * green + 0.6L * blue});
    if (brightest > 1e-9L) {
      expectVertex(verticesOf(SceneRole::GamutOutline)[i], referenceVertex(colours[i], blind));
    } else {
      EXPECT_EQ(verticesOf(SceneRole::GamutOutline)[i], outline[i]);
      ++kept;
    }
  }
  EXPECT_EQ(kept, 2U);  // the end of the edge to red and the start of the one from it
  EXPECT_EQ(verticesOf(SceneRole::GamutMesh)[0], mesh[0]);
  EXPECT_NE(verticesOf(SceneRole::GamutMesh)[399], mesh[399]);
}

TEST_F(Gamut, BlackMatrixLeavesTheLastGoodGamut) {
  show(Simulation{CvdType::Protan, 0.6, SimulationAlgorithm::Machado2009, ""});
  const Vertices mesh = verticesOf(SceneRole::GamutMesh);
  const Vertices outline = verticesOf(SceneRole::GamutOutline);
  show(Matrix3x3{});
  EXPECT_EQ(verticesOf(SceneRole::GamutMesh), mesh);
  EXPECT_EQ(verticesOf(SceneRole::GamutOutline), outline);
}

TEST_F(WavelengthLabels, StandAtTheEndsOfTheTickMarksInTheOrderOfTheTable) {
  const std::vector<ReferenceLabel> expected = referenceLabels();
  ASSERT_EQ(expected.size(), colourSpaceView.wavelengthLabels.size());
  for (std::size_t i = 0; i < expected.size(); ++i) {
    const WavelengthLabel& label = colourSpaceView.wavelengthLabels.at(i);
    SCOPED_TRACE(expected[i].text);
    EXPECT_EQ(label.text, expected[i].text);
    EXPECT_NEAR(label.x, static_cast<double>(expected[i].place.x), 1e-6);
    EXPECT_NEAR(label.y, static_cast<double>(expected[i].place.y), 1e-6);
    EXPECT_EQ(label.direction > 0.0F, expected[i].rising);
  }
}

TEST_F(WavelengthLabels, AreDrawnBesideTheirTickMarksAtEverySize) {
  constexpr std::array<std::array<int, 2>, 5> sizes{
      {{400, 400}, {800, 600}, {383, 361}, {1501, 977}, {101, 400}}};
  for (const auto& [width, height] : sizes) {
    SCOPED_TRACE(width);
    resizeDevice(width, height);
    render(ViewCode::ChromaticityDiagram);
    const std::vector<DrawnText> drawn = labelsDrawn();
    const std::vector<ReferenceLabel> expected = referenceLabels();
    ASSERT_EQ(drawn.size(), 24U);
    for (std::size_t i = 0; i < drawn.size(); ++i) {
      SCOPED_TRACE(expected[i].text);
      const SeenPoint tick = seenInPlane(static_cast<double>(expected[i].place.x),
                                         static_cast<double>(expected[i].place.y), width, height);
      const bool left = expected[i].rising;
      const platform::Rect& area = drawn[i].area;
      expectPixel(area.left - (i == top ? 0 : left ? -12 : 14), tick.x - 10.0);
      expectPixel(area.top - (i == top ? -13 : left ? -5 : -10), tick.y);
      EXPECT_EQ(area.width(), 100);
      EXPECT_EQ(area.height(), 50);
      EXPECT_EQ(drawn[i].text, expected[i].text);
      EXPECT_EQ(drawn[i].colour, 0xFFB4B4B4U);
      EXPECT_EQ(drawn[i].font, colourSpaceView.labelFont);
    }
  }
}

TEST_F(WavelengthLabels, MoveWithTheViewport) {
  render(ViewCode::ChromaticityDiagram);
  const std::vector<DrawnText> before = labelsDrawn();
  nullGraphics().viewportCorner = {30, 70};
  render(ViewCode::ChromaticityDiagram);
  const std::vector<DrawnText> moved = labelsDrawn();
  ASSERT_EQ(moved.size(), before.size());
  for (std::size_t i = 0; i < moved.size(); ++i) {
    EXPECT_EQ(moved[i].area.left, before[i].area.left + 30);
    EXPECT_EQ(moved[i].area.top, before[i].area.top + 70);
  }
}

TEST_F(WavelengthLabels, StayBesideTheLocusHoweverTheCubeIsTurned) {
  render(ViewCode::ChromaticityDiagram);
  const std::vector<DrawnText> before = labelsDrawn();
  colourSpaceView.viewCode = ViewCode::RgbCube;
  beginDrag(100, 100);
  rotateByMouse({.left = true}, 210, 35);
  ASSERT_NE(colourSpaceView.viewMatrix, colourSpaceView.homeViewMatrix);
  render(ViewCode::ChromaticityDiagram);
  const std::vector<DrawnText> after = labelsDrawn();
  ASSERT_EQ(after.size(), before.size());
  for (std::size_t i = 0; i < after.size(); ++i) EXPECT_EQ(after[i].area, before[i].area);
}

TEST_F(WavelengthLabels, TheLastOneIs440NmAndTheEleventh520) {
  EXPECT_EQ(colourSpaceView.wavelengthLabels.back().text, "440");
  EXPECT_EQ(colourSpaceView.wavelengthLabels.at(top).text, "520");
}

TEST_F(WavelengthLabels, OnlyTheTopOneStandsAboveItsTickMark) {
  render(ViewCode::ChromaticityDiagram);
  const std::vector<DrawnText> drawn = labelsDrawn();
  for (std::size_t i = 0; i < drawn.size(); ++i) {
    const WavelengthLabel& label = colourSpaceView.wavelengthLabels.at(i);
    const SeenPoint tick = seenInPlane(label.x, label.y, 400, 400);
    EXPECT_EQ(std::abs(drawn[i].area.left - (tick.x - 10.0)) < 1.5, i == top) << label.text;
  }
}

// The blue-green side rises to 520 nm, and from there the locus falls.
TEST_F(WavelengthLabels, StandLeftOfTheRisingSideAndRightOfTheFallingSide) {
  const std::set<std::string> rising{"480", "485", "490", "495", "500", "505",
                                     "510", "475", "470", "460", "440"};
  for (const WavelengthLabel& label : colourSpaceView.wavelengthLabels) {
    if (label.text == "520") continue;
    EXPECT_EQ(label.direction > 0.0F, rising.contains(label.text)) << label.text;
  }
}

}  // namespace
}  // namespace tintora
