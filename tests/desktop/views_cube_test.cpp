// The RGB cube on the screen while it is transformed and turned.
#include <cmath>

#include "views_run.h"

namespace tintora::desktop_test {
namespace {

using expected::juddDeutan;
using expected::juddProtan;
using expected::juddTritan;

Turn turnOf(int right, int down) {
  return {.right = right * degreesPerPixel, .down = down * degreesPerPixel};
}

testing::AssertionResult isNear(const Colour& seen, const Colour& expected) {
  for (std::size_t i = 0; i < 3; ++i) {
    if (std::abs(seen[i] - expected[i]) <= 4) continue;
    return testing::AssertionFailure()
           << testing::PrintToString(seen) << " instead of " << testing::PrintToString(expected);
  }
  return testing::AssertionSuccess();
}

class CubeView : public ViewsTest {
 protected:
  // Compares every pixel of the window except the title's.
  testing::AssertionResult cubeIs(const Weights& weights, const Turns& turns) {
    const Picture picture = shown();
    return shows(picture, cubeShapes(weights, turns), {titleArea()});
  }
};

TEST_F(CubeView, FillsItsFrameWithoutATransform) {
  for (const PictureSize& size : pictureSizes) {
    startWith(View::Cube, size);
    EXPECT_TRUE(cubeIs(untransformed, {}));
    drag(1, {{200, 200}, {300, 240}});
    EXPECT_TRUE(cubeIs(untransformed, {turnOf(100, 40)}));
    end();
  }
}

// The edges of the front side are 113.7 pixels from the middle:
// 200 / tan 15 degrees * (4 / 5.5) / (5.5 - 4 / 5.5).
TEST_F(CubeView, HasTheCornersOfItsColours) {
  struct Front {
    Colour leftTop;
    Colour rightTop;
    Colour leftBottom;
    Colour rightBottom;
  };
  constexpr Colour black{0, 0, 0};
  constexpr Colour red{255, 0, 0};
  constexpr Colour green{0, 255, 0};
  constexpr Colour blue{0, 0, 255};
  constexpr Colour yellow{255, 255, 0};
  constexpr Colour magenta{255, 0, 255};
  constexpr Colour cyan{0, 255, 255};
  constexpr Colour white{255, 255, 255};
  startWith(View::Cube);
  // Each is turned by another 90 degrees to the right.
  for (const Front& front : {Front{yellow, green, red, black}, Front{white, yellow, magenta, red},
                             Front{cyan, white, blue, magenta}, Front{green, cyan, black, blue}}) {
    const Picture picture = shown();
    EXPECT_TRUE(isNear(colourOf(picture.at(88, 88)), front.leftTop));
    EXPECT_TRUE(isNear(colourOf(picture.at(312, 88)), front.rightTop));
    EXPECT_TRUE(isNear(colourOf(picture.at(88, 312)), front.leftBottom));
    EXPECT_TRUE(isNear(colourOf(picture.at(312, 312)), front.rightBottom));
    EXPECT_EQ(picture.at(84, 200) & 0xFFFFFFU, viewBackground);
    EXPECT_EQ(picture.at(316, 200) & 0xFFFFFFU, viewBackground);
    drag(1, {{20, 200}, {380, 200}});
  }
}

class TransformedCube : public CubeView, public testing::WithParamInterface<TransformRow> {};

TEST_P(TransformedCube, IsDeformedWithinItsFrame) {
  const auto& [name, type, weights] = GetParam();
  startWith(View::Cube, {}, type, 50);
  EXPECT_TRUE(cubeIs(weights(0.5), {}));
  drag(1, {{180, 180}, {260, 140}});
  EXPECT_TRUE(cubeIs(weights(0.5), {turnOf(80, -40)}));
  stepSeverity(true, 10);
  EXPECT_TRUE(cubeIs(weights(1), {turnOf(80, -40)}));
}

INSTANTIATE_TEST_SUITE_P(By, TransformedCube,
                         testing::Values(TransformRow{"Protan", 1, &juddProtan},
                                         TransformRow{"Deutan", 2, &juddDeutan},
                                         TransformRow{"Tritan", 3, &juddTritan}),
                         [](const auto& row) { return std::string(row.param.name); });

// Returns true if a colour is within two pixels of a place.
bool hasColourNear(const Picture& picture, int x, int y, const Colour& colour) {
  for (int row = y - 2; row <= y + 2; ++row) {
    for (int column = x - 2; column <= x + 2; ++column) {
      if (isNear(colourOf(picture.at(column, row)), colour)) return true;
    }
  }
  return false;
}

// The spectral model takes blue to (0.2233, -0.1032, 1.0005), below the frame. The corner is at
// (0.5534, -1.2064, 1.001), which is 48 pixels to the right of the middle and 105 below it.
TEST_F(CubeView, HasACornerOutsideItsFrameByTheSpectralModel) {
  startStored({{"Selected", 2}, {"ScrollPc", 60}, {"Option", 1}, {"View", 703}, {"ColorSpace", 1}},
              {});
  const Picture picture = shown();
  EXPECT_TRUE(hasColourNear(picture, 248, 305, {56, 0, 255}));
  EXPECT_EQ(picture.at(248, 309) & 0xFFFFFFU, viewBackground);
}

TEST_F(CubeView, IsFlatForADeuteranopeAtBothSizes) {
  for (const PictureSize& size : pictureSizes) {
    startWith(View::Cube, size, 2, 100);
    EXPECT_TRUE(cubeIs(juddDeutan(1), {}));
    drag(1, {{100, 300}, {290, 200}});
    EXPECT_TRUE(cubeIs(juddDeutan(1), {turnOf(190, -100)}));
    end();
  }
}

TEST_F(CubeView, ShowsTheSimulationAlsoWhileTheViewIsCorrected) {
  startWith(View::Cube, {}, 2, 60);
  for (const int key : {XK_a, XK_s}) {
    press(static_cast<xcb_keysym_t>(key));
    EXPECT_TRUE(cubeIs(juddDeutan(0.6), {}));
  }
  press(XK_g);
  ASSERT_TRUE(titleBecomes("Greyscale"));
  EXPECT_TRUE(cubeIs(juddDeutan(0.6), {}));
}

TEST_F(CubeView, FollowsEveryStepOfADrag) {
  startWith(View::Cube);
  drag(1, {{200, 200}, {260, 200}, {260, 320}, {220, 300}});
  EXPECT_TRUE(cubeIs(untransformed, {turnOf(60, 0), turnOf(0, 120), turnOf(-40, -20)}));
}

TEST_F(CubeView, IsRolledByTheHorizontalPartOfADragWithShift) {
  startWith(View::Cube);
  focus(colourSpace());
  x().key(XK_Shift_L, true);
  drag(1, {{200, 200}, {280, 350}});
  x().key(XK_Shift_L, false);
  EXPECT_TRUE(cubeIs(untransformed, {{.clockwise = 80 * degreesPerPixel}}));
}

// Releasing the right button opens the menu over the window.
class LockedDrag : public CubeView {
 protected:
  void lockedDrag(const std::vector<Stop>& stops) {
    drag(3, stops);
    ASSERT_TRUE(eventually([this] { return !openMenus().empty(); }));
    x().press(XK_Escape);
    ASSERT_TRUE(eventually([this] { return openMenus().empty(); }));
    settle();
  }
};

TEST_F(LockedDrag, KeepsToTheAxisOfItsFirstMoveUntilTheNextLeftPress) {
  startWith(View::Cube);
  drag(1, {{200, 200}});
  lockedDrag({{200, 200}, {240, 210}, {250, 300}});
  EXPECT_TRUE(cubeIs(untransformed, {turnOf(50, 0)}));
  lockedDrag({{200, 200}, {210, 290}});
  EXPECT_TRUE(cubeIs(untransformed, {turnOf(60, 0)}));
  drag(1, {{200, 200}});
  lockedDrag({{200, 200}, {210, 290}});
  EXPECT_TRUE(cubeIs(untransformed, {turnOf(60, 0), turnOf(0, 90)}));
}

TEST_F(LockedDrag, ThatBeginsDiagonallyTurnsVertically) {
  startWith(View::Cube);
  drag(1, {{200, 200}});
  lockedDrag({{200, 200}, {260, 260}});
  EXPECT_TRUE(cubeIs(untransformed, {turnOf(0, 60)}));
}

TEST_F(CubeView, IsNotTurnedByMovesWithoutAButton) {
  startWith(View::Cube);
  moveInside({100, 300});
  moveInside({350, 120});
  EXPECT_TRUE(cubeIs(untransformed, {}));
  drag(1, {{350, 120}, {390, 120}});
  EXPECT_TRUE(cubeIs(untransformed, {turnOf(40, 0)}));
}

TEST_F(CubeView, IsNotTurnedByMovesOutsideItsWindow) {
  startWith(View::Cube);
  drag(1, {{200, 200}, {240, 200}, {240, 460}, {300, 480}});
  EXPECT_TRUE(cubeIs(untransformed, {turnOf(40, 0)}));
}

TEST_F(CubeView, IsLeftAsItWasTurnedByTheOtherViews) {
  startWith(View::Diagram, {}, 2, 60);
  const Picture diagram = shown();
  turnTo(View::Curves);
  const Picture curves = shown();
  turnTo(View::Cube);
  drag(1, {{200, 200}, {300, 240}});
  const Picture cube = shown();
  EXPECT_TRUE(shows(cube, cubeShapes(juddDeutan(0.6), {turnOf(100, 40)}), {titleArea()}));
  turnTo(View::Diagram);
  drag(1, {{200, 200}, {300, 240}});
  EXPECT_TRUE(comesToShow(diagram));
  turnTo(View::Curves);
  EXPECT_TRUE(comesToShow(curves));
  turnTo(View::Cube);
  EXPECT_TRUE(comesToShow(cube));
}

}  // namespace
}  // namespace tintora::desktop_test
