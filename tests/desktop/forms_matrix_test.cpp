// The program's windows on every desktop: where they start, and how they change when they are
// moved, resized, made full screen, hit-transparent, maximised, minimised and docked. All results
// are read from the X server.
#include <algorithm>
#include <iterator>
#include <sstream>

#include "on_desktop.h"

namespace tintora::desktop_test {
namespace {

constexpr int dockingGap = 4;

class Forms : public OnDesktop {
 protected:
  void begin(bool withColourSpace = false) {
    storeValues({{"Selected", 4}, {"View", 703}, {"ColorSpace", withColourSpace ? 1 : 0}});
    start();
    // A window manager may put the window into its frame later.
    EXPECT_TRUE(eventually([&] { return x().topLevelOf(main()) != main(); }));
    const Area screen = x().screenArea();
    scene().addNoise({0, 0, screen.width, screen.height}, 7);
  }

  bool supports(const std::string& request) const {
    const auto atoms = x().numbers(x().root(), "_NET_SUPPORTED");
    return std::ranges::find(atoms, x().atom(request)) != atoms.end();
  }
  bool hasState(const std::string& state) const {
    const auto states = x().numbers(main(), "_NET_WM_STATE");
    return std::ranges::find(states, x().atom(state)) != states.end();
  }
  void ask(bool on, const std::string& state, const std::string& other = {}) {
    x().tellManager(main(), "_NET_WM_STATE",
                    {on ? 1U : 0U, x().atom(state), other.empty() ? 0U : x().atom(other), 2});
  }

