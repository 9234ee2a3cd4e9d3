// The chromaticity diagram and the response curves in the real window.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <ostream>
#include <string>
#include <vector>

#include "colour_space_run.h"
#include "picture.h"
#include "seen_plane.h"

namespace tintora::windows_test {
namespace {

bool isNear(const Colour& colour, const Colour& expected, int tolerance) {
  for (std::size_t channel = 0; channel < 3; ++channel) {
    if (std::abs(colour[channel] - expected[channel]) > tolerance) return false;
  }
  return true;
}

// Whether a colour is found within so many pixels of a place.
bool isFound(const Picture& picture, const SeenPoint& place, int reach, const Colour& colour,
             int tolerance = 0) {
  for (int y = place.y - reach; y <= place.y + reach; ++y) {
    for (int x = place.x - reach; x <= place.x + reach; ++x) {
      if (isNear(picture.at(x, y), colour, tolerance)) return true;
    }
  }
  return false;
}

std::vector<SeenPoint> placesOf(const Picture& picture, const Colour& colour) {
  std::vector<SeenPoint> places;
  for (int y = 0; y < picture.height; ++y) {
    for (int x = 0; x < picture.width; ++x) {
      if (picture.at(x, y) == colour) places.push_back({x, y});
    }
  }
  return places;
}

constexpr Colour red{255, 0, 0};
constexpr Colour green{0, 255, 0};
constexpr Colour blue{0, 0, 255};
constexpr Colour lightGrey{180, 180, 180};

class FlatViews : public ColourSpaceTest, public testing::WithParamInterface<ClientSize> {};

TEST_P(FlatViews, DrawTheSpectralLocus) {
  startWith(DiagramView, GetParam(), 2, 0);
  const Picture picture = shown();
  for (const auto& [nanometres, x, y] : spectralColours) {
    EXPECT_TRUE(isFound(picture, seenChromaticity(picture, x, y), 1, lightGrey)) << nanometres;
  }
}

// Of the bands exp(-(nm - peak)^2 / 200) about 620, 549 and 469 nm, worked out by hand from the 1
// nm tables of the same observer.
TEST_P(FlatViews, DrawTheGamutBetweenItsPrimaries) {
  startWith(DiagramView, GetParam(), 2, 0);
  const Picture picture = shown();
  constexpr int reach = 2;
  constexpr int tolerance = 16;
  EXPECT_TRUE(isFound(picture, seenChromaticity(picture, 0.6819, 0.3179), reach, red, tolerance));
  EXPECT_TRUE(isFound(picture, seenChromaticity(picture, 0.3024, 0.6883), reach, green, tolerance));
  EXPECT_TRUE(isFound(picture, seenChromaticity(picture, 0.1277, 0.0602), reach, blue, tolerance));
  // Equal parts of all three: white.
  EXPECT_TRUE(isFound(picture, seenChromaticity(picture, 0.3461, 0.3454), reach, {255, 255, 255},
                      tolerance));
}

// A dichromat confuses colours along straight lines: the gamut shrinks to one.
TEST_P(FlatViews, CollapseTheGamutOfADichromat) {
  startWith(DiagramView, GetParam(), 2, 0);
  const auto colourful = [](const Picture& picture) {
    return std::ranges::count_if(picture.pixels, [](const Colour& colour) {
      const auto [least, most] = std::ranges::minmax(colour);
      return most - least > 60;
    });
  };
  const auto whole = colourful(shown());
  turnWheel(true, 20);
  const auto collapsed = colourful(shown());
  EXPECT_LT(collapsed, whole / 8);
  EXPECT_GT(collapsed, 100);  // the triangle of the primaries stays
}

struct Peak {
  const char* cone;
  Colour colour;
  double nanometres;
};

// Where the cone fundamentals of Stockman and Sharpe (2000, 2 degrees, quantal) have their peaks.
constexpr std::array peaks{
    Peak{"S", blue, 441.8},
    Peak{"M", green, 541.3},
    Peak{"L", red, 566.8},
};
constexpr double peakTolerance = 8.0;

TEST_P(FlatViews, DrawTheSensitivitiesOfTheCones) {
  startWith(CurvesView, GetParam(), 2, 0);
  const Picture picture = shown();
  for (const auto& [cone, colour, nanometres] : peaks) {
    const std::vector<SeenPoint> curve = placesOf(picture, colour);
    ASSERT_GT(curve.size(), 100U) << cone;
    const int top = std::ranges::min(curve, {}, &SeenPoint::y).y;
    EXPECT_NEAR(top, seen(picture, 0.0, 1.2).y, 1) << cone;
    double sum = 0.0;
    double count = 0.0;
    for (const SeenPoint& place : curve) {
      if (place.y != top) continue;
      sum += place.x;
      count += 1.0;
    }
    const double pixelsPerNanometre =
        (seen(picture, 1.0, 0.0).x - seen(picture, -1.0, 0.0).x) / 200.0;
    EXPECT_NEAR((sum / count - picture.width / 2.0) / pixelsPerNanometre + 560.0, nanometres,
                peakTolerance)
        << cone;
    EXPECT_TRUE(std::ranges::any_of(curve, [&](const SeenPoint& place) {
      return std::abs(place.y - seen(picture, 0.0, -0.8).y) <= 1;
    })) << cone;
  }
}

INSTANTIATE_TEST_SUITE_P(InWindows, FlatViews,
                         testing::Values(ClientSize{400, 400}, ClientSize{800, 600}),
                         [](const auto& row) { return std::to_string(row.param.width); });

struct MergedCurves {
  const char* name;
  DWORD type;
  Colour hidden;    // the curve that lies beneath the other
  Colour covering;  // which is drawn later
};

void PrintTo(const MergedCurves& row, std::ostream* out) {
  *out << row.name;
}

class MergedCurvesTest : public ColourSpaceTest,
                         public testing::WithParamInterface<MergedCurves> {};

TEST_P(MergedCurvesTest, LieOnEachOtherForADichromat) {
  const auto& [name, type, hidden, covering] = GetParam();
  startWith(CurvesView, {}, type, 50);
  EXPECT_FALSE(placesOf(shown(), hidden).empty());
  turnWheel(true, 10);
  const Picture picture = shown();
  EXPECT_TRUE(placesOf(picture, hidden).empty());
  EXPECT_FALSE(placesOf(picture, covering).empty());
}

INSTANTIATE_TEST_SUITE_P(Of, MergedCurvesTest,
                         testing::Values(MergedCurves{"Protan", 1, red, green},
                                         MergedCurves{"Deutan", 2, red, green},
                                         MergedCurves{"Tritan", 3, blue, green}),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace tintora::windows_test
