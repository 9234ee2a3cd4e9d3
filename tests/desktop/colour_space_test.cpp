// The colour space window as a window: its place, when it is shown, and its title.
#include <algorithm>
#include <array>
#include <chrono>
#include <thread>

#include "program_run.h"

namespace tintora::desktop_test {
namespace {

struct ViewRow {
  xcb_keysym_t key;
  int code;
  const char* caption;
};
constexpr std::array<ViewRow, 4> views{{{XK_e, 702, "Photoreceptor Response Curves"},
                                        {XK_r, 703, "RGB Cube"},
                                        {XK_c, 704, "Chromaticity Diagram"},
                                        {XK_F1, 705, "Help"}}};

class ColourSpace : public ProgramTest {
 protected:
  testing::AssertionResult isDocked() const {
    const Area main = x().outerAreaOf(ProgramTest::main());
    const Area own = x().outerAreaOf(colourSpace());
    if (eventually([&] {
          const Area m = x().outerAreaOf(ProgramTest::main());
          const Area c = x().outerAreaOf(colourSpace());
          return c.x == m.right() + 4 && c.y == m.y;
        })) {
      return testing::AssertionSuccess();
    }
    return testing::AssertionFailure()
           << testing::PrintToString(own) << " beside " << testing::PrintToString(main);
  }
  testing::AssertionResult isCalled(const std::string& caption) const {
    if (eventually([&] { return title(colourSpace()) == caption; })) {
      return testing::AssertionSuccess();
    }
    return testing::AssertionFailure() << title(colourSpace());
  }
  void start(long view, bool visible) {
    storeValues({{"Selected", 2}, {"View", view}, {"ColorSpace", visible ? 1 : 0}});
    ProgramTest::start();
  }
};

TEST_F(ColourSpace, IsShownAndDockedAtTheFirstStart) {
  ProgramTest::start();
  EXPECT_TRUE(showing(colourSpace(), true));
  EXPECT_TRUE(isCalled("Help"));
  EXPECT_TRUE(isDocked());
  const Area outer = x().outerAreaOf(colourSpace());
  EXPECT_EQ(outer.width, 400);
  EXPECT_EQ(outer.height, 400);
}

TEST_F(ColourSpace, IsHiddenWhereItWasHiddenBefore) {
  start(703, false);
  settle();
  EXPECT_FALSE(x().isShown(colourSpace()));
}

// The window manager announces no frame, and takes longer than the program waits for answers.
TEST_F(ColourSpace, HiddenAndShownItKeepsItsSizeUnderASlowManager) {
  useDisplay({}, Manager::Openbox);
  const auto held = display().holdManager(std::chrono::milliseconds(3500));
  start(703, true);
  const auto size = [this] {
    const Area outer = x().outerAreaOf(colourSpace());
    return std::array{outer.width, outer.height};
  };
  held.wait();
  ASSERT_TRUE(eventually([&] { return x().topLevelOf(colourSpace()) != colourSpace(); }));
  settle();
  const int frame = size()[1] - x().areaOf(colourSpace()).height;
  x().resize(colourSpace(), 350, 370);
  ASSERT_TRUE(eventually(
      [&] { return x().areaOf(colourSpace()).height == 370 && size()[1] == 370 + frame; }));
  settle();
  const std::array before = size();
  for (int round = 0; round < 2; ++round) {
    x().tellManager(colourSpace(), "_NET_CLOSE_WINDOW", {0, 2});
    ASSERT_TRUE(showing(colourSpace(), false));
    settle();
    press(XK_r);
    ASSERT_TRUE(showing(colourSpace(), true));
    EXPECT_TRUE(isDocked());
    EXPECT_TRUE(eventually([&] { return size() == before; }))
        << testing::PrintToString(size()) << " was " << testing::PrintToString(before);
  }
}

TEST_F(ColourSpace, EveryViewHasItsKeyAndItsTitle) {
  start(703, false);
  for (const ViewRow& row : views) {
    press(row.key);
    EXPECT_TRUE(showing(colourSpace(), true)) << row.caption;
    EXPECT_TRUE(isCalled(row.caption));
    EXPECT_TRUE(isDocked());
  }
}

TEST_F(ColourSpace, TheStoredViewComesBack) {
  for (const ViewRow& row : views) {
    start(row.code, true);
    EXPECT_TRUE(showing(colourSpace(), true)) << row.caption;
    EXPECT_TRUE(isCalled(row.caption));
    end();
    EXPECT_EQ(storedValues()["View"], row.code);
  }
}

TEST_F(ColourSpace, F1HidesTheHelpAndShowsItAgain) {
  start(705, true);
  ASSERT_TRUE(showing(colourSpace(), true));
  press(XK_F1);
  EXPECT_TRUE(showing(colourSpace(), false));
  press(XK_F1);
  EXPECT_TRUE(showing(colourSpace(), true));
  EXPECT_TRUE(isDocked());
}

TEST_F(ColourSpace, KeyWShowsTheCubeInPlaceOfTheHelpAndHidesTheRest) {
  start(705, true);
  ASSERT_TRUE(showing(colourSpace(), true));
  press(XK_w);
  EXPECT_TRUE(isCalled("RGB Cube"));
  EXPECT_TRUE(x().isShown(colourSpace()));
  press(XK_w);
  EXPECT_TRUE(showing(colourSpace(), false));
  press(XK_w);
  EXPECT_TRUE(showing(colourSpace(), true));
  EXPECT_TRUE(isCalled("RGB Cube"));
}

TEST_F(ColourSpace, KeysInItAreKeysOfTheProgram) {
  start(703, true);
  ASSERT_TRUE(showing(colourSpace(), true));
  pressIn(colourSpace(), XK_g);
  EXPECT_TRUE(titleBecomes("Greyscale"));
}

TEST_F(ColourSpace, ItsCloseButtonHidesIt) {
  start(703, true);
  ASSERT_TRUE(showing(colourSpace(), true));
  x().tellManager(colourSpace(), "_NET_CLOSE_WINDOW", {0, 2});
  EXPECT_TRUE(showing(colourSpace(), false));
  settle();
  EXPECT_TRUE(process().isRunning());
  press(XK_r);
  EXPECT_TRUE(showing(colourSpace(), true));
  EXPECT_TRUE(isDocked());
}

TEST_F(ColourSpace, DockedItFollowsTheMainWindow) {
  start(703, true);
  ASSERT_TRUE(isDocked());
  const Area area = view();
  dragMouse(area.x + 60, area.y + 60, -120, 40);
  EXPECT_TRUE(isDocked());
  press(XK_Right);
  press(XK_Right, {XK_Shift_L});
  EXPECT_TRUE(isDocked());
  x().resize(main(), 433, 222);
  ASSERT_TRUE(eventually([&] { return view().width == 433; }));
  EXPECT_TRUE(isDocked());
}

// The window manager keeps the docked window on the screen, and answers the drag late, while the
// mouse is where that window was.
TEST_F(ColourSpace, ItStaysDockedWhenASlowManagerAnswersADrag) {
  useDisplay({}, Manager::Openbox, "1280x800");
  start(703, true);
  ASSERT_TRUE(isDocked());
  dragMouse(view().x + 60, view().y + 60, -300, 0);
  ASSERT_TRUE(isDocked());
  const Area before = view();
  const Area screen = x().screenArea();
  const Area beside = x().outerAreaOf(colourSpace());
  x().moveMouse(before.x + 60, before.y + 60);
  x().button(1, true);
  settle();
  {
    const auto held = display().holdManager(std::chrono::milliseconds(1500));
    x().moveMouse(screen.right() - 25, before.y + 70);
    settle();
  }
  ASSERT_TRUE(eventually([&] { return view().x > before.x && view().y > before.y; }));
  ASSERT_TRUE(eventually([&] { return x().outerAreaOf(colourSpace()).x > beside.x; }));
  settle();
  x().moveMouse(before.x + 60, before.y + 60);
  x().button(1, false);
  settle();
  ASSERT_TRUE(eventually([&] { return view() == before; }));
  EXPECT_TRUE(isDocked());
}

TEST_F(ColourSpace, ADragOfItUndocksItAndKeyKDocksItAgain) {
  start(703, true);
  ASSERT_TRUE(isDocked());
  // Waits, because a move while the main window moves counts as the window manager's.
  settle();
  std::this_thread::sleep_for(std::chrono::milliseconds(600));
  ASSERT_TRUE(dragTitle(colourSpace(), 90, 70));
  const Area moved = x().outerAreaOf(colourSpace());
  // A docked window follows the main window's right edge.
  for (int i = 0; i < 3; ++i) press(XK_Left, {XK_Shift_L});
  EXPECT_EQ(x().outerAreaOf(colourSpace()), moved);
  press(XK_k);
  EXPECT_TRUE(isDocked());
  const int width = view().width;
  press(XK_Left, {XK_Shift_L});
  ASSERT_TRUE(eventually([&] { return view().width == width - 1; }));
  EXPECT_TRUE(isDocked());
  press(XK_k);
  const Area docked = x().outerAreaOf(colourSpace());
  for (int i = 0; i < 3; ++i) press(XK_Left, {XK_Shift_L});
  EXPECT_EQ(x().outerAreaOf(colourSpace()), docked);
}

TEST_F(ColourSpace, AppearsAboveTheFullScreen) {
  start(703, false);
  press(XK_f);
  ASSERT_TRUE(eventually([&] { return view() == x().screenArea(); }));
  press(XK_e);
  ASSERT_TRUE(showing(colourSpace(), true));
  // Some window managers show above a full screen only what belongs to it.
  EXPECT_TRUE(eventually(
      [&] { return x().numbers(colourSpace(), "WM_TRANSIENT_FOR") == std::vector{main()}; }));
  EXPECT_TRUE(eventually([&] {
    const auto stack = x().numbers(x().root(), "_NET_CLIENT_LIST_STACKING");
    const auto own = std::ranges::find(stack, colourSpace());
    return own != stack.end() && std::ranges::find(stack, main()) < own;
  }));
}

TEST_F(ColourSpace, FullScreenUndocksIt) {
  start(703, true);
  ASSERT_TRUE(isDocked());
  press(XK_f);
  ASSERT_TRUE(eventually([&] { return view() == x().screenArea(); }));
  press(XK_f);
  ASSERT_TRUE(eventually([&] { return view() != x().screenArea(); }));
  settle();
  const Area outer = x().outerAreaOf(colourSpace());
  press(XK_Left, {XK_Shift_L});
  EXPECT_EQ(x().outerAreaOf(colourSpace()), outer);
}

}  // namespace
}  // namespace tintora::desktop_test
