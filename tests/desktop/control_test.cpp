// Hit transparency, full screen, and the small window that ends both.
#include <chrono>
#include <set>

#include "program_run.h"

namespace tintora::desktop_test {
namespace {

class Control : public ProgramTest {
 protected:
  void SetUp() override {
    ProgramTest::SetUp();
    storeValues({{"Selected", 4}, {"ColorSpace", 0}});
    start();
    const Area screen = x().screenArea();
    scene().addNoise({0, 0, screen.width, screen.height}, 7);
    ASSERT_TRUE(viewShows(grey));
  }
  // Returns true if a click in the view's top left corner reaches the window beneath.
  bool letsClicksThrough(std::uint8_t button = 1) {
    const int before = scene().clicksIn(scene().at(0));
    const Area area = view();
    x().moveMouse(area.x + 30, area.y + 30);
    settle();
    x().click(button);
    settle();
    return scene().clicksIn(scene().at(0)) > before;
  }
  // Returns true if clicks reach the window beneath once the window has its form.
  bool passesClicksOn() {
    return eventually([this] { return letsClicksThrough(); });
  }
  // Returns true if clicks stay in the view once the window has its form.
  bool keepsClicks() {
    return eventually([this] { return !letsClicksThrough(); });
  }
  std::set<std::uint32_t> coloursOf(xcb_window_t window) const {
    std::set<std::uint32_t> colours;
    for (const std::uint32_t pixel : x().read(x().areaOf(window)).pixels) {
      colours.insert(pixel & 0xFFFFFFU);
    }
    return colours;
  }
  bool isDrawn() const {
    const auto colours = coloursOf(control());
    return colours.contains(0x506478) && colours.contains(0xFFFFFF) && colours.contains(0);
  }
  void close(xcb_window_t window) {
    x().tellManager(window, "_NET_CLOSE_WINDOW", {0, 2});
    settle();
  }
  Area outer(xcb_window_t window) const { return x().outerAreaOf(window); }
  testing::AssertionResult isOverMain() const {
    const Area main = outer(ProgramTest::main());
    const Area expected{main.x + main.width / 2 - 200, main.y + main.height / 2 - 60, 400, 120};
    if (eventually([&] { return outer(control()) == expected; })) {
      return testing::AssertionSuccess();
    }
    return testing::AssertionFailure() << testing::PrintToString(outer(control())) << " instead of "
                                       << testing::PrintToString(expected);
  }
};

TEST_F(Control, ClicksStayInTheViewAtFirst) {
  EXPECT_TRUE(keepsClicks());
  EXPECT_FALSE(x().isShown(control()));
}

TEST_F(Control, KeyHLetsClicksThroughAndShowsTheControlWindow) {
  press(XK_h);
  ASSERT_TRUE(showing(control(), true));
  EXPECT_TRUE(isOverMain());
  EXPECT_TRUE(
      eventually([this] { return title(control()) == "Hit Transparent, Press H to exit"; }));
  EXPECT_TRUE(eventually([this] { return isDrawn(); }));
  EXPECT_TRUE(passesClicksOn());
  EXPECT_TRUE(letsClicksThrough(3));
  EXPECT_TRUE(openMenus().empty());
  // The click also goes through the title of its frame.
  const Area main = outer(ProgramTest::main());
  const int before = scene().clicksIn(scene().at(0));
  x().moveMouse(main.x + 150, main.y + 8);
  x().click(1);
  EXPECT_TRUE(eventually([&] { return scene().clicksIn(scene().at(0)) > before; }));
}

// The program lets the mouse through when the control window is exposed, or at the latest after a
// second.
TEST_F(Control, ClicksGoThroughAsSoonAsTheControlWindowIsThere) {
  x().moveMouse(view().x + 30, view().y + 30);
  const auto pressed = std::chrono::steady_clock::now();
  press(XK_h);
  ASSERT_TRUE(showing(control(), true));
  ASSERT_TRUE(process().rests(std::chrono::milliseconds(200)));
  const xcb_window_t hit = x().underMouse();
  if (std::chrono::steady_clock::now() - pressed > std::chrono::milliseconds(1000)) {
    GTEST_SKIP() << "The machine is too busy.";
  }
  EXPECT_EQ(hit, scene().at(0).window);
}

TEST_F(Control, KeyHEndsItFromEitherWindow) {
  for (const bool fromControl : {false, true}) {
    press(XK_h);
    ASSERT_TRUE(showing(control(), true));
    pressIn(fromControl ? control() : main(), XK_h);
    EXPECT_TRUE(showing(control(), false));
    EXPECT_TRUE(keepsClicks());
  }
}

TEST_F(Control, ItsCloseButtonEndsHitTransparency) {
  press(XK_h);
  ASSERT_TRUE(showing(control(), true));
  close(control());
  EXPECT_TRUE(showing(control(), false));
  EXPECT_TRUE(keepsClicks());
  EXPECT_TRUE(process().isRunning());
}

TEST_F(Control, ItsPictureFollowsTheTitle) {
  press(XK_d);
  press(XK_h);
  ASSERT_TRUE(showing(control(), true));
  ASSERT_TRUE(eventually([this] { return isDrawn(); }));
  const Area area = x().areaOf(control());
  const Area firstLine{area.x, area.y, area.width, 28};
  const Picture before = x().read(firstLine);
  x().moveMouse(area);
  turnWheel(false, 3);
  EXPECT_TRUE(titleBecomes(" Simulation - Deuteranomalous 85% severity"));
  EXPECT_TRUE(eventually([&] { return x().read(firstLine).pixels != before.pixels; }));
  EXPECT_TRUE(eventually([this] { return isDrawn(); }));
}

TEST_F(Control, ItOpensTheMenu) {
  press(XK_h);
  ASSERT_TRUE(showing(control(), true));
  x().moveMouse(x().areaOf(control()));
  settle();
  x().click(3);
  EXPECT_TRUE(eventually([this] { return openMenus().size() == 1; }));
}

TEST_F(Control, ADragOfItMovesOnlyIt) {
  press(XK_h);
  ASSERT_TRUE(isOverMain());
  const Area main = outer(ProgramTest::main());
  const Area before = outer(control());
  const Area area = x().areaOf(control());
  dragMouse(area.x + 50, area.y + 50, 70, 45);
  const Area expected{before.x + 70, before.y + 45, before.width, before.height};
  eventually([&] { return outer(control()) == expected; });
  EXPECT_EQ(outer(control()), expected);
  EXPECT_EQ(outer(ProgramTest::main()), main);
}

TEST_F(Control, TheViewStaysLiveWhileClicksGoThrough) {
  press(XK_h);
  ASSERT_TRUE(showing(control(), true));
  const Area area = view();
  scene().draw(scene().at(0), noise(300, 60, 9), area.x, area.y);
  EXPECT_TRUE(viewShows(grey, {area.x, area.y, area.width, 80}));
}

TEST_F(Control, FullScreenCoversTheScreenAndComesBack) {
  const Area screen = x().screenArea();
  const Area before = outer(main());
  for (int round = 0; round < 2; ++round) {
    press(XK_f);
    ASSERT_TRUE(eventually([&] { return view() == screen; })) << testing::PrintToString(view());
    ASSERT_TRUE(showing(control(), true));
    EXPECT_TRUE(
        eventually([this] { return title(control()) == "Full screen mode, press F to exit"; }));
    EXPECT_TRUE(eventually([this] { return isDrawn(); }));
    EXPECT_TRUE(viewShows(grey, {0, 0, screen.width, 300}));
    EXPECT_TRUE(viewShows(grey, {0, screen.height - 300, screen.width, 300}));
    EXPECT_TRUE(passesClicksOn());
    saveScreen("full_screen", screen);
    pressIn(control(), XK_f);
    EXPECT_TRUE(showing(control(), false));
    EXPECT_TRUE(eventually([&] { return outer(main()) == before; }))
        << testing::PrintToString(outer(main()));
    EXPECT_TRUE(viewShows(grey));
    EXPECT_TRUE(keepsClicks());
  }
}

TEST_F(Control, InFullScreenOtherFormsAreIgnored) {
  const Area screen = x().screenArea();
  press(XK_f);
  ASSERT_TRUE(eventually([&] { return view() == screen; }));
  ASSERT_TRUE(showing(control(), true));
  for (const int key : {XK_h, XK_w, XK_space, XK_Escape, XK_Left}) {
    press(static_cast<xcb_keysym_t>(key));
    EXPECT_EQ(view(), screen) << key;
    EXPECT_TRUE(x().isShown(control())) << key;
    EXPECT_FALSE(x().isShown(colourSpace())) << key;
  }
  press(XK_f);
  EXPECT_TRUE(showing(control(), false));
}

TEST_F(Control, ClosingItInFullScreenLeavesBoth) {
  const Area before = outer(main());
  press(XK_f);
  ASSERT_TRUE(showing(control(), true));
  close(control());
  EXPECT_TRUE(showing(control(), false));
  EXPECT_TRUE(eventually([&] { return outer(main()) == before; }));
  EXPECT_TRUE(keepsClicks());
  EXPECT_TRUE(viewShows(grey));
}

TEST_F(Control, FullScreenFromHitTransparencyEndsBoth) {
  const Area before = outer(main());
  press(XK_h);
  ASSERT_TRUE(showing(control(), true));
  press(XK_f);
  ASSERT_TRUE(eventually([&] { return view() == x().screenArea(); }));
  EXPECT_TRUE(
      eventually([this] { return title(control()) == "Full screen mode, press F to exit"; }));
  press(XK_f);
  EXPECT_TRUE(eventually([&] { return outer(main()) == before; }));
  EXPECT_TRUE(keepsClicks());
}

TEST_F(Control, FullScreenFromFramelessComesBackFramed) {
  const Area before = outer(main());
  press(XK_space);
  ASSERT_TRUE(eventually([&] { return view() == before; }));
  press(XK_f);
  ASSERT_TRUE(eventually([&] { return view() == x().screenArea(); }));
  press(XK_f);
  EXPECT_TRUE(eventually([&] { return outer(main()) == before; }));
  EXPECT_TRUE(eventually([&] { return view() != before; }));
  EXPECT_TRUE(viewShows(grey));
}

using SlowManager = ProgramTest;

// The window manager takes the focus from a window that leaves the mouse, after the program has
// given it to the main window.
TEST_F(SlowManager, TheMainWindowHasTheFocusAfterFullScreen) {
  useDisplay({}, Manager::Twm, "1280x800");
  storeValues({{"Selected", 4}, {"ColorSpace", 0}});
  start();
  press(XK_f);
  ASSERT_TRUE(eventually([&] { return view() == x().screenArea(); }));
  ASSERT_TRUE(showing(control(), true));
  settle();
  focus(control());
  {
    const auto held = display().holdManager(std::chrono::milliseconds(1000));
    pressIn(control(), XK_f);
    ASSERT_TRUE(showing(control(), false));
  }
  // The window manager notes that it no longer manages the window.
  ASSERT_TRUE(eventually([&] {
    const auto state = x().numbers(control(), "WM_STATE");
    return state.empty() || state[0] == 0;
  }));
  settle();
  EXPECT_TRUE(eventually([&] { return x().focus() == main(); })) << x().focus();
}

class FocusFollowingMouse : public ProgramTest {
 protected:
  // Returns true once the main window has had the focus for a while: when the control window is
  // hidden, the window manager may give the focus to other windows first.
  bool keepsFocus() {
    auto since = std::chrono::steady_clock::now();
    return eventually([&] {
      const auto now = std::chrono::steady_clock::now();
      if (x().focus() != main()) since = now;
      return now - since > std::chrono::milliseconds(300);
    });
  }
};

// The mouse must not pass through before the control window is there: it would hit what lies
// beneath.
TEST_F(FocusFollowingMouse, StaysWithTheControlWindow) {
  useDisplay({}, Manager::I3FollowingMouse, "1280x800");
  storeValues({{"Selected", 4}, {"ColorSpace", 0}});
  start();
  const Sheet& beneath =
      scene().add({.place = {0, 0, 1200, 700}, .picture = noise(1200, 700, 7), .managed = true});
  // The window manager gives the focus to a new window some time after it shows that.
  ASSERT_TRUE(eventually([&] { return x().focus() == beneath.window; }));
  // Has the window manager raise the main window, as a taskbar does: it would put the control
  // window beneath one that was raised without it.
  x().activate(main());
  ASSERT_TRUE(eventually([&] { return x().focus() == main(); }));
  const Area area = view();
  x().moveMouse(area.x + area.width / 2, area.y + area.height / 2);
  for (int i = 0; i < 3; ++i) {
    ASSERT_TRUE(keepsFocus()) << i;
    press(XK_h);
    EXPECT_TRUE(showing(control(), true));
    EXPECT_TRUE(eventually([&] { return x().focus() == control(); })) << i;
    settle();
    x().press(XK_h);
    EXPECT_TRUE(showing(control(), false)) << i;
  }
}

}  // namespace
}  // namespace tintora::desktop_test
