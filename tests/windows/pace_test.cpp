// How often the program works when idle, while a menu is open and while a window is dragged. The
// magnifier does not limit it.
#include <algorithm>
#include <cstdio>
#include <string>

#include "program_run.h"
#include "stored_values.h"

namespace tintora::windows_test {
namespace {

// The program's work while nothing is done to it.
struct Work {
  double paintsPerSecond = 0;
  std::uint64_t titles = 0;
  double processorShare = 0;  // fraction of one processor
  double looksPerPaint = 0;   // for messages
};

// The test screen shows 60 pictures a second, and fewer on a busy machine. Waiting for a number of
// pictures works on any machine.
constexpr double mostPaintsPerSecond = 75;
constexpr std::uint64_t measuredPaints = 60;
constexpr std::uint64_t fewPaints = 20;
// A loop that never waits uses a whole processor, even if it paints little.
constexpr double mostWork = 0.2;

class Pace : public ProgramTest {
 protected:
  void startWith(bool colourSpaceShown) {
    storeValues({{"ColorSpace", colourSpaceShown ? 1 : 0}, {"View", 703}});
    start();
    magnifierRecord().habits.drawsNothing = true;
    settle();
  }

  // Measures the idle program until it has painted some times; the name is for the output. The
  // clock starts before the counts are read and stops after, so a delayed test counts too few,
  // never too many.
  Work workOf(const char* name, std::uint64_t atLeast = measuredPaints) {
    const MagnifierRecord& record = magnifierRecord();
    const double processor = processorTime();
    const ULONGLONG begin = GetTickCount64();
    const std::uint64_t paints = record.paints;
    const std::uint64_t titles = record.titleSets;
    const std::uint64_t looks = record.looks;
    EXPECT_TRUE(eventually([&] { return record.paints >= paints + atLeast; })) << name;
    const std::uint64_t painted = record.paints - paints;
    const std::uint64_t titled = record.titleSets - titles;
    const auto passed = static_cast<double>(GetTickCount64() - begin);
    const auto looked = static_cast<double>(record.looks - looks);
    const Work work{static_cast<double>(painted) * 1000 / passed, titled,
                    (processorTime() - processor) / passed, looked / static_cast<double>(painted)};
    std::printf("%s: %.1f paints a second, %d titles, %.1f%% of a processor, %.1f looks a paint\n",
                name, work.paintsPerSecond, static_cast<int>(titled), work.processorShare * 100,
                work.looksPerPaint);
    return work;
  }

  void expectPaced(const char* name) {
    const Work work = workOf(name);
    EXPECT_LE(work.paintsPerSecond, mostPaintsPerSecond) << name;
    EXPECT_LE(work.processorShare, mostWork) << name;
  }

