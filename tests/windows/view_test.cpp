// What the magnifier and the colour space window show as the main window moves.
#include <ostream>
#include <string>

#include "program_run.h"
#include "stored_values.h"

namespace tintora::windows_test {
namespace {

class View : public UndrawnTest {
 protected:
  Bounds source() const { return boundsOf(lastCall(MagnifierCall::SetWindowSource).source); }

  // Returns the expected source: from the client area's left top corner to the window's right lower
  // corner.
  Bounds sourceUnder(HWND window) const {
    const Bounds client = clientBoundsOf(window);
    const Bounds outer = boundsOf(window);
    return {client.left, client.top, outer.right, outer.bottom};
  }

  void expectToFollow() {
    EXPECT_EQ(source(), sourceUnder(windows().main));
    EXPECT_EQ(boundsOf(windows().magnifier), clientBoundsOf(windows().main));
  }

  // Moves the window from outside the program, as the desktop does for a user.
  void moveMain(const Bounds& bounds) {
    SetWindowPos(windows().main, nullptr, bounds.left, bounds.top, bounds.width(), bounds.height(),
                 SWP_NOZORDER | SWP_NOACTIVATE);
    settle();
  }
};

TEST_F(View, ShowsTheAreaUnderTheMainWindow) {
  start();
  expectToFollow();
}

TEST_F(View, FollowsTheMainWindow) {
  start();
  for (const Bounds& bounds : {Bounds{10, 20, 310, 220}, Bounds{200, 150, 1000, 700},
                               Bounds{-50, -30, 400, 300}, Bounds{1000, 600, 1500, 1000}}) {
    moveMain(bounds);
    EXPECT_EQ(boundsOf(windows().main), bounds);
    expectToFollow();
  }
}

TEST_F(View, FollowsWithoutAFrame) {
  start();
  press(' ');
  expectToFollow();
  moveMain({50, 60, 250, 260});
  expectToFollow();
}

TEST_F(View, IsTheWholeScreenWhenMaximised) {
  start();
  send(windows().main, WM_SYSCOMMAND, SC_MAXIMIZE);
  const Bounds client = clientBoundsOf(windows().main);
  EXPECT_EQ(source(),
            (Bounds{client.left, client.top, screenBounds().right, screenBounds().bottom}));
  const Bounds magnifier = boundsOf(windows().magnifier);
  EXPECT_EQ(magnifier.width(), screenBounds().width());
  EXPECT_EQ(magnifier.height(), screenBounds().height());
  send(windows().main, WM_SYSCOMMAND, SC_RESTORE);
  expectToFollow();
}

TEST_F(View, IsTheWholeScreenInFullScreen) {
  start();
  const Bounds before = boundsOf(windows().main);
  press('F');
  EXPECT_EQ(source(), screenBounds());
  press('F');
  EXPECT_EQ(boundsOf(windows().main), before);
  expectToFollow();
}

struct NudgeRow {
  const char* name;
  int key;
  int held;
  Bounds change;
};

void PrintTo(const NudgeRow& row, std::ostream* out) {
  *out << row.name;
}

constexpr std::array nudgeRows{
    NudgeRow{"Left", VK_LEFT, 0, {-1, 0, -1, 0}},
    NudgeRow{"Up", VK_UP, 0, {0, -1, 0, -1}},
    NudgeRow{"Right", VK_RIGHT, 0, {1, 0, 1, 0}},
    NudgeRow{"Down", VK_DOWN, 0, {0, 1, 0, 1}},
    NudgeRow{"LeftShiftLeft", VK_LEFT, VK_LSHIFT, {0, 0, -1, 0}},
    NudgeRow{"RightShiftUp", VK_UP, VK_RSHIFT, {0, 0, 0, -1}},
    NudgeRow{"LeftControlRight", VK_RIGHT, VK_LCONTROL, {0, 0, 1, 0}},
    NudgeRow{"RightControlDown", VK_DOWN, VK_RCONTROL, {0, 0, 0, 1}},
};

class Nudges : public View, public testing::WithParamInterface<NudgeRow> {};

TEST_P(Nudges, MoveOrSizeByAPixel) {
  const NudgeRow& row = GetParam();
  start();
  const Bounds before = boundsOf(windows().main);
  row.held == 0 ? press(row.key) : pressHolding(row.held, row.key);
  EXPECT_EQ(boundsOf(windows().main),
            (Bounds{before.left + row.change.left, before.top + row.change.top,
                    before.right + row.change.right, before.bottom + row.change.bottom}));
  expectToFollow();
}

INSTANTIATE_TEST_SUITE_P(By, Nudges, testing::ValuesIn(nudgeRows),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(View, StaysWhereItIsWhenMaximised) {
  start();
  send(windows().main, WM_SYSCOMMAND, SC_MAXIMIZE);
  const Bounds before = boundsOf(windows().main);
  press(VK_LEFT);
  pressHolding(VK_LSHIFT, VK_UP);
  EXPECT_EQ(boundsOf(windows().main), before);
}

class Dragging : public View {
 protected:
  void drag(HWND window, int x, int y) {
    const Bounds client = clientBoundsOf(window);
    moveCursor(client.left + 20, client.top + 30);
    send(window, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(20, 30));
    moveCursor(client.left + 20 + x, client.top + 30 + y);
    send(window, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(20 + x, 30 + y));
  }
};

TEST_F(Dragging, MovesTheMainWindowUntilTheButtonIsLetGo) {
  start();
  const Bounds before = boundsOf(windows().main);
  drag(windows().main, 37, -21);
  const Bounds after{before.left + 37, before.top - 21, before.right + 37, before.bottom - 21};
  EXPECT_EQ(boundsOf(windows().main), after);
  expectToFollow();
  send(windows().main, WM_LBUTTONUP);
  moveCursor(600, 300);
  send(windows().main, WM_MOUSEMOVE);
  EXPECT_EQ(boundsOf(windows().main), after);
}

TEST_F(Dragging, MovesOnlyTheControlWindow) {
  start();
  press('H');
  const Bounds main = boundsOf(windows().main);
  const Bounds before = boundsOf(windows().control);
  drag(windows().control, -50, 40);
  EXPECT_EQ(boundsOf(windows().control),
            (Bounds{before.left - 50, before.top + 40, before.right - 50, before.bottom + 40}));
  EXPECT_EQ(boundsOf(windows().main), main);
}

using Control = View;

TEST_F(Control, IsShownInTheMiddleOfTheMainWindow) {
  start();
  moveMain({100, 50, 701, 551});
  press('H');
  const Bounds middle{(100 + 701) / 2 - 200, (50 + 551) / 2 - 60, (100 + 701) / 2 + 200,
                      (50 + 551) / 2 + 60};
  EXPECT_EQ(boundsOf(windows().control), middle);
  EXPECT_EQ(titleOf(windows().control), "Hit Transparent, Press H to exit");
}

TEST_F(Control, NamesFullScreen) {
  start();
  press('F');
  EXPECT_TRUE(eventually(
      [this] { return titleOf(windows().control) == "Full screen mode, press F to exit"; }));
  press('F');
  press('H');
  EXPECT_TRUE(eventually(
      [this] { return titleOf(windows().control) == "Hit Transparent, Press H to exit"; }));
}

TEST_F(Control, TakesKeysAndTheWheel) {
  start();
  press('H');
  send(windows().control, WM_KEYDOWN, 'D');
  send(windows().control, WM_MOUSEWHEEL, MAKEWPARAM(0, static_cast<WORD>(-WHEEL_DELTA)));
  EXPECT_EQ(title(), " Simulation - Deuteranomalous 95% severity");
  send(windows().control, WM_KEYDOWN, 'H');
  EXPECT_FALSE(IsWindowVisible(windows().control));
}

}  // namespace
}  // namespace tintora::windows_test
