// The chromaticity diagram and the response curves on the screen.
#include "reference_diagram.h"
#include "views_run.h"

namespace tintora::desktop_test {
namespace {

using expected::juddDeutan;
using expected::juddProtan;
using expected::juddTritan;

std::vector<Area> withTitle(std::vector<Area> areas) {
  areas.push_back({12, 10, 400, 20});
  return areas;
}

struct TransformRow {
  const char* name;
  int type;
  Weights (*weights)(double severity);
};
void PrintTo(const TransformRow& row, std::ostream* out) {
  *out << row.name;
}

class DiagramView : public ViewsTest, public testing::WithParamInterface<TransformRow> {
 protected:
  testing::AssertionResult diagramIs(const Weights& weights, const PictureSize& size) {
    return shows(shown(), diagramShapes(weights), withTitle(wavelengthLabelAreas(size)));
  }
};

TEST_P(DiagramView, HasTheLocusThePrimariesAndTheGamutThatIsSeen) {
  const auto& [name, type, weights] = GetParam();
  for (const PictureSize& size : pictureSizes) {
    startWith(View::Diagram, size, type, 0);
    EXPECT_TRUE(diagramIs(untransformed, size));
    stepSeverity(true, 8);
    EXPECT_TRUE(diagramIs(weights(0.4), size));
    stepSeverity(true, 12);
    EXPECT_TRUE(diagramIs(weights(1), size));
    end();
  }
}

INSTANTIATE_TEST_SUITE_P(For, DiagramView,
                         testing::Values(TransformRow{"Protan", 1, &juddProtan},
                                         TransformRow{"Deutan", 2, &juddDeutan},
                                         TransformRow{"Tritan", 3, &juddTritan}),
                         [](const auto& row) { return std::string(row.param.name); });

// The part of a label's area that the locus, which has the label's colour, does not cross.
Area besideLocus(const Area& label, bool rising) {
  return {label.x + 2, label.y + 1, rising ? 16 : 24, 12};
}

TEST_F(ViewsTest, DiagramNamesWavelengthsBesideTheLocus) {
  for (const PictureSize& size : pictureSizes) {
    startWith(View::Diagram, size);
    const Picture picture = shown();
    const std::vector<Area> areas = wavelengthLabelAreas(size);
    const std::vector<ReferenceLabel> labels = referenceLabels();
    ASSERT_EQ(areas.size(), 24U);
    for (std::size_t i = 0; i < areas.size(); ++i) {
      EXPECT_TRUE(hasText(picture, besideLocus(areas[i], labels[i].rising), labelColour))
          << labels[i].text;
    }
    end();
  }
}

struct Peaks {
  double s = 420.7;
  double m = 530.3;
  double l = 558.9;
};

class CurvesView : public ViewsTest {
 protected:
  testing::AssertionResult curvesAre(const Peaks& peaks, const PictureSize& size) {
    return shows(shown(), curveShapes(peaks.s, peaks.m, peaks.l), withTitle(curveLabelAreas(size)));
  }
};

TEST_F(CurvesView, AreThoseOfTheNormalObserverWithoutASeverity) {
  for (const PictureSize& size : pictureSizes) {
    startWith(View::Curves, size);
    EXPECT_TRUE(curvesAre({}, size));
    end();
  }
}

TEST_F(CurvesView, HaveTheirPeaksWhereTheOneOfTheDeficiencyMovesTo) {
  struct Row {
    int type;
    Peaks half;
    Peaks whole;
  };
  for (const Row& row : {Row{1, {.l = 544.6}, {.l = 530.3}}, Row{2, {.m = 544.6}, {.m = 558.9}},
                         Row{3, {.s = 475.5}, {.s = 530.3}}}) {
    startWith(View::Curves, {800, 600}, row.type, 50);
    EXPECT_TRUE(curvesAre(row.half, {800, 600})) << row.type;
    stepSeverity(true, 10);
    EXPECT_TRUE(curvesAre(row.whole, {800, 600})) << row.type;
    stepSeverity(true, 3);
    EXPECT_TRUE(curvesAre(row.whole, {800, 600})) << row.type;
    end();
  }
}

TEST_F(CurvesView, NameWavelengthsBelowWhateverTheCubeIsTurnedTo) {
  for (const PictureSize& size : pictureSizes) {
    startWith(View::Cube, size);
    drag(1, {{200, 200}, {300, 240}});
    turnTo(View::Curves);
    const Picture picture = shown();
    const std::vector<Area> labels = curveLabelAreas(size);
    ASSERT_EQ(labels.size(), 7U);
    for (const Area& label : labels) EXPECT_TRUE(hasText(picture, label, labelColour));
    EXPECT_TRUE(curvesAre({}, size));
    end();
  }
}

}  // namespace
}  // namespace tintora::desktop_test
