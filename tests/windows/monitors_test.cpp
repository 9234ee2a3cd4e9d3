// A second monitor to the left of and above the primary one, so that its coordinates are negative.
// Runs on a display of its own.
#include <ostream>
#include <string>

#include "picture.h"
#include "program_run.h"
#include "stored_values.h"

namespace tintora::windows_test {
namespace {

class SecondMonitor : public ProgramTest {
 protected:
  void SetUp() override {
    ProgramTest::SetUp();
    ASSERT_EQ(GetSystemMetrics(SM_CMONITORS), 2);
    ASSERT_EQ(boundsOf(monitorAt(-1, -1)), (Bounds{-1280, -800, 0, 0}));
    ASSERT_EQ(boundsOf(monitorAt(1, 1)), (Bounds{0, 0, 1280, 800}));
  }
  static RECT monitorAt(LONG x, LONG y) {
    MONITORINFO facts{};
    facts.cbSize = sizeof facts;
    GetMonitorInfoA(MonitorFromPoint({x, y}, MONITOR_DEFAULTTONULL), &facts);
    return facts.rcMonitor;
  }

  void startAt(const Bounds& bounds) {
    storeValues({{"ColorSpace", 0}, {"Selected", 5}});
    start();
    SetWindowPos(windows().main, nullptr, bounds.left, bounds.top, bounds.width(), bounds.height(),
                 SWP_NOZORDER | SWP_NOACTIVATE);
    settle();
  }
  Bounds source() const { return boundsOf(lastCall(MagnifierCall::SetWindowSource).source); }
  void expectToShowWhatLiesBeneath() {
    const Bounds client = clientBoundsOf(windows().main);
    const Bounds outer = boundsOf(windows().main);
    EXPECT_EQ(source(), (Bounds{client.left, client.top, outer.right, outer.bottom}));
    EXPECT_EQ(boundsOf(windows().magnifier), client);
  }
  void expectNoInvertedSource(std::uint64_t first) {
    for (std::uint64_t n = first; n < magnifierRecord().calls; ++n) {
      const RecordedCall& call = magnifierRecord().call[n % recordedCalls];
      if (call.call != MagnifierCall::SetWindowSource) continue;
      const Bounds area = boundsOf(call.source);
      ASSERT_TRUE(area.width() > 0 && area.height() > 0) << area;
    }
  }
};

TEST_F(SecondMonitor, IsWhereTheProgramDoesNotStart) {
  start();
  EXPECT_EQ(boundsOf(windows().main), (Bounds{390, 200, 890, 600}));
}

TEST_F(SecondMonitor, HasItsPlacesInTheSource) {
  startAt({-900, -700, -400, -300});
  expectToShowWhatLiesBeneath();
  EXPECT_LT(source().right, 0);
  EXPECT_LT(source().bottom, 0);
}

TEST_F(SecondMonitor, HasItsOwnPace) {
  constexpr std::uint64_t somePaints = 20;
  constexpr double mostPaints = 37.5;
  const MagnifierRecord& record = magnifierRecord();
  magnifierRecord().otherRefreshRate = 30;
  startAt({-900, -700, -400, -300});
  const ULONGLONG begin = GetTickCount64();
  const std::uint64_t first = record.paints;
  EXPECT_TRUE(eventually([&] { return record.paints >= first + somePaints; }));
  const auto paints = static_cast<double>(record.paints - first);
  EXPECT_LE(paints * 1000 / static_cast<double>(GetTickCount64() - begin), mostPaints);
}

TEST_F(SecondMonitor, IsSeenThroughTheWindow) {
  const Bounds beneath{-1000, -700, -300, -100};
  const Backdrop backdrop(beneath);
  startAt({-900, -600, -500, -300});
  const Bounds client = clientBoundsOf(windows().main);
  Picture inverted = backdrop.picture(client);
  for (Colour& colour : inverted.pixels) {
    for (std::uint8_t& channel : colour) channel = static_cast<std::uint8_t>(255 - channel);
  }
  EXPECT_TRUE(eventually([&] { return areAlike(screenPicture(client), inverted, 0); }));
}

TEST_F(SecondMonitor, IsReachedByADrag) {
  startAt({100, 100, 400, 300});
  const std::uint64_t first = magnifierRecord().calls;
  moveCursor(200, 200);
  beginDrag();
  for (const LONG place : {100, 0, -200, -500}) {
    moveCursor(place, place);
    EXPECT_TRUE(eventually([&] {
      return boundsOf(windows().main) == Bounds{place - 100, place - 100, place + 200, place + 100};
    })) << place;
    settle();
    expectToShowWhatLiesBeneath();
  }
  mouse_event(MOUSEEVENTF_LEFTUP, 0, 0, 0, 0);
  EXPECT_TRUE(eventually([this] { return threadOf(windows().main).hwndCapture == nullptr; }));
  expectNoInvertedSource(first);
}

// Maximised windows have the size of the primary monitor, wherever they are.
TEST_F(SecondMonitor, NeverGivesAnEmptyOrInvertedSource) {
  for (const Bounds& place : {Bounds{-900, -700, -400, -300}, Bounds{-200, -200, 300, 200},
                              Bounds{-1280, -800, -1000, -600}}) {
    startAt(place);
    const std::uint64_t first = magnifierRecord().calls;
    send(windows().main, WM_SYSCOMMAND, SC_MAXIMIZE);
    EXPECT_TRUE(IsZoomed(windows().main));
    const Bounds client = clientBoundsOf(windows().main);
    EXPECT_EQ(source(), (Bounds{client.left, client.top, 1280, 800}));
    press(' ');
    press(' ');
    send(windows().main, WM_SYSCOMMAND, SC_RESTORE);
    press('F');
    press('F');
    expectNoInvertedSource(first);
    EXPECT_EQ(boundsOf(windows().main), place);
    expectToShowWhatLiesBeneath();
    end();
  }
}

TEST_F(SecondMonitor, HoldsTheDockedColourSpaceWindow) {
  startAt({-1200, -700, -800, -400});
  press('E');
  const Bounds beside = boundsOf(windows().colourSpace);
  EXPECT_EQ(beside.left, -796);
  EXPECT_EQ(beside.top, -700);
}

}  // namespace
}  // namespace tintora::windows_test
