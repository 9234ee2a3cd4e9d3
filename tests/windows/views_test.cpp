// Tests the chromaticity diagram and the response curves in the real window.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <iterator>
#include <ostream>
#include <string>
#include <vector>

#include "colour_space_run.h"
#include "picture.h"
#include "reference_diagram.h"
#include "reference_observer.h"
#include "seen_plane.h"

namespace tintora::windows_test {
namespace {

bool isNear(const Colour& colour, const Colour& expected, int tolerance) {
  for (std::size_t channel = 0; channel < 3; ++channel) {
    if (std::abs(colour[channel] - expected[channel]) > tolerance) return false;
  }
  return true;
}

// Returns true if a colour is found within this many pixels of a place.
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

using FlatViewsTest = ColourSpaceTest;
class FlatViews : public ColourSpaceTest, public testing::WithParamInterface<ClientSize> {};

TEST_P(FlatViews, DrawTheSpectralLocus) {
  startWith(DiagramView, GetParam(), 2, 0);
  const Picture picture = shown();
  for (const auto& [nanometres, x, y] : spectralColours) {
    EXPECT_TRUE(isFound(picture, seenChromaticity(picture, x, y), 1, lightGrey)) << nanometres;
  }
}

// The primaries are the bands exp(-(nm - peak)^2 / 200) about 620, 549 and 469 nm. Their places
// were worked out by hand from the 1 nm tables of the same observer.
TEST_P(FlatViews, DrawTheGamutBetweenItsPrimaries) {
  startWith(DiagramView, GetParam(), 2, 0);
  const Picture picture = shown();
  constexpr int reach = 2;
  constexpr int tolerance = 16;
  EXPECT_TRUE(isFound(picture, seenChromaticity(picture, 0.6819, 0.3179), reach, red, tolerance));
  EXPECT_TRUE(isFound(picture, seenChromaticity(picture, 0.3024, 0.6883), reach, green, tolerance));
  EXPECT_TRUE(isFound(picture, seenChromaticity(picture, 0.1277, 0.0602), reach, blue, tolerance));
  // Equal parts of all three primaries make white.
  EXPECT_TRUE(isFound(picture, seenChromaticity(picture, 0.3461, 0.3454), reach, {255, 255, 255},
                      tolerance));
}

// A dichromat confuses colours along straight lines, so the gamut shrinks to one line.
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
  EXPECT_GT(collapsed, 100);  // the triangle of the primaries remains
}

// The curves of the normal observer, in drawing order.
struct ConeCurve {
  const char* cone;
  Colour colour;
  long double peak;  // nm
};
constexpr std::array coneCurves{ConeCurve{"S", blue, 420.7L}, ConeCurve{"L", red, 558.9L},
                                ConeCurve{"M", green, 530.3L}};
constexpr std::size_t shownSamples = 400;

// Returns the place of each nanometre of a curve in a picture.
std::vector<SeenPoint> seenCurve(const Picture& picture, const ConeCurve& cone) {
  const ReferenceCurve curve = referenceCone(cone.peak, 0.35L);
  std::vector<SeenPoint> places;
  for (std::size_t i = 0; i < shownSamples; ++i) {
    places.push_back(seen(picture, static_cast<double>(i) / 100.0 - 2.0,
                          2.0 * static_cast<double>(curve[i]) - 0.8));
  }
  return places;
}

bool areBeside(const SeenPoint& a, const SeenPoint& b, int reach) {
  return std::abs(a.x - b.x) <= reach && std::abs(a.y - b.y) <= reach;
}

// Returns true if a pixel lies on a curve or next to it. On a steep flank, a curve crosses many
// rows within one nanometre.
bool isOn(const std::vector<SeenPoint>& curve, const SeenPoint& pixel) {
  for (std::size_t i = 1; i < curve.size(); ++i) {
    const auto [left, right] = std::minmax(curve[i - 1].x, curve[i].x);
    const auto [top, bottom] = std::minmax(curve[i - 1].y, curve[i].y);
    if (pixel.x >= left - 1 && pixel.x <= right + 1 && pixel.y >= top - 1 &&
        pixel.y <= bottom + 1) {
      return true;
    }
  }
  return false;
}

TEST_P(FlatViews, DrawTheSensitivitiesOfTheCones) {
  startWith(CurvesView, GetParam(), 2, 0);
  const Picture picture = shown();
  for (std::size_t i = 0; i < coneCurves.size(); ++i) {
    const auto& [cone, colour, peak] = coneCurves[i];
    SCOPED_TRACE(cone);
    const std::vector<SeenPoint> curve = seenCurve(picture, coneCurves[i]);
    const std::vector<SeenPoint> drawn = placesOf(picture, colour);
    ASSERT_GT(drawn.size(), 100U);
    for (const SeenPoint& pixel : drawn) {
      ASSERT_TRUE(isOn(curve, pixel)) << pixel.x << "," << pixel.y;
    }
    std::vector<SeenPoint> later;
    for (std::size_t j = i + 1; j < coneCurves.size(); ++j) {
      std::ranges::copy(placesOf(picture, coneCurves[j].colour), std::back_inserter(later));
    }
    for (std::size_t sample = 0; sample < curve.size(); ++sample) {
      const SeenPoint& place = curve[sample];
      if (place.x < 1 || place.x + 1 >= picture.width) continue;
      const bool hidden = std::ranges::any_of(
          later, [&](const SeenPoint& pixel) { return areBeside(pixel, place, 2); });
      EXPECT_TRUE(hidden || isFound(picture, place, 1, colour)) << 360 + sample << " nm";
    }
  }
}

TEST_F(FlatViewsTest, MarkTheLabelledWavelengthsOutsideTheLocus) {
  startWith(DiagramView, {800, 600}, 2, 0);
  const Picture picture = shown();
  for (const ReferenceLabel& label : referenceLabels()) {
    const SeenPoint end =
        seen(picture, static_cast<double>(label.place.x), static_cast<double>(label.place.y));
    EXPECT_TRUE(isFound(picture, end, 1, lightGrey)) << label.text;
  }
}

INSTANTIATE_TEST_SUITE_P(InWindows, FlatViews,
                         testing::Values(ClientSize{400, 400}, ClientSize{800, 600}),
                         [](const auto& row) { return std::to_string(row.param.width); });

struct MergedCurves {
  const char* name;
  DWORD type;
  Colour hidden;    // of the curve that is covered
  Colour covering;  // of the curve that is drawn later
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