  // Waits until the program has neither painted nor looked for messages for half a second.
  bool comesToRest() const {
    constexpr DWORD aWhile = 500;
    const MagnifierRecord& record = magnifierRecord();
    return eventually([&] {
      const std::uint64_t paints = record.paints;
      const std::uint64_t looks = record.looks;
      Sleep(aWhile);
      return record.paints == paints && record.looks == looks;
    });
  }
};

TEST_F(Pace, IsTheScreensWhenNothingHappens) {
  startWith(false);
  const Work work = workOf("Idle");
  EXPECT_LE(work.paintsPerSecond, mostPaintsPerSecond);
  EXPECT_LE(work.processorShare, mostWork);
  // On a busy machine, a loop that never waits gets less than a whole processor, so count how often
  // it looks for messages as well.
  EXPECT_LE(work.looksPerPaint, 10.0);
}

TEST_F(Pace, IsTheScreensWithTheColourSpaceWindow) {
  startWith(true);
  const Work work = workOf("Idle with the colour space window");
  EXPECT_LE(work.paintsPerSecond, mostPaintsPerSecond);
  EXPECT_LE(work.processorShare, mostWork);
  EXPECT_EQ(work.titles, 0U);
}

TEST_F(Pace, IsTheScreensWhileHitTransparent) {
  startWith(false);
  press('H');
  const Work work = workOf("Hit-transparent");
  EXPECT_LE(work.paintsPerSecond, mostPaintsPerSecond);
  EXPECT_LE(work.processorShare, mostWork);
  EXPECT_EQ(work.titles, 0U);
}

// No timer of a menu stays behind either.
TEST_F(Pace, RestsWhileTheMainWindowIsMinimised) {
  startWith(true);
  ASSERT_NE(openMenu(windows().main), nullptr);
  closeMenu();
  send(windows().main, WM_SYSCOMMAND, SC_MINIMIZE);
  EXPECT_TRUE(comesToRest());
  send(windows().main, WM_SYSCOMMAND, SC_RESTORE);
  expectPaced("Restored");
  const Bounds client = clientBoundsOf(windows().main);
  EXPECT_EQ(boundsOf(windows().magnifier), client);
  const RECT source = lastCall(MagnifierCall::SetWindowSource).source;
  EXPECT_EQ(source.left, client.left);
  EXPECT_EQ(source.top, client.top);
}

// Only paints wait for the screen. Queued keys are handled without waiting for a picture each.
TEST_F(Pace, LeavesMessagesTheirOwn) {
  startWith(false);
  constexpr int keys = 200;
  ask(QueueKeys, VK_RIGHT, keys);
  settle();
  EXPECT_LT(magnifierRecord().paintsOverKeys, keys / 10);
}

// The test screen cannot change its refresh rate, so the stand-in reports another one.
TEST_F(Pace, IsTheScreensAfterItsSettingsChange) {
  constexpr int slow = 30;
  constexpr double mostPaintsWhenSlow = 37.5;
  startWith(false);
  magnifierRecord().refreshRate = slow;
  send(windows().main, WM_DISPLAYCHANGE, 32, MAKELPARAM(1280, 800));
  EXPECT_LE(workOf("Slow screen").paintsPerSecond, mostPaintsWhenSlow);
  ASSERT_NE(openMenu(windows().main), nullptr);
  EXPECT_LE(workOf("Menu open on a slow screen", fewPaints).paintsPerSecond, mostPaintsWhenSlow);
  closeMenu();
}

TEST_F(Pace, GoesOnWhileAMenuIsOpen) {
  startWith(false);
  ASSERT_NE(openMenu(windows().main), nullptr);
  const std::uint64_t first = magnifierRecord().paints;
  expectPaced("Menu open");
  EXPECT_TRUE(std::ranges::all_of(paintsSince(first), &RecordedPaint::modal));
  closeMenu();
  expectPaced("Menu closed");
  PostMessageA(windows().main, WM_SYSCOMMAND, SC_KEYMENU, ' ');
  ASSERT_TRUE(eventually([this] { return openMenuWindow() != nullptr; }));
  workOf("System menu open", fewPaints);
  closeMenu();
}

// Moves the mouse as a user does, through the desktop's own input queue.
class Dragged : public Pace {
 protected:
  static void mouseButton(DWORD change) { mouse_event(change, 0, 0, 0, 0); }

