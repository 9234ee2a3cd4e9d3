// How often the program works when nothing happens, while a menu is open and while a window is
// dragged, over a magnifier that does not hold it back.
#include <cstdio>
#include <string>

#include "program_run.h"
#include "stored_values.h"

namespace tintora::windows_test {
namespace {

// Over some time with nothing done to the program.
struct Work {
  double paintsPerSecond = 0;
  double titlesPerSecond = 0;
  double processorShare = 0;  // of one processor
};

// The screen of the tests shows 60 pictures a second; a busy machine fewer.
constexpr double mostPaints = 75;
constexpr double fewestPaints = 3;

class Pace : public ProgramTest {
 protected:
  void startWith(bool colourSpaceShown) {
    storeValues({{"ColorSpace", colourSpaceShown ? 1 : 0}, {"View", 703}});
    start();
    magnifierRecord().habits.drawsNothing = true;
    settle();
  }

  // What the program does by itself while time passes; the name is for the output.
  Work workOver(DWORD milliseconds, const char* name) {
    const MagnifierRecord& record = magnifierRecord();
    const double processor = processorTime();
    const std::uint64_t paints = record.paints;
    const std::uint64_t titles = record.titleSets;
    const ULONGLONG begin = GetTickCount64();
    Sleep(milliseconds);
    const std::uint64_t painted = record.paints - paints;
    const std::uint64_t titled = record.titleSets - titles;
    const auto passed = static_cast<double>(GetTickCount64() - begin);
    const Work work{static_cast<double>(painted) * 1000 / passed,
                    static_cast<double>(titled) * 1000 / passed,
                    (processorTime() - processor) / passed};
    std::printf("%s: %.1f paints, %.1f titles a second, %.1f%% of a processor\n", name,
                work.paintsPerSecond, work.titlesPerSecond, work.processorShare * 100);
    return work;
  }

  void expectPaced(const Work& work) {
    EXPECT_LE(work.paintsPerSecond, mostPaints);
    EXPECT_GE(work.paintsPerSecond, fewestPaints);
  }
};

constexpr DWORD aWhile = 2000;

TEST_F(Pace, IsTheScreensWhenNothingHappens) {
  startWith(false);
  const Work work = workOver(aWhile, "Idle");
  expectPaced(work);
  EXPECT_LE(work.processorShare, 0.2);
}

TEST_F(Pace, IsTheScreensWithTheColourSpaceWindow) {
  startWith(true);
  const Work work = workOver(aWhile, "Idle with the colour space window");
  expectPaced(work);
  EXPECT_EQ(work.titlesPerSecond, 0);
}

TEST_F(Pace, IsTheScreensWhileHitTransparent) {
  startWith(false);
  press('H');
  const Work work = workOver(aWhile, "Hit-transparent");
  expectPaced(work);
  EXPECT_EQ(work.titlesPerSecond, 0);
}

TEST_F(Pace, RestsWhileTheMainWindowIsMinimised) {
  startWith(true);
  send(windows().main, WM_SYSCOMMAND, SC_MINIMIZE);
  settle();
  EXPECT_EQ(workOver(1000, "Minimised").paintsPerSecond, 0);
  send(windows().main, WM_SYSCOMMAND, SC_RESTORE);
  expectPaced(workOver(1000, "Restored"));
  const Bounds client = clientBoundsOf(windows().main);
  EXPECT_EQ(boundsOf(windows().magnifier), client);
  const RECT source = lastCall(MagnifierCall::SetWindowSource).source;
  EXPECT_EQ(source.left, client.left);
  EXPECT_EQ(source.top, client.top);
}

// Only paints wait for the screen.
TEST_F(Pace, LeavesMessagesTheirOwn) {
  startWith(false);
  constexpr int keys = 200;
  const std::uint64_t paints = magnifierRecord().paints;
  for (int i = 0; i < keys; ++i) PostMessageA(windows().main, WM_KEYDOWN, VK_RIGHT, 0);
  settle();
  EXPECT_LT(magnifierRecord().paints - paints, keys / 2);
}

TEST_F(Pace, GoesOnWhileAMenuIsOpen) {
  startWith(false);
  ASSERT_NE(openMenu(windows().main), nullptr);
  const std::uint64_t first = magnifierRecord().paints;
  const Work work = workOver(aWhile, "Menu open");
  expectPaced(work);
  for (const RecordedPaint& paint : paintsSince(first)) EXPECT_TRUE(paint.modal);
  closeMenu();
  expectPaced(workOver(1000, "Menu closed"));
}

// The mouse as the user moves it, through all of the desktop.
class Dragged : public Pace {
 protected:
  static void mouseButton(DWORD change) { mouse_event(change, 0, 0, 0, 0); }

  // Takes hold of a window's caption.
  void hold(HWND window) {
    const Bounds bounds = boundsOf(window);
    grip_ = {bounds.left + bounds.width() / 2,
             bounds.top + GetSystemMetrics(SM_CYSIZEFRAME) + GetSystemMetrics(SM_CYCAPTION) / 2};
    SetCursorPos(grip_.x, grip_.y);
    Sleep(100);
    mouseButton(MOUSEEVENTF_LEFTDOWN);
  }
  void moveTo(int x, int y) { SetCursorPos(grip_.x + x, grip_.y + y); }
  void TearDown() override {
    mouseButton(MOUSEEVENTF_LEFTUP);
    Pace::TearDown();
  }

 private:
  POINT grip_{};
};

TEST_F(Dragged, TheFrameIsNeverAheadOfTheView) {
  startWith(false);
  const Bounds before = boundsOf(windows().main);
  hold(windows().main);
  const std::uint64_t first = magnifierRecord().paints;
  for (int step = 1; step <= 40; ++step) {
    moveTo(5 * step, -3 * step);
    ASSERT_TRUE(eventually([&] { return boundsOf(windows().main).left == before.left + 5 * step; }))
        << step;
    Sleep(25);
  }
  const std::vector<RecordedPaint> paints = paintsSince(first);
  LONG lag = 0;
  std::size_t modal = 0;
  for (const RecordedPaint& paint : paints) {
    lag = std::max({lag, std::abs(paint.corner.x - paint.source.left),
                    std::abs(paint.corner.y - paint.source.top)});
    modal += paint.modal ? 1 : 0;
  }
  std::printf("Dragged: %zu paints, %zu of them in the drag, lag %ld\n", paints.size(), modal,
              static_cast<long>(lag));
  EXPECT_GE(modal, 5U);
  EXPECT_EQ(lag, 0);
  mouseButton(MOUSEEVENTF_LEFTUP);
  settle();
  EXPECT_EQ(boundsOf(windows().main).left, before.left + 200);
}

TEST_F(Dragged, TheViewIsLiveWhileACaptionIsHeld) {
  startWith(false);
  hold(windows().main);
  moveTo(10, 10);
  Sleep(200);
  moveTo(12, 12);
  ASSERT_TRUE(eventually([&] {
    const auto paints = paintsSince(magnifierRecord().paints - 1);
    return !paints.empty() && paints.back().modal;
  }));
  const std::uint64_t first = magnifierRecord().paints;
  expectPaced(workOver(aWhile, "Caption held"));
  for (const RecordedPaint& paint : paintsSince(first)) EXPECT_TRUE(paint.modal);
}

}  // namespace
}  // namespace tintora::windows_test
