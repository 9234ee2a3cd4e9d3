// The main window while it is moved, resized and reshaped: the view must show what lies beneath it.
#include <algorithm>

#include "program_run.h"
#include "x_resources.h"

namespace tintora::desktop_test {
namespace {

// Starts in greyscale over a picture of the whole screen.
class OwnWindow : public ProgramTest {
 protected:
  void begin() {
    storeValues({{"Selected", 4}, {"ColorSpace", 0}});
    start();
    cover();
  }
  void SetUp() override {
    ProgramTest::SetUp();
    begin();
    ASSERT_TRUE(viewShows(grey));
  }
  void cover() {
    const Area screen = x().screenArea();
    scene().addNoise({0, 0, screen.width, screen.height}, 7);
  }
  Area outer() const { return x().outerAreaOf(main()); }
  testing::AssertionResult outerBecomes(const Area& area) const {
    if (eventually([&] { return outer() == area; })) return testing::AssertionSuccess();
    return testing::AssertionFailure()
           << testing::PrintToString(outer()) << " instead of " << testing::PrintToString(area);
  }
};

TEST_F(OwnWindow, StartsInTheMiddleOfTheScreen) {
  const Area screen = x().screenArea();
  EXPECT_TRUE(outerBecomes({screen.width / 2 - 250, screen.height / 2 - 200, 500, 400}));
}

TEST_F(OwnWindow, ADragWithinItMovesIt) {
  const Area before = outer();
  const Area area = view();
  dragMouse(area.x + 100, area.y + 100, -230, 61, 8);
  EXPECT_TRUE(outerBecomes({before.x - 230, before.y + 61, before.width, before.height}));
  EXPECT_TRUE(viewShows(grey));
}

TEST_F(OwnWindow, TheViewIsRightDuringADrag) {
  const Area area = view();
  x().moveMouse(area.x + 100, area.y + 100);
  x().button(1, true);
  settle();
  for (int step = 1; step <= 6; ++step) {
    x().moveMouse(area.x + 100 + 40 * step, area.y + 100 - 9 * step);
    ASSERT_TRUE(eventually([&] { return view().x == area.x + 40 * step; }));
    EXPECT_TRUE(viewShows(grey)) << step;
  }
  x().button(1, false);
}

TEST_F(OwnWindow, ADragOfItsTitleMovesIt) {
  ASSERT_TRUE(dragTitle(main(), 150, -77));
  EXPECT_TRUE(viewShows(grey));
}

struct ArrowRow {
  xcb_keysym_t key;
  int x;
  int y;
};
constexpr std::array<ArrowRow, 4> arrows{
    {{XK_Left, -1, 0}, {XK_Up, 0, -1}, {XK_Right, 1, 0}, {XK_Down, 0, 1}}};

TEST_F(OwnWindow, ArrowKeysMoveIt) {
  Area expected = outer();
  for (const auto& [key, dx, dy] : arrows) {
    for (int i = 0; i < 3; ++i) {
      press(key);
      expected.x += dx;
      expected.y += dy;
      EXPECT_TRUE(outerBecomes(expected)) << key;
    }
    EXPECT_TRUE(viewShows(grey));
  }
}

TEST_F(OwnWindow, ArrowKeysWithShiftOrControlSizeIt) {
  Area expected = outer();
  for (const int held : {XK_Shift_L, XK_Shift_R, XK_Control_L, XK_Control_R}) {
    for (const auto& [key, dx, dy] : arrows) {
      press(key, {static_cast<xcb_keysym_t>(held)});
      expected.width += dx;
      expected.height += dy;
      EXPECT_TRUE(outerBecomes(expected)) << key;
    }
    EXPECT_TRUE(viewShows(grey));
  }
}

TEST_F(OwnWindow, ManyArrowsInARowAddUp) {
  Area expected = outer();
  for (int i = 0; i < 40; ++i) x().press(i % 2 == 0 ? XK_Right : XK_Down);
  expected.x += 20;
  expected.y += 20;
  EXPECT_TRUE(outerBecomes(expected));
  EXPECT_TRUE(viewShows(grey));
}

TEST_F(OwnWindow, OthersMayMoveAndSizeIt) {
  x().move(main(), 40, 60);
  ASSERT_TRUE(eventually([this] { return view().x < 60; }));
  EXPECT_TRUE(viewShows(grey));
  x().resize(main(), 801, 333);
  ASSERT_TRUE(eventually([this] { return view().width == 801 && view().height == 333; }));
  EXPECT_TRUE(viewShows(grey));
  x().resize(main(), 120, 90);
  ASSERT_TRUE(eventually([this] { return view().width == 120; }));
  EXPECT_TRUE(viewShows(grey));
}

TEST_F(OwnWindow, ManySizesInARowEndRight) {
  for (int i = 0; i < 60; ++i) x().resize(main(), 200 + 11 * i, 700 - 9 * i);
  ASSERT_TRUE(eventually([this] { return view().width == 200 + 11 * 59; }));
  EXPECT_TRUE(viewShows(grey));
}

TEST_F(OwnWindow, ItMayStandPartlyOffTheScreen) {
  const Area screen = x().screenArea();
  for (const auto& [px, py] : {std::pair{-200, -150}, {screen.width - 200, screen.height - 150}}) {
    const Area before = view();
    x().move(main(), px, py);
    ASSERT_TRUE(eventually([&] { return view() != before; }));
    settle();
    EXPECT_TRUE(viewShows(grey));
  }
}

TEST_F(OwnWindow, SpaceTakesItsFrameAndBringsItBack) {
  const Area framed = outer();
  const Area inner = view();
  press(XK_space);
  EXPECT_TRUE(eventually([&] { return view() == framed; })) << testing::PrintToString(view());
  EXPECT_TRUE(eventually([&] {
    return x().numbers(main(), "_NET_FRAME_EXTENTS") == std::vector<std::uint32_t>{0, 0, 0, 0};
  }));
  EXPECT_TRUE(viewShows(grey));
  press(XK_space);
  EXPECT_TRUE(eventually([&] { return view() == inner; })) << testing::PrintToString(view());
  EXPECT_TRUE(outerBecomes(framed));
  EXPECT_TRUE(viewShows(grey));
}

TEST_F(OwnWindow, EscBringsTheFrameBackAndDoesNothingElse) {
  const Area framed = outer();
  press(XK_Escape);
  EXPECT_TRUE(outerBecomes(framed));
  press(XK_space);
  ASSERT_TRUE(eventually([&] { return view() == framed; }));
  press(XK_Escape);
  EXPECT_TRUE(eventually([&] { return view() != framed; }));
  EXPECT_TRUE(outerBecomes(framed));
  EXPECT_TRUE(viewShows(grey));
}

TEST_F(OwnWindow, AFramelessWindowMovesAndIsDragged) {
  const Area before = outer();
  press(XK_space);
  ASSERT_TRUE(eventually([&] { return view() == before; }));
  press(XK_Right);
  EXPECT_TRUE(outerBecomes({before.x + 1, before.y, before.width, before.height}));
  dragMouse(view().x + 50, view().y + 50, 64, 32);
  EXPECT_TRUE(outerBecomes({before.x + 65, before.y + 32, before.width, before.height}));
  EXPECT_TRUE(viewShows(grey));
}

TEST_F(OwnWindow, MaximisedItCoversTheScreenAndComesBack) {
  const Area before = outer();
  const auto ask = [this](std::uint32_t action) {
    x().tellManager(main(), "_NET_WM_STATE",
                    {action, x().atom("_NET_WM_STATE_MAXIMIZED_HORZ"),
                     x().atom("_NET_WM_STATE_MAXIMIZED_VERT"), 2});
  };
  ask(1);
  const Area screen = x().screenArea();
  ASSERT_TRUE(eventually([&] { return outer().width == screen.width; }));
  settle();
  EXPECT_TRUE(viewShows(grey));
  // Arrow keys must not move it while it fills the screen.
  press(XK_Right);
  EXPECT_EQ(outer().x, 0);
  ask(0);
  EXPECT_TRUE(outerBecomes(before));
  EXPECT_TRUE(viewShows(grey));
}

TEST_F(OwnWindow, IconifiedAndBroughtBackItShowsTheView) {
  constexpr std::uint32_t iconic = 3;
  x().tellManager(main(), "WM_CHANGE_STATE", {iconic});
  ASSERT_TRUE(showing(main(), false));
  scene().draw(scene().at(0), noise(400, 300, 9), 1100, 350);
  x().activate(main());
  ASSERT_TRUE(showing(main(), true));
  EXPECT_TRUE(viewShows(grey));
}

// While the view is hidden, other programs draw straight to the screen.
TEST_F(OwnWindow, IconifiedItLeavesOtherWindowsAlone) {
  const auto redirected = [this] {
    const auto counts = resourcesOf(x(), process().id());
    const auto found = counts.find("CompositeClientWindow");
    return found == counts.end() ? 0U : found->second;
  };
  ASSERT_GT(redirected(), 0U);
  constexpr std::uint32_t iconic = 3;
  x().tellManager(main(), "WM_CHANGE_STATE", {iconic});
  ASSERT_TRUE(showing(main(), false));
  EXPECT_TRUE(eventually([&] { return redirected() == 0U; })) << redirected();
  x().activate(main());
  ASSERT_TRUE(showing(main(), true));
  EXPECT_TRUE(eventually([&] { return redirected() > 0U; }));
  EXPECT_TRUE(viewShows(grey));
}

TEST_F(OwnWindow, ItStaysAboveOtherWindows) {
  Sheet& sheet =
      scene().add({.place = {1000, 300, 400, 300}, .picture = noise(400, 300, 3), .managed = true});
  x().activate(sheet.window);
  x().move(sheet.window, view().x + 80, view().y + 90);
  x().restack(sheet.window, XCB_STACK_MODE_ABOVE);
  ASSERT_TRUE(eventually([&] { return common(x().areaOf(sheet.window), view()).height > 0; }));
  settle();
  const auto stack = x().children(x().root());
  const auto place = [&](xcb_window_t window) {
    return std::ranges::find(stack, x().topLevelOf(window));
  };
  EXPECT_GT(place(main()), place(sheet.window));
}

}  // namespace
}  // namespace tintora::desktop_test
