// The primary screen's resolution changes while the program runs. Runs on a display of its own,
// since the test screen's resolution is fixed.
#include <functional>

#include "program_run.h"
#include "stored_values.h"

namespace tintora::windows_test {
namespace {

constexpr Bounds largeScreen{0, 0, 1280, 800};
constexpr Bounds smallScreen{0, 0, 1024, 768};

class ResizedScreen : public ProgramTest {
 protected:
  void SetUp() override {
    ProgramTest::SetUp();
    ASSERT_EQ(screenBounds(), largeScreen);
    storeValues({{"ColorSpace", 0}});
    start();
  }
  void TearDown() override {
    ProgramTest::TearDown();
    resizeScreen(largeScreen);
  }

  static void resizeScreen(const Bounds& bounds) {
    DEVMODEA mode{};
    mode.dmSize = sizeof mode;
    mode.dmPelsWidth = static_cast<DWORD>(bounds.width());
    mode.dmPelsHeight = static_cast<DWORD>(bounds.height());
    mode.dmFields = DM_PELSWIDTH | DM_PELSHEIGHT;
    EXPECT_EQ(ChangeDisplaySettingsA(&mode, 0), DISP_CHANGE_SUCCESSFUL);
    EXPECT_TRUE(eventually([&] { return screenBounds() == bounds; }));
  }

  // What the view shows and where it is.
  struct Aim {
    Bounds source;
    Bounds magnifier;
    bool operator==(const Aim&) const = default;
  };
  Aim aim() const {
    return {boundsOf(lastCall(MagnifierCall::SetWindowSource).source),
            boundsOf(windows().magnifier)};
  }
  // Waits, because the desktop tells programs after it has changed the screen.
  void expectAim(const std::function<Aim()>& expected) {
    EXPECT_TRUE(eventually([&] { return aim() == expected(); }))
        << aim().source << " on " << aim().magnifier << " instead of " << expected().source
        << " on " << expected().magnifier;
  }
};

TEST_F(ResizedScreen, IsFilledInFullScreen) {
  const Bounds before = boundsOf(windows().main);
  press('F');
  for (const Bounds& screen : {smallScreen, largeScreen}) {
    resizeScreen(screen);
    expectAim([&] { return Aim{screen, screen}; });
    EXPECT_EQ(boundsOf(windows().main), screen);
  }
  press('F');
  EXPECT_EQ(boundsOf(windows().main), before);
}

TEST_F(ResizedScreen, IsTheLimitOfAMaximisedWindow) {
  send(windows().main, WM_SYSCOMMAND, SC_MAXIMIZE);
  for (const Bounds& screen : {smallScreen, largeScreen}) {
    resizeScreen(screen);
    expectAim([&] {
      const Bounds client = clientBoundsOf(windows().main);
      return Aim{
          {client.left, client.top, screen.right, screen.bottom},
          {client.left, client.top, client.left + screen.width(), client.top + screen.height()}};
    });
  }
}

TEST_F(ResizedScreen, LeavesAnOrdinaryWindowAimedBeneathItself) {
  const Bounds place{700, 300, 1100, 600};
  SetWindowPos(windows().main, nullptr, place.left, place.top, place.width(), place.height(),
               SWP_NOZORDER | SWP_NOACTIVATE);
  settle();
  for (const Bounds& screen : {smallScreen, largeScreen}) {
    resizeScreen(screen);
    expectAim([&] {
      const Bounds client = clientBoundsOf(windows().main);
      const Bounds outer = boundsOf(windows().main);
      return Aim{{client.left, client.top, outer.right, outer.bottom}, client};
    });
  }
}

}  // namespace
}  // namespace tintora::windows_test