  // Returns the row through the middle of a window's caption.
  static LONG captionRow(HWND window) {
    return boundsOf(window).top + GetSystemMetrics(SM_CYSIZEFRAME) +
           GetSystemMetrics(SM_CYCAPTION) / 2;
  }
  // Presses the button on a window's caption.
  void hold(HWND window) {
    const Bounds bounds = boundsOf(window);
    grip_ = {bounds.left + bounds.width() / 2, captionRow(window)};
    moveCursor(grip_.x, grip_.y);
    mouseButton(MOUSEEVENTF_LEFTDOWN);
    ASSERT_TRUE(eventually([&] { return (threadOf(window).flags & GUI_INMOVESIZE) != 0; }));
  }
  void moveTo(int x, int y) const { SetCursorPos(grip_.x + x, grip_.y + y); }
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
    const std::uint64_t paints = magnifierRecord().paints;
    ASSERT_TRUE(eventually([&] { return magnifierRecord().paints > paints; })) << step;
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
  EXPECT_EQ(modal, paints.size());
  EXPECT_EQ(lag, 0);
  mouseButton(MOUSEEVENTF_LEFTUP);
  settle();
  EXPECT_EQ(boundsOf(windows().main).left, before.left + 200);
}

// A fast mouse always has the next move waiting. Keys stand for it: they move and size the window
// too, and can be queued together. Held by its caption, the window has captured the mouse as well.
TEST_F(Dragged, TheViewIsDrawnAtEachStep) {
  startWith(false);
  constexpr int steps = 40;
  hold(windows().main);
  EXPECT_EQ(threadOf(windows().main).hwndCapture, windows().main);
  mouseButton(MOUSEEVENTF_LEFTUP);
  ASSERT_TRUE(eventually([&] { return threadOf(windows().main).hwndCapture == nullptr; }));

  const Bounds client = clientBoundsOf(windows().main);
  moveCursor(client.left + 50, client.top + 50);
  beginDrag();
  const MagnifierRecord& record = magnifierRecord();
  for (const int sizingKey : {0, VK_LSHIFT}) {
    ask(HoldKey, static_cast<WPARAM>(sizingKey));
    ask(QueueKeys, VK_RIGHT, steps);
    settle();
    EXPECT_GE(record.paintsOverKeys, steps) << sizingKey;
    for (const RecordedPaint& paint : paintsSince(record.paintsAtKeys)) {
      EXPECT_EQ(paint.source.left, paint.corner.x);
    }
  }
  ask(HoldKey, 0);
}

TEST_F(Dragged, TheViewIsLiveWhileACaptionIsHeld) {
  startWith(false);
  const Bounds before = boundsOf(windows().main);
  hold(windows().main);
  moveTo(12, 12);
  ASSERT_TRUE(eventually([&] { return boundsOf(windows().main).left == before.left + 12; }));
  const std::uint64_t first = magnifierRecord().paints;
  expectPaced("Caption held");
  EXPECT_TRUE(std::ranges::all_of(paintsSince(first), &RecordedPaint::modal));
  // Each step draws the view, however fast they come.
  constexpr std::uint64_t steps = 40;
  const std::uint64_t paints = magnifierRecord().paints;
  ask(TellMoves, steps);
  EXPECT_GE(magnifierRecord().paints - paints, steps);
}

// While a button of the caption is held, Windows handles nothing but the mouse and sent messages.
TEST_F(Dragged, TheViewIsLiveWhileAButtonOfTheCaptionIsHeld) {
  startWith(false);
  const HWND main = windows().main;
  const Bounds bounds = boundsOf(main);
  const LONG row = captionRow(main);
  for (const LRESULT button : {HTMINBUTTON, HTMAXBUTTON, HTCLOSE}) {
    LONG column = bounds.right;
    while (SendMessageA(main, WM_NCHITTEST, 0, MAKELPARAM(column, row)) != button) --column;
    moveCursor(column - 2, row);
    mouseButton(MOUSEEVENTF_LEFTDOWN);
    ASSERT_TRUE(eventually([&] { return threadOf(main).hwndCapture == main; })) << button;
    workOf("Button held", fewPaints);
    // Released elsewhere, it does nothing.
    SetCursorPos(static_cast<int>(column), static_cast<int>(row) + 200);
    mouseButton(MOUSEEVENTF_LEFTUP);
    ASSERT_TRUE(eventually([&] { return threadOf(main).hwndCapture == nullptr; })) << button;
  }
  ShowWindow(main, SW_HIDE);
  EXPECT_TRUE(comesToRest());
}

}  // namespace
}  // namespace tintora::windows_test
