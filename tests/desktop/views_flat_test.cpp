// The chromaticity diagram and the response curves on the screen.
#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <vector>

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

TEST_F(ViewsTest, DiagramHasTheGamutOfTheSpectralModel) {
  for (const PictureSize& size : pictureSizes) {
    startStored(
        {{"Selected", 2}, {"ScrollPc", 60}, {"Option", 1}, {"View", 704}, {"ColorSpace", 1}}, size);
    EXPECT_TRUE(shows(shown(), diagramShapes(expected::yangDeutanAt60()),
                      withTitle(wavelengthLabelAreas(size))));
    end();
  }
}

// Returns the part of a label's area that the locus, which has the same colour, does not cross.
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

// Returns the ink of the three figures of a label whose text begins at a place. Leaves out the
// outermost columns of each, which may contain a neighbour's ink.
std::array<std::vector<double>, 3> figuresAt(const Picture& picture, int x, int y) {
  constexpr std::array<std::array<int, 2>, 3> columns{{{1, 6}, {8, 12}, {14, 18}}};
  constexpr std::array<int, 2> rows{2, 14};
  const double background = colourOf(viewBackground)[0];
  const double text = colourOf(labelColour)[0];
  std::array<std::vector<double>, 3> figures;
  for (std::size_t i = 0; i < figures.size(); ++i) {
    for (int row = y + rows[0]; row < y + rows[1]; ++row) {
      for (int column = x + columns[i][0]; column < x + columns[i][1]; ++column) {
        figures[i].push_back((colourOf(picture.at(column, row))[0] - background) /
                             (text - background));
      }
    }
  }
  return figures;
}

double difference(const std::vector<double>& a, const std::vector<double>& b) {
  double largest = 0;
  for (std::size_t i = 0; i < a.size(); ++i) largest = std::max(largest, std::abs(a[i] - b[i]));
  return largest;
}

// Returns true if a label's text overlaps another's.
bool overlaps(const std::vector<Area>& areas, const Area& label) {
  return std::ranges::any_of(areas, [&](const Area& other) {
    return other != label && std::abs(other.x - label.x) < 22 && std::abs(other.y - label.y) < 13;
  });
}

// In both views, labels without overlap have the same figure in a position if and only if they look
// the same there.
TEST_F(ViewsTest, LabelsHaveTheFiguresOfTheirWavelengths) {
  constexpr PictureSize size{800, 600};
  struct Label {
    std::string text;
    std::array<std::vector<double>, 3> figures;
  };
  std::vector<Label> labels;
  const auto addLabels = [&](const std::vector<Area>& areas, const auto& textOf) {
    const Picture picture = shown();
    for (std::size_t i = 0; i < areas.size(); ++i) {
      const Area& area = areas[i];
      if (overlaps(areas, area)) continue;
      labels.push_back({textOf(i), figuresAt(picture, area.x + 2, area.y + 1)});
    }
  };
  startWith(View::Diagram, size);
  addLabels(wavelengthLabelAreas(size), [](std::size_t i) { return referenceLabels()[i].text; });
  turnTo(View::Curves);
  addLabels(curveLabelAreas(size), [](std::size_t i) { return std::to_string(400 + 50 * i); });
  ASSERT_GE(labels.size(), 26U);
  for (const Label& a : labels) {
    for (const Label& b : labels) {
      for (std::size_t i = 0; i < 3; ++i) {
        const double seen = difference(a.figures[i], b.figures[i]);
        if (a.text[i] == b.text[i]) {
          EXPECT_LT(seen, 0.3) << a.text << " and " << b.text << ", figure " << i;
        } else {
          EXPECT_GT(seen, 0.5) << a.text << " and " << b.text << ", figure " << i;
        }
      }
    }
  }
}

// Returns the middle of the ink in an area, in pixels from its left edge, weighted by coverage.
double middleOfInk(const Picture& picture, const Area& area) {
  const double background = colourOf(viewBackground)[0];
  double ink = 0;
  double sum = 0;
  for (int y = area.y; y < area.bottom(); ++y) {
    for (int x = area.x; x < area.right(); ++x) {
      const double share = std::abs(colourOf(picture.at(x, y))[0] - background);
      ink += share;
      sum += share * (x - area.x + 0.5);
    }
  }
  return ink > 0 ? sum / ink : 0;
}

// In this typeface and its substitutes, all figures are 0.556 em wide, which is in their published
// metrics, and stand in the middle of that width.
TEST_F(ViewsTest, LabelsBeginAtTheirPixels) {
  constexpr double em = 12;
  constexpr double middle = 3 * 0.556 * em / 2;
  for (const PictureSize& size : pictureSizes) {
    startWith(View::Curves, size);
    const Picture picture = shown();
    std::vector<Area> labels = curveLabelAreas(size);
    labels.pop_back();  // ends with a unit
    double sum = 0;
    for (const Area& label : labels) {
      const Area text{label.x + 2, label.y + 1, 24, label.height};
      sum += middleOfInk(picture, text);
      EXPECT_NEAR(middleOfInk(picture, text), middle, 0.9) << label.x;
    }
    // A part of a pixel, because the figures are not quite symmetrical.
    EXPECT_NEAR(sum / static_cast<double>(labels.size()), middle, 0.5);
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