  testing::AssertionResult fillsScreen() const {
    if (!eventually([&] { return view() == x().screenArea(); })) {
      return testing::AssertionFailure() << testing::PrintToString(view());
    }
    // i3 hides the other windows behind one in that state, so the program does without it.
    if (GetParam().manager != Manager::I3 && supports("_NET_WM_STATE_FULLSCREEN") &&
        !eventually([&] { return hasState("_NET_WM_STATE_FULLSCREEN"); })) {
      return testing::AssertionFailure() << "The window is not in full screen.";
    }
    return testing::AssertionSuccess();
  }
  testing::AssertionResult hasFocus(xcb_window_t window) const {
    if (eventually([&] { return x().focus() == window; })) return testing::AssertionSuccess();
    return testing::AssertionFailure()
           << "Window " << std::hex << x().focus() << " has the focus, not " << window;
  }
  // Succeeds if a window is above another one, including its frame.
  testing::AssertionResult isAbove(xcb_window_t window, xcb_window_t other) const {
    const auto holds = [&] {
      const auto stack = x().children(x().root());
      return std::ranges::find(stack, x().topLevelOf(window)) >
             std::ranges::find(stack, x().topLevelOf(other));
    };
    if (eventually(holds)) return testing::AssertionSuccess();
    return testing::AssertionFailure() << "The window is beneath the other one.";
  }
  // Asks for the focus, and waits until a window manager that gives it has done so.
  testing::AssertionResult activate(xcb_window_t window) {
    x().activate(window);
    if (!supports("_NET_ACTIVE_WINDOW")) return testing::AssertionSuccess();
    return hasFocus(window);
  }
  // Adds another program's window. It gets the focus before the main window gets it back, because
  // window managers give it to a new window some time after they show that.
  Sheet& addOtherProgram() {
    Sheet& other =
        scene().add({.place = {40, 60, 150, 100}, .picture = noise(150, 100, 3), .managed = true});
    const xcb_window_t window = other.window;
    EXPECT_TRUE(eventually([&] { return x().isShown(window); }));
    EXPECT_TRUE(activate(window));
    EXPECT_TRUE(activate(main()));
    return other;
  }
  // Lowers the scene, because a window manager that raises its windows ignores unmanaged ones.
  void lowerScene() {
    x().restack(scene().at(0).window, XCB_STACK_MODE_BELOW, x().topLevelOf(main()));
  }
  testing::AssertionResult showsGrey() {
    return showsInTheEnd([this] { return viewShows(grey); });
  }
  testing::AssertionResult showsGrey(const Area& part) {
    return showsInTheEnd([&] { return viewShows(grey, part); });
  }
  // Lowers the scene again if the view is wrong, because a late frame may have come beneath it.
  template <typename Look>
  testing::AssertionResult showsInTheEnd(Look look) {
    lowerScene();
    if (look()) return testing::AssertionSuccess();
    lowerScene();
    return look();
  }
  void dragInside(int byX, int byY, int steps) {
    lowerScene();
    dragMouse(view().x + 60, view().y + 60, byX, byY, steps);
  }
  Area startPlace() const {
    const Area screen = x().screenArea();
    return {screen.width / 2 - 250, screen.height / 2 - 200, 500, 400};
  }
  testing::AssertionResult isDocked() const {
    const auto place = [&] {
      const Area beside = outer(main());
      const Area own = outer(colourSpace());
      return own.x == beside.right() + dockingGap && own.y == beside.y;
    };
    if (eventually(place)) return testing::AssertionSuccess();
    return testing::AssertionFailure() << testing::PrintToString(outer(colourSpace())) << " beside "
                                       << testing::PrintToString(outer(main()));
  }
  // Drags the main window, and waits until it is where the drag should bring it.
  void dragMain(int byX, int byY) {
    const Area before = outer(main());
    dragInside(byX, byY, 8);
    EXPECT_TRUE(
        outerBecomes(main(), {before.x + byX, before.y + byY, before.width, before.height}));
  }
  void pressFocused(xcb_keysym_t symbol) {
    x().press(symbol);
    settle();
  }
};

TEST_P(Forms, ItStartsInTheMiddleAndIsMovedAndSized) {
  begin();
  ASSERT_TRUE(outerBecomes(main(), startPlace()));
  EXPECT_TRUE(showsGrey());
  Area expected = startPlace();
  for (int i = 0; i < 3; ++i) press(XK_Right);
  press(XK_Down);
  expected.x += 3;
  expected.y += 1;
  EXPECT_TRUE(outerBecomes(main(), expected));
  press(XK_Right, {XK_Shift_L});
  press(XK_Up, {XK_Shift_L});
  expected.width += 1;
  expected.height -= 1;
  EXPECT_TRUE(outerBecomes(main(), expected));
  EXPECT_TRUE(showsGrey());
  dragMain(-120, 45);
  EXPECT_TRUE(showsGrey());
  saveScreen("start_" + GetParam().name, x().screenArea());
}

TEST_P(Forms, FullScreenComesAndGoesWithoutATrace) {
  begin();
  ASSERT_TRUE(outerBecomes(main(), startPlace()));
  const Area screen = x().screenArea();
  for (int round = 0; round < 3; ++round) {
    press(XK_f);
    ASSERT_TRUE(fillsScreen());
    ASSERT_TRUE(showing(control(), true));
    EXPECT_TRUE(outerBecomes(control(), controlPlace(screen)));
    EXPECT_TRUE(isAbove(control(), main()));
    EXPECT_TRUE(showsGrey({0, 0, screen.width, 200}));
    EXPECT_TRUE(showsGrey({0, screen.height - 200, screen.width, 200}));
    if (round == 0) saveScreen("full_screen_" + GetParam().name, screen);
    pressIn(control(), XK_f);
    EXPECT_TRUE(showing(control(), false));
    EXPECT_TRUE(outerBecomes(main(), startPlace())) << round;
    EXPECT_TRUE(hasFocus(main()));
    EXPECT_TRUE(showsGrey());
  }
}

TEST_P(Forms, FullScreenLeavesOtherProgramsWindowsShown) {
  storeValues({{"Selected", 4}, {"View", 703}, {"ColorSpace", 0}});
  start();
  ASSERT_TRUE(outerBecomes(main(), startPlace()));
  Sheet& other = addOtherProgram();
  // Some window managers choose a place of their own, which the control window may cover.
  scene().move(other, 40, 60);
  ASSERT_TRUE(eventually([&] { return x().areaOf(other.window).right() < startPlace().x; }));
  press(XK_f);
  ASSERT_TRUE(fillsScreen());
  ASSERT_TRUE(showing(control(), true));
  settle();
  ASSERT_TRUE(x().isShown(other.window));
  other.place = x().areaOf(other.window);
  EXPECT_TRUE(viewShows(grey, other.place));
}

TEST_P(Forms, HitTransparencyLetsClicksThroughAndGivesTheFocusBack) {
  begin();
  ASSERT_TRUE(outerBecomes(main(), startPlace()));
  // The other program's window has the focus while clicks go through.
  const Sheet& other = addOtherProgram();
  ASSERT_TRUE(hasFocus(main()));
  press(XK_h);
  ASSERT_TRUE(showing(control(), true));
  EXPECT_TRUE(outerBecomes(control(), controlPlace(outer(main()))));
  lowerScene();
  const int before = scene().clicksIn(scene().at(0));
  x().moveMouse(view().x + 20, view().y + 20);
  ASSERT_TRUE(eventually([&] { return x().underMouse() == scene().at(0).window; }));
  x().click(1);
  EXPECT_TRUE(eventually([&] { return scene().clicksIn(scene().at(0)) > before; }));
  EXPECT_TRUE(activate(other.window));
  x().moveMouse(x().areaOf(control()));
  settle();
  x().click(1);
  pressIn(control(), XK_h);
  EXPECT_TRUE(showing(control(), false));
  EXPECT_TRUE(hasFocus(main()));
  pressFocused(XK_i);
  EXPECT_TRUE(titleBecomes("Invert "));
}

TEST_P(Forms, FullScreenFromHitTransparencyEndsBoth) {
  begin();
  ASSERT_TRUE(outerBecomes(main(), startPlace()));
  press(XK_h);
  ASSERT_TRUE(showing(control(), true));
  press(XK_f);
  ASSERT_TRUE(fillsScreen());
  EXPECT_TRUE(isAbove(control(), main()));
  press(XK_f);
  EXPECT_TRUE(showing(control(), false));
  EXPECT_TRUE(outerBecomes(main(), startPlace()));
  EXPECT_TRUE(showsGrey());
}

TEST_P(Forms, MaximisedItComesBackToTheSameBounds) {
  begin();
  ASSERT_TRUE(outerBecomes(main(), startPlace()));
  if (!supports("_NET_WM_STATE_MAXIMIZED_VERT"))
    GTEST_SKIP() << "The window manager does not maximise windows.";
  // Moves the mouse away from the title's buttons, which may show tips over the view.
  x().moveMouse(640, 600);
  for (int round = 0; round < 3; ++round) {
    ask(true, "_NET_WM_STATE_MAXIMIZED_HORZ", "_NET_WM_STATE_MAXIMIZED_VERT");
    ASSERT_TRUE(eventually(
        [&] { return view().width > 1200 && hasState("_NET_WM_STATE_MAXIMIZED_HORZ"); }));
    settle();
    EXPECT_TRUE(showsGrey());
    // The key that ends full screen also ends the maximised form.
    press(XK_f);
    EXPECT_TRUE(outerBecomes(main(), startPlace())) << round;
    EXPECT_TRUE(showsGrey());
  }
  EXPECT_FALSE(x().isShown(control()));
}

TEST_P(Forms, MinimisedItComesBack) {
  if (GetParam().manager == Manager::I3) GTEST_SKIP() << "The window manager minimises no windows.";
  begin();
  ASSERT_TRUE(outerBecomes(main(), startPlace()));
  constexpr std::uint32_t iconic = 3;
  x().tellManager(main(), "WM_CHANGE_STATE", {iconic});
  ASSERT_TRUE(eventually([&] { return !x().isShown(main()) || hasState("_NET_WM_STATE_HIDDEN"); }));
  scene().draw(scene().at(0), noise(300, 200, 9), 500, 350);
  x().activate(main());
  if (!x().isShown(main()) && !supports("_NET_ACTIVE_WINDOW")) {
    xcb_map_window(x().connection(), main());
    x().sync();
  }
  ASSERT_TRUE(showing(main(), true));
  EXPECT_TRUE(outerBecomes(main(), startPlace()));
  EXPECT_TRUE(showsGrey());
}

TEST_P(Forms, TheColourSpaceWindowStaysDockedPastTheEdge) {
  begin(true);
  ASSERT_TRUE(showing(colourSpace(), true));
  ASSERT_TRUE(outerBecomes(main(), startPlace()));
  dragMain(-300, 0);
  EXPECT_TRUE(isDocked());
  // Docks past the edge, where the window manager may keep the window on the screen.
  for (int round = 0; round < 2; ++round) {
    const Area before = outer(main());
    dragInside(600, 150, 12);
    ASSERT_TRUE(eventually([&] { return outer(main()).x == before.x + 600; }));
    settle();
    dragInside(-600, -150, 12);
    EXPECT_TRUE(outerBecomes(main(), before));
    EXPECT_TRUE(isDocked()) << round;
  }
}

TEST_P(Forms, ItEndsAndStartsAgain) {
  for (int round = 0; round < 2; ++round) {
    begin(true);
    EXPECT_TRUE(outerBecomes(main(), startPlace()));
    dragMain(-300, 0);
    EXPECT_TRUE(isDocked());
    end();
    EXPECT_EQ(readFile(errorsFile()), "");
  }
}

std::vector<Desktop> formDesktops() {
  std::vector<Desktop> chosen;
  std::ranges::copy_if(allDesktops(), std::back_inserter(chosen), [](const Desktop& desktop) {
    return desktop.compositor == Compositor::None;
  });
  return chosen;
}

INSTANTIATE_TEST_SUITE_P(On, Forms, testing::ValuesIn(formDesktops()), nameOf);

}  // namespace
}  // namespace tintora::desktop_test
