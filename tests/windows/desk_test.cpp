// Events of a real desk: sessions that end, a mouse that leaves the window, messages that stand for
// several.
#include <ostream>
#include <string>

#include "picture.h"
#include "program_run.h"
#include "stored_values.h"

namespace tintora::windows_test {
namespace {

using Desk = UndrawnTest;

TEST_F(Desk, SettingsAreSavedWhenTheSessionEnds) {
  start();
  choose(2);
  EXPECT_NE(SendMessageA(windows().main, WM_QUERYENDSESSION, 0, 0), 0);
  SendMessageA(windows().main, WM_ENDSESSION, TRUE, 0);
  // The desktop may end the process at this point.
  EXPECT_EQ(storedValues()["Selected"], 2U);
}

TEST_F(Desk, NothingIsSavedWhenTheSessionGoesOn) {
  start();
  choose(2);
  SendMessageA(windows().main, WM_QUERYENDSESSION, 0, 0);
  SendMessageA(windows().main, WM_ENDSESSION, FALSE, 0);
  EXPECT_TRUE(storedValues().empty());
  EXPECT_TRUE(process().isRunning());
}

TEST_F(Desk, TheLensHasSquareCorners) {
  constexpr std::uint32_t doNotRound = 1;
  start();
  EXPECT_EQ(magnifierRecord().corners, doNotRound);
}

TEST_F(Desk, ADropStaysWithTheDesktop) {
  start();
  EXPECT_EQ(ask(DropFile, reinterpret_cast<WPARAM>(windows().main)), 1U);
}

TEST_F(Desk, OneWheelMessageIsOneStepHoweverFar) {
  start();
  for (const int travel : {-120, -360, -30, -1}) {
    send(windows().main, WM_MOUSEWHEEL, MAKEWPARAM(0, static_cast<WORD>(travel)));
  }
  EXPECT_EQ(title(), " Simulation - Protanomalous 80% severity");
  for (const int travel : {120, 480, 40, 1}) {
    send(windows().main, WM_MOUSEWHEEL, MAKEWPARAM(0, static_cast<WORD>(travel)));
  }
  EXPECT_EQ(title(), " Simulation - Protanope 100% severity");
}

// Windows resizes in a message loop of its own, in which the program gets no turn.
TEST_F(Desk, TheViewIsAimedWhileTheFrameIsSized) {
  start();
  ShowWindow(windows().main, SW_HIDE);
  settle();
  const std::uint64_t before = magnifierRecord().calls;
  RECT bounds{};
  SendMessageA(windows().main, WM_SIZING, WMSZ_RIGHT, reinterpret_cast<LPARAM>(&bounds));
  EXPECT_GT(magnifierRecord().calls, before);
}

TEST_F(Desk, AKeyThatIsLetGoOpensNoMenu) {
  start();
  send(windows().main, WM_SYSKEYDOWN, VK_F10);
  send(windows().main, WM_KEYUP, VK_F10);
  EXPECT_EQ(threadOf(windows().main).flags & (GUI_INMENUMODE | GUI_SYSTEMMENUMODE), 0U);
}

TEST_F(Desk, KeysOutsideTheProgramsRangeAreLeftToTheDesktop) {
  constexpr int first = 9;
  constexpr int last = 189;
  start();
  for (const int key : {first, last}) {
    magnifierRecord().unhandledKey = 0;
    press(key);
    EXPECT_EQ(magnifierRecord().unhandledKey, 0U) << key;
  }
  for (const int key : {first - 1, last + 1}) {
    press(key);
    EXPECT_EQ(magnifierRecord().unhandledKey, static_cast<std::uint32_t>(key));
  }
}

TEST_F(Desk, ScreenChangesFitFullScreenAgain) {
  start();
  press('F');
  SetWindowPos(windows().main, nullptr, 0, 0, 800, 600, SWP_NOZORDER | SWP_NOACTIVATE);
  send(windows().main, WM_DISPLAYCHANGE, 32, MAKELPARAM(1280, 800));
  EXPECT_EQ(boundsOf(windows().main), screenBounds());
  EXPECT_EQ(boundsOf(lastCall(MagnifierCall::SetWindowSource).source), screenBounds());
}

// Moves the mouse as a user does, through the desktop's own input queue.
class Mouse : public UndrawnTest {
 protected:
  static void button(DWORD change) { mouse_event(change, 0, 0, 0, 0); }
  void letGo() {
    button(MOUSEEVENTF_LEFTUP);
    ASSERT_TRUE(eventually([this] { return captured() == nullptr; }));
  }
  // Waits, because a mouse move passes through the desktop first.
  testing::AssertionResult eventuallyAt(const Bounds& bounds) const {
    if (eventually([&] { return boundsOf(windows().main) == bounds; })) {
      return testing::AssertionSuccess();
    }
    return testing::AssertionFailure() << "at " << boundsOf(windows().main) << ", not " << bounds;
  }
  HWND captured() const { return threadOf(windows().main).hwndCapture; }
  void startApart() {
    storeValues({{"ColorSpace", 0}});
    start();
    SetWindowPos(windows().main, nullptr, 100, 100, 300, 200, SWP_NOZORDER | SWP_NOACTIVATE);
    settle();
  }
  void TearDown() override {
    button(MOUSEEVENTF_LEFTUP);
    ProgramTest::TearDown();
  }
};

TEST_F(Mouse, ADragGoesOnOutsideTheWindowAndEndsThere) {
  startApart();
  moveCursor(200, 200);
  beginDrag();
  moveCursor(800, 500);
  EXPECT_TRUE(eventuallyAt({700, 400, 1000, 600}));
  letGo();
  moveCursor(750, 450);
  moveCursor(760, 470);
  EXPECT_EQ(boundsOf(windows().main), (Bounds{700, 400, 1000, 600}));
}

TEST_F(Mouse, ADragEndsWhenTheDesktopTakesTheMouse) {
  startApart();
  moveCursor(200, 200);
  beginDrag();
  send(windows().main, WM_CANCELMODE);
  moveCursor(220, 230);
  EXPECT_EQ(boundsOf(windows().main), (Bounds{100, 100, 400, 300}));
}

TEST_F(Mouse, IsTheFramesEvenIfTheControlWouldKeepIt) {
  magnifierRecord().habits.keepsMouse = true;
  startApart();
  moveCursor(200, 200);
  beginDrag();
  moveCursor(230, 240);
  EXPECT_TRUE(eventuallyAt({130, 140, 430, 340}));
}

TEST_F(Mouse, TurnsTheCubeOnlyOverItsWindow) {
  storeValues({{"View", 703}});
  start();
  send(windows().colourSpace, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(50, 50));
  EXPECT_EQ(captured(), nullptr);
}

// Tests the main gestures with each kind of magnifier behaviour.
struct HabitRow {
  const char* name;
  std::atomic<bool> MagnifierHabits::*habit = nullptr;
  Refusal refusal = Refusal::Nothing;
};

void PrintTo(const HabitRow& row, std::ostream* out) {
  *out << row.name;
}

const std::array habitRows{
    HabitRow{"Harsh"},
    HabitRow{"Throttled", &MagnifierHabits::throttled},
    HabitRow{"KeepsMouse", &MagnifierHabits::keepsMouse},
    HabitRow{"RestsWhenModal", &MagnifierHabits::restsWhenModal},
    HabitRow{"ShowsLastPicture", &MagnifierHabits::showsLastPicture},
    HabitRow{"RefusesTransforms", nullptr, Refusal::SetWindowTransform},
    HabitRow{"RefusesSources", nullptr, Refusal::SetWindowSource},
    HabitRow{"RefusesEffects", nullptr, Refusal::SetColorEffect},
};

class Gestures : public Mouse, public testing::WithParamInterface<HabitRow> {
 protected:
  // Holds the main window's frame at a place and moves the mouse by so much.
  void dragFrame(const POINT& grip, int x, int y, const Bounds& expected) {
    const auto isMoving = [this] { return (threadOf(windows().main).flags & GUI_INMOVESIZE) != 0; };
    moveCursor(grip.x, grip.y);
    button(MOUSEEVENTF_LEFTDOWN);
    ASSERT_TRUE(eventually(isMoving));
    EXPECT_TRUE(eventually([&] {
      // Asks again, because a late answer from the display can put the cursor back.
      SetCursorPos(static_cast<int>(grip.x) + x, static_cast<int>(grip.y) + y);
      return boundsOf(windows().main) == expected;
    }));
    button(MOUSEEVENTF_LEFTUP);
    ASSERT_TRUE(eventually([&] { return !isMoving(); }));
  }
  // Returns the picture that the view should show.
  Picture expectedView(const Backdrop& backdrop) const {
    const Bounds client = clientBoundsOf(windows().main);
    const bool aimed = GetParam().refusal != Refusal::SetWindowSource;
    const bool filtered = GetParam().refusal != Refusal::SetColorEffect;
    return filteredPicture(
        backdrop.picture(aimed ? client : Bounds{0, 0, client.width(), client.height()}),
        filtered ? lastCall(MagnifierCall::SetColorEffect).values : identityEffect);
  }
};

TEST_P(Gestures, WorkOverAnyMagnifier) {
  const Backdrop backdrop({0, 0, 800, 600});
  magnifierRecord().refusal = GetParam().refusal;
  if (GetParam().habit != nullptr) magnifierRecord().habits.*GetParam().habit = true;
  startApart();
  press('D');
  turnWheel(false);
  EXPECT_EQ(title(), " Simulation - Deuteranomalous 95% severity");
  moveCursor(200, 200);
  beginDrag();
  moveCursor(260, 250);
  EXPECT_TRUE(eventuallyAt({160, 150, 460, 350}));
  letGo();
  const LONG caption = 150 + GetSystemMetrics(SM_CYSIZEFRAME) + GetSystemMetrics(SM_CYCAPTION) / 2;
  dragFrame({310, caption}, 20, 10, {180, 160, 480, 360});
  dragFrame({480 - 2, 260}, 60, 0, {180, 160, 540, 360});
  const auto showsTheView = [&] {
    return areAlike(screenPicture(clientBoundsOf(windows().main)), expectedView(backdrop), 1);
  };
  EXPECT_TRUE(eventually([&] { return static_cast<bool>(showsTheView()); }))
      << showsTheView().message();
  ASSERT_NE(openMenu(windows().main), nullptr);
  closeMenu();
  press('H');
  EXPECT_TRUE(IsWindowVisible(windows().control));
  press('H');
  press('F');
  EXPECT_EQ(boundsOf(windows().main), screenBounds());
  press('F');
  press('R');
  EXPECT_TRUE(IsWindowVisible(windows().colourSpace));
  choose(52);
  EXPECT_TRUE(hasCopied());
  end();
  EXPECT_EQ(process().result(), 0U);
  EXPECT_EQ(storedValues()["ScrollPc"], 95U);
}

INSTANTIATE_TEST_SUITE_P(With, Gestures, testing::ValuesIn(habitRows),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace tintora::windows_test
