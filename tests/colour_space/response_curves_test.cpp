// The response curves of the three cones and the wavelengths beneath them.
#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "projection.h"
#include "reference_observer.h"
#include "scene.h"

namespace tintora {
namespace {

using platform::BufferUse;
using platform::DrawnText;
using platform::nullGraphics;
using platform::PrimitiveKind;
using ResponseCurves = ColourSpaceTest;
using CurveLabels = ColourSpaceTest;

struct Curve {
  SceneRole live;
  SceneRole reference;
  long double peak;  // of the normal observer, in nm
  std::array<long double, 3> colour;
};
constexpr std::array<Curve, 3> curves{{
    {SceneRole::LiveS, SceneRole::ReferenceS, 420.7L, {0.0L, 0.0L, 255.0L}},
    {SceneRole::LiveL, SceneRole::ReferenceL, 558.9L, {255.0L, 0.0L, 0.0L}},
    {SceneRole::LiveM, SceneRole::ReferenceM, 530.3L, {0.0L, 255.0L, 0.0L}},
}};

ExpectedVertices expectedCurve(long double peak, const std::array<long double, 3>& colour) {
  const ReferenceCurve cone = referenceCone(peak, 0.35L);
  ExpectedVertices expected;
  for (std::size_t i = 0; i < 400; ++i) {
    const long double wavelength = 360.0L + static_cast<long double>(i);
    expected.push_back({(wavelength - 560.0L) / 100.0L, 2.0L * (cone[i] - 0.4L), 0.0L, colour[0],
                        colour[1], colour[2]});
  }
  return expected;
}

// The live curves with peaks given for S, L and M.
void expectLivePeaks(const std::array<long double, 3>& peaks) {
  for (std::size_t i = 0; i < curves.size(); ++i) {
    SCOPED_TRACE("curve " + std::to_string(i));
    const ExpectedVertices expected = expectedCurve(peaks[i], curves[i].colour);
    expectVertices(verticesOf(curves[i].live), expected);
    expectConstantColours(verticesOf(curves[i].live), expected);
  }
}

void refreshFor(CvdType type, double severity) {
  modelContext.modelCvdType = type;
  modelContext.modelSeverity = severity;
  refreshTransformViews();
}

float highest(const Vertices& vertices) {
  return std::ranges::max(vertices, {}, &ColourVertex::y).y;
}

bool samePlaces(const Vertices& a, const Vertices& b) {
  return std::ranges::equal(a, b, [](const ColourVertex& p, const ColourVertex& q) {
    return p.x == q.x && p.y == q.y && p.z == q.z;
  });
}

TEST_F(ResponseCurves, AreBuiltForTheNormalObserver) {
  expectLivePeaks({420.7L, 558.9L, 530.3L});
  for (const Curve& curve : curves) {
    const ExpectedVertices expected = expectedCurve(curve.peak, {140.0L, 160.0L, 180.0L});
    expectVertices(verticesOf(curve.reference), expected);
    expectConstantColours(verticesOf(curve.reference), expected);
  }
}

TEST_F(ResponseCurves, AreStripsOf399Lines) {
  for (const Curve& curve : curves) {
    for (const SceneRole role : {curve.live, curve.reference}) {
      const SceneObject& strip = object(role);
      EXPECT_EQ(strip.kind, PrimitiveKind::LineStrip);
      EXPECT_EQ(strip.count, 399);
      EXPECT_EQ(strip.primitiveCount, 0);
      EXPECT_EQ(strip.indexBuffer, nullptr);
      EXPECT_EQ(strip.vertexBuffer->capacity * sizeof(ColourVertex), 6400U);
      EXPECT_EQ(strip.vertexBuffer->use, BufferUse::Managed);
      EXPECT_EQ(strip.world, identity4x4);
    }
    EXPECT_EQ(object(curve.live).viewCode, ViewCode::ResponseCurves);
    EXPECT_EQ(static_cast<int>(object(curve.reference).viewCode), 706);
  }
}

TEST_F(ResponseCurves, FollowTheCubeWithShortMediumLongAsReferenceAndThenLive) {
  constexpr std::array<PackedColour, 6> colours{0xFF8CA0B4U, 0xFF8CA0B4U, 0xFF8CA0B4U,
                                                0xFF0000FFU, 0xFFFF0000U, 0xFF00FF00U};
  for (std::size_t i = 0; i < colours.size(); ++i) {
    const SceneObject& curve = colourSpaceView.objects.at(2 + i);
    EXPECT_EQ(curve.vertexBuffer->vertices.front().colour, colours[i]) << i;
    EXPECT_EQ(static_cast<int>(curve.viewCode), i < 3 ? 706 : 702) << i;
  }
}

TEST_F(ResponseCurves, PeakAtOne) {
  for (const Curve& curve : curves) EXPECT_FLOAT_EQ(highest(verticesOf(curve.live)), 1.2F);
}

TEST_F(ResponseCurves, FollowTypeAndSeverity) {
  for (const long double severity : {0.0L, 0.2L, 0.6L, 1.0L}) {
    SCOPED_TRACE(static_cast<double>(severity));
    const auto s = static_cast<double>(severity);
    refreshFor(CvdType::Protan, s);
    expectLivePeaks({420.7L, 558.9L - 28.6L * severity, 530.3L});
    refreshFor(CvdType::Deutan, s);
    expectLivePeaks({420.7L, 558.9L, 530.3L + 28.6L * severity});
    refreshFor(CvdType::Tritan, s);
    expectLivePeaks({420.7L + 109.6L * severity, 558.9L, 530.3L});
  }
}

TEST_F(ResponseCurves, FollowTheModelWithEverySimulation) {
  for (const Simulation& simulation : allSimulations()) {
    SCOPED_TRACE(simulation.name);
    show(simulation);
    std::array<long double, 3> peaks{420.7L, 558.9L, 530.3L};
    const auto severity = static_cast<long double>(simulation.severity);
    if (simulation.type == CvdType::Protan) peaks[1] -= 28.6L * severity;
    if (simulation.type == CvdType::Deutan) peaks[2] += 28.6L * severity;
    if (simulation.type == CvdType::Tritan) peaks[0] += 109.6L * severity;
    expectLivePeaks(peaks);
    if (HasFailure()) return;
  }
}

TEST_F(ResponseCurves, OtherTypesMoveNothing) {
  for (const auto type : {0U, 4U, 4000000000U}) {
    refreshFor(static_cast<CvdType>(type), 1.0);
    expectLivePeaks({420.7L, 558.9L, 530.3L});
  }
}

TEST_F(ResponseCurves, ProtanAt100PercentHasRedOnGreen) {
  refreshFor(CvdType::Protan, 1.0);
  EXPECT_TRUE(samePlaces(verticesOf(SceneRole::LiveL), verticesOf(SceneRole::LiveM)));
  expectVertices(verticesOf(SceneRole::LiveL), expectedCurve(530.3L, {255.0L, 0.0L, 0.0L}));
}

TEST_F(ResponseCurves, DeutanAt100PercentHasGreenOnRed) {
  refreshFor(CvdType::Deutan, 1.0);
  EXPECT_TRUE(samePlaces(verticesOf(SceneRole::LiveM), verticesOf(SceneRole::LiveL)));
  expectVertices(verticesOf(SceneRole::LiveM), expectedCurve(558.9L, {0.0L, 255.0L, 0.0L}));
}

TEST_F(ResponseCurves, TritanAt100PercentHasBlueOnGreen) {
  refreshFor(CvdType::Tritan, 1.0);
  EXPECT_TRUE(samePlaces(verticesOf(SceneRole::LiveS), verticesOf(SceneRole::LiveM)));
  expectVertices(verticesOf(SceneRole::LiveS), expectedCurve(530.3L, {0.0L, 0.0L, 255.0L}));
}

TEST_F(ResponseCurves, SeverityAbove100PercentCountsAs100) {
  for (const CvdType type : {CvdType::Protan, CvdType::Deutan, CvdType::Tritan}) {
    refreshFor(type, 1.0);
    std::vector<Vertices> full;
    for (const Curve& curve : curves) full.push_back(verticesOf(curve.live));
    refreshFor(type, 0.0);
    for (const double severity : {1.0001, 1.5, 1e300}) {
      refreshFor(type, severity);
      for (std::size_t i = 0; i < curves.size(); ++i) {
        EXPECT_EQ(verticesOf(curves[i].live), full[i]);
      }
    }
  }
}

TEST_F(ResponseCurves, NegativeSeverityIsNotRaised) {
  refreshFor(CvdType::Protan, -0.5);
  expectLivePeaks({420.7L, 558.9L + 14.3L, 530.3L});
}

TEST_F(ResponseCurves, ReferenceStaysTheNormalObserver) {
  refreshFor(CvdType::Deutan, 1.0);
  for (const Curve& curve : curves) {
    expectVertices(verticesOf(curve.reference),
                   expectedCurve(curve.peak, {140.0L, 160.0L, 180.0L}));
  }
}

TEST_F(ResponseCurves, ReferenceIsNeverDrawnInAnyViewThatCanBeChosen) {
  for (const int view : {702, 703, 704, 705}) {
    render(static_cast<ViewCode>(view));
    for (const platform::DrawnPrimitives& drawn : nullGraphics().drawn) {
      for (const Curve& curve : curves) {
        EXPECT_NE(drawn.vertexBuffer, object(curve.reference).vertexBuffer) << view;
      }
    }
  }
}

TEST_F(CurveLabels, StandUnderTheirWavelengthsAtEverySize) {
  constexpr std::array<std::array<int, 2>, 5> sizes{
      {{400, 400}, {800, 600}, {383, 361}, {1501, 977}, {101, 400}}};
  const std::vector<std::string> expected{"400", "450", "500", "550", "600", "650", "700nm"};
  for (const auto& [width, height] : sizes) {
    SCOPED_TRACE(width);
    resizeDevice(width, height);
    render(ViewCode::ResponseCurves);
    const std::vector<DrawnText>& texts = nullGraphics().texts;
    ASSERT_EQ(texts.size(), 9U);
    for (std::size_t k = 0; k < 7; ++k) {
      const DrawnText& label = texts[k + 2];
      const SeenPoint place = seenInPlane(0.5 * static_cast<double>(k) - 1.6, -1.0, width, height);
      expectPixel(label.area.left, place.x - 8.0);
      expectPixel(label.area.top, place.y);
      EXPECT_EQ(label.area.width(), 100);
      EXPECT_EQ(label.area.height(), 50);
      EXPECT_EQ(label.text, expected[k]);
      EXPECT_EQ(label.colour, 0xFFB4B4B4U);
      EXPECT_EQ(label.font, colourSpaceView.labelFont);
    }
  }
}

TEST_F(CurveLabels, StayUnderTheCurvesHoweverTheCubeIsTurned) {
  render(ViewCode::ResponseCurves);
  const std::vector<DrawnText> before = nullGraphics().texts;
  colourSpaceView.viewCode = ViewCode::RgbCube;
  beginDrag(100, 100);
  rotateByMouse({.left = true}, 210, 35);
  ASSERT_NE(colourSpaceView.viewMatrix, colourSpaceView.homeViewMatrix);
  render(ViewCode::ResponseCurves);
  const std::vector<DrawnText>& after = nullGraphics().texts;
  ASSERT_EQ(after.size(), before.size());
  for (std::size_t i = 0; i < after.size(); ++i) EXPECT_EQ(after[i].area, before[i].area);
}

}  // namespace
}  // namespace tintora
