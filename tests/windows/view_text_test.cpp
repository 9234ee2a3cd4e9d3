// The text in the colour space window, with D3DX and without.
#include <array>
#include <ostream>
#include <string>
#include <vector>

#include "colour_space_run.h"
#include "ink.h"
#include "painted_page.h"
#include "picture.h"
#include "seen_plane.h"
#include "without_libraries.h"

namespace tintora::windows_test {
namespace {

// Succeeds if two pictures are alike but for smoothing, which Wine's D3DX adds.
testing::AssertionResult isLikeD3dx(const Picture& withoutD3dx, const Picture& withD3dx) {
  const Likeness likeness = likenessOf(withoutD3dx, withD3dx);
  const bool isNear = likeness.x >= -1 && likeness.x <= 0 && likeness.y >= -1 && likeness.y <= 0;
  if (isNear && likeness.correlation > 0.75) return testing::AssertionSuccess();
  return testing::AssertionFailure()
         << likeness.x << "," << likeness.y << " away, correlation " << likeness.correlation;
}

class Labels : public ColourSpaceTest {
 protected:
  // Expects text in each area, and the same text with and without D3DX.
  void expectLabels(ColourSpaceView view, const std::vector<Bounds>& areas) {
    const Picture withD3dx = pictureOf(view);
    const WithoutLibraries without(d3dxLibraries());
    const Picture withoutD3dx = pictureOf(view);
    EXPECT_FALSE(areAlike(withoutD3dx, withD3dx, 0));
    for (const Bounds& area : areas) {
      const Picture label = part(withoutD3dx, area);
      EXPECT_GT(inkOf(label).amount, 30.0) << area.left << "," << area.top;
      EXPECT_TRUE(isLikeD3dx(label, part(withD3dx, area))) << area.left << "," << area.top;
    }
  }

 private:
  Picture pictureOf(ColourSpaceView view) {
    startWith(view);
    Picture picture = shown();
    end();
    return picture;
  }
};

TEST_F(Labels, OfTheCurvesLookTheSameWithoutD3dx) {
  expectLabels(CurvesView, {{0, 290, 400, 320}});
}

// Compares the labels in areas that no line of the diagram crosses.
TEST_F(Labels, OfTheDiagramLookTheSameWithoutD3dx) {
  const Picture size{400, 400, {}};
  std::vector<Bounds> areas;
  for (const auto& [nanometres, x, y] : spectralColours) {
    const SeenPoint place = seenChromaticity(size, x, y);
    if (nanometres < 520) {
      areas.push_back({place.x - 24, place.y - 5, place.x - 8, place.y + 9});
    } else if (nanometres == 520) {
      areas.push_back({place.x - 10, place.y - 16, place.x + 14, place.y - 4});
    } else {
      areas.push_back({place.x + 6, place.y - 12, place.x + 30, place.y});
    }
  }
  expectLabels(DiagramView, areas);
}

constexpr Bounds titleArea{10, 8, 400, 30};

enum class TextBy { D3dx, Desktop };

class Pages : public ColourSpaceTest, public testing::WithParamInterface<TextBy> {
 protected:
  void expectAlike(const Picture& actual, const Picture& expected) {
    const Likeness likeness = likenessOf(expected, actual);
    const bool isExact = GetParam() == TextBy::Desktop;
    EXPECT_GE(likeness.x, isExact ? 0 : -1);
    EXPECT_LE(likeness.x, 0);
    EXPECT_GE(likeness.y, isExact ? 0 : -1);
    EXPECT_LE(likeness.y, 0);
    EXPECT_GT(likeness.correlation, isExact ? 0.95 : 0.75);
  }
  std::vector<std::string> missing() const {
    return GetParam() == TextBy::D3dx ? std::vector<std::string>() : d3dxLibraries();
  }
};

TEST_P(Pages, ShowTheHelpAndNoTitle) {
  const WithoutLibraries without(missing());
  for (const ClientSize& size : {ClientSize{400, 400}, ClientSize{300, 200}}) {
    startWith(HelpView, size);
    const Picture actual = shown();
    const Picture expected = helpPage(size);
    expectAlike(actual, expected);
    for (const Bounds& strip : helpStrips(size)) {
      if (strip.bottom > size.height) break;
      expectAlike(part(actual, strip), part(expected, strip));
    }
    end();
  }
}

TEST_P(Pages, ShowTheMainWindowsTitleWithAShadow) {
  const WithoutLibraries without(missing());
  for (const ColourSpaceView view : {CurvesView, CubeView, DiagramView}) {
    startWith(view);
    press('D');
    const auto expectTitle = [&] {
      ASSERT_FALSE(title().empty());
      expectAlike(part(shown(), titleArea), part(titlePage({400, 400}, title()), titleArea));
    };
    expectTitle();
    turnWheel(false, 8);
    expectTitle();
    press('O');
    expectTitle();
    end();
  }
}

INSTANTIATE_TEST_SUITE_P(By, Pages, testing::Values(TextBy::D3dx, TextBy::Desktop),
                         [](const auto& row) {
                           return std::string(row.param == TextBy::D3dx ? "D3dx" : "Desktop");
                         });

// Without Direct3D the view stays empty and everything else works.
class WithoutDirect3d : public ColourSpaceTest {};

TEST_F(WithoutDirect3d, EverythingElseWorks) {
  const WithoutLibraries without({"d3d9"});
  startWith(ColourSpaceView::CubeView);
  for (const char key : {'E', 'C', 'R'}) press(key);
  drag(MK_LBUTTON, {{200, 200}, {260, 230}});
  resize({300, 500});
  turnWheel(false, 3);
  EXPECT_EQ(titleOf(windows().colourSpace), "RGB Cube");
  EXPECT_NE(title().find("85%"), std::string::npos) << title();
  EXPECT_NE(shown().at(10, 490), background);
  end();
  EXPECT_EQ(process().result(), 0U);
}

}  // namespace
}  // namespace tintora::windows_test
