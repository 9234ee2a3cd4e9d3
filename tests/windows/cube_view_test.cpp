// Tests the RGB cube in the real window, turned with the mouse.
#include <ostream>
#include <string>
#include <vector>

#include "colour_space_run.h"
#include "expected_effects.h"
#include "ink.h"
#include "picture.h"
#include "seen_cube.h"
#include "stored_values.h"

namespace tintora::windows_test {
namespace {

using namespace expected;

constexpr double degreesPerPixel = 0.25;

Turn turnOf(int right, int down) {
  return {.right = right * degreesPerPixel, .down = down * degreesPerPixel};
}

class CubeView : public ColourSpaceTest {
 protected:
  // At a severity of 0 the transform changes nothing.
  void startUntransformed(const ClientSize& size = {}) {
    startWith(ColourSpaceView::CubeView, size, 2, 0);
  }
};

TEST_F(CubeView, FillsItsFrameWithoutATransform) {
  for (const ClientSize& size : {ClientSize{400, 400}, ClientSize{800, 600}}) {
    startUntransformed(size);
    const Picture picture = shown();
    EXPECT_TRUE(showsSolidCube(picture, {}));
    EXPECT_EQ(picture.at(5, size.height - 5), background);
    EXPECT_EQ(picture.at(size.width - 5, size.height - 5), background);
    end();
  }
}

struct TransformRow {
  const char* name;
  DWORD type;
  Weights weights;
  DWORD severity = 50;
  DWORD algorithm = 0;
};

void PrintTo(const TransformRow& row, std::ostream* out) {
  *out << row.name;
}

class TransformedCube : public CubeView, public testing::WithParamInterface<TransformRow> {};

TEST_P(TransformedCube, IsDeformedWhileItsFrameStays) {
  const auto& [name, type, weights, severity, algorithm] = GetParam();
  storeValues({{"Option", algorithm}});
  startWith(ColourSpaceView::CubeView, {800, 600}, type, severity);
  drag(MK_LBUTTON, {{500, 500}, {300, 400}});
  const CubeForm form{.turns = {turnOf(-200, -100)}, .weights = weights};
  const Picture half = shown();
  EXPECT_TRUE(showsSolidCube(half, form));
  turnWheel(true, 10);
  const Picture full = shown();
  EXPECT_TRUE(showsFrame(full, form));
  EXPECT_FALSE(showsSolidCube(full, form));
}

INSTANTIATE_TEST_SUITE_P(By, TransformedCube,
                         testing::Values(TransformRow{"Protan", 1, juddProtan(0.5)},
                                         TransformRow{"Deutan", 2, juddDeutan(0.5)},
                                         TransformRow{"Tritan", 3, juddTritan(0.5)},
                                         // Its blue corner is below the frame.
                                         TransformRow{"Yang", 2, yangDeutanAt60(), 60, 1}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(CubeView, ShowsTheSimulationAlsoWhileTheViewIsCorrected) {
  startWith(ColourSpaceView::CubeView);
  const Picture simulated = shown();
  constexpr int daltonize = 776;
  constexpr int inverse = 777;
  for (const int command : {daltonize, inverse}) {
    choose(command);
    const Picture corrected = shown();
    const Bounds below{0, 40, 400, 400};
    EXPECT_TRUE(areAlike(part(corrected, below), part(simulated, below), 0)) << command;
  }
}

// Programs that drive others may send messages, which the desktop handles before it returns the
// next posted one.
TEST_F(CubeView, FollowsAKeyThatIsSent) {
  startUntransformed();
  const Picture before = shown();
  SendMessageA(windows().main, WM_KEYDOWN, VK_PRIOR, 0);
  EXPECT_TRUE(eventually([&] {
    return screenPicture(clientBoundsOf(windows().colourSpace)).pixels != before.pixels;
  }));
}

TEST_F(CubeView, FollowsTheMouse) {
  startUntransformed();
  drag(MK_LBUTTON, {{200, 200}, {260, 200}, {260, 320}, {220, 300}});
  EXPECT_TRUE(
      showsSolidCube(shown(), {.turns = {turnOf(60, 0), turnOf(0, 120), turnOf(-40, -20)}}));
}

TEST_F(CubeView, IsRolledByTheHorizontalPartOfADragWithShift) {
  startUntransformed();
  drag(MK_LBUTTON | MK_SHIFT, {{200, 200}, {280, 350}});
  EXPECT_TRUE(showsSolidCube(shown(), {.turns = {{.clockwise = 20.0}}}));
}

// Pressing the right button does not start a locked drag, and releasing it opens the menu.
TEST_F(CubeView, IsTurnedAboutTheAxisOfALockedDragsFirstMove) {
  startUntransformed();
  mouse(WM_LBUTTONDOWN, MK_LBUTTON, 200, 200);
  mouse(WM_LBUTTONUP, 0, 200, 200);
  mouse(WM_MOUSEMOVE, MK_RBUTTON, 240, 210);
  mouse(WM_MOUSEMOVE, MK_RBUTTON, 250, 300);
  EXPECT_TRUE(showsSolidCube(shown(), {.turns = {turnOf(50, 0)}}));
  // Later drags keep the axis until the left button is pressed again.
  mouse(WM_MOUSEMOVE, 0, 200, 200);
  mouse(WM_MOUSEMOVE, MK_RBUTTON, 210, 290);
  EXPECT_TRUE(showsSolidCube(shown(), {.turns = {turnOf(60, 0)}}));
  mouse(WM_LBUTTONDOWN, MK_LBUTTON, 200, 200);
  mouse(WM_LBUTTONUP, 0, 200, 200);
  mouse(WM_MOUSEMOVE, MK_RBUTTON, 210, 290);
  EXPECT_TRUE(showsSolidCube(shown(), {.turns = {turnOf(60, 0), turnOf(0, 90)}}));
}

TEST_F(CubeView, IsTurnedVerticallyByALockedDragThatBeginsDiagonally) {
  startUntransformed();
  for (const int direction : {1, -1}) {
    mouse(WM_LBUTTONDOWN, MK_LBUTTON, 200, 200);
    mouse(WM_LBUTTONUP, 0, 200, 200);
    mouse(WM_MOUSEMOVE, MK_RBUTTON, 200 + 60 * direction, 260);
    mouse(WM_MOUSEMOVE, 0, 200, 200);
  }
  EXPECT_TRUE(showsSolidCube(shown(), {.turns = {turnOf(0, 120)}}));
}

TEST_F(CubeView, IsNotTurnedByMovesWithoutAButton) {
  startUntransformed();
  mouse(WM_MOUSEMOVE, 0, 100, 300);
  mouse(WM_MOUSEMOVE, 0, 350, 120);
  EXPECT_TRUE(showsSolidCube(shown(), {}));
  // Post both at once, so that the desktop's own mouse moves cannot come between them.
  mouse(WM_MOUSEMOVE, 0, 350, 120);
  mouse(WM_MOUSEMOVE, MK_LBUTTON, 390, 120);
  EXPECT_TRUE(showsSolidCube(shown(), {.turns = {turnOf(40, 0)}}));
}

TEST_F(CubeView, IsLeftAsItWasTurnedByTheOtherViews) {
  startWith(ColourSpaceView::DiagramView);
  const Picture diagram = shown();
  press('E');
  const Picture curves = shown();
  press('R');
  drag(MK_LBUTTON, {{200, 200}, {300, 240}});
  const Picture cube = shown();
  EXPECT_TRUE(showsFrame(cube, {.turns = {turnOf(100, 40)}}));
  press('C');
  drag(MK_LBUTTON, {{200, 200}, {300, 240}});
  EXPECT_TRUE(areAlike(shown(), diagram, 0));
  press('E');
  EXPECT_TRUE(areAlike(shown(), curves, 0));
  press('R');
  EXPECT_TRUE(areAlike(shown(), cube, 0));
}

TEST_F(CubeView, StaysTurnedInAWindowOfAnotherSize) {
  startUntransformed();
  drag(MK_LBUTTON, {{200, 200}, {300, 240}});
  const CubeForm form{.turns = {turnOf(100, 40)}};
  EXPECT_TRUE(showsSolidCube(shown(), form));
  for (const ClientSize& size : {ClientSize{800, 600}, ClientSize{350, 500}}) {
    resize(size);
    EXPECT_TRUE(showsSolidCube(shown(), form));
  }
}

}  // namespace
}  // namespace tintora::windows_test
