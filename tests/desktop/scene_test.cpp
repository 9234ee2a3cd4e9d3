// The view shows what lies beneath it, whatever that is and however it changes.
#include "program_run.h"

namespace tintora::desktop_test {
namespace {

using expected::effectOf;
using expected::juddDeutan;

const ColourEffect deutan = effectOf(juddDeutan(1));

// Starts with a deutan simulation.
class Beneath : public ProgramTest {
 protected:
  void SetUp() override {
    ProgramTest::SetUp();
    storeValues({{"Selected", 2}, {"ColorSpace", 0}});
    start();
  }
  // Returns a part of the view, relative to its top left corner.
  Area within(int x, int y, int width, int height) const {
    const Area area = view();
    return {area.x + x, area.y + y, width, height};
  }
  // Moves a framed window, frame included. The window manager decides where the inside then is.
  void moveFramed(Sheet& sheet, int left, int top) {
    x().move(sheet.window, left, top);
    ASSERT_TRUE(eventually([&] {
      const Area outer = x().outerAreaOf(sheet.window);
      return outer.x == left && outer.y == top;
    })) << testing::PrintToString(x().outerAreaOf(sheet.window));
    sheet.place = x().areaOf(sheet.window);
  }
};

TEST_F(Beneath, TheBackgroundIsSeen) {
  EXPECT_TRUE(viewShows(deutan));
}

TEST_F(Beneath, AWindowIsSeen) {
  scene().addNoise(within(-20, -30, 700, 600), 1);
  EXPECT_TRUE(viewShows(deutan));
}

TEST_F(Beneath, WindowsCoverEachOther) {
  scene().addNoise(within(20, 10, 300, 200), 1);
  scene().addNoise(within(100, 90, 250, 220), 2);
  scene().addNoise(within(50, 150, 200, 100), 3);
  EXPECT_TRUE(viewShows(deutan));
}

TEST_F(Beneath, AWindowThatMovesIsFollowed) {
  Sheet& sheet = scene().addNoise(within(10, 10, 200, 150), 1);
  ASSERT_TRUE(viewShows(deutan));
  for (const int step : {1, 60, 301, -350}) {
    scene().move(sheet, sheet.place.x + step, sheet.place.y + step / 2);
    EXPECT_TRUE(viewShows(deutan));
  }
}

TEST_F(Beneath, AWindowOfAnotherSizeIsFollowed) {
  Sheet& sheet = scene().addNoise(within(10, 10, 200, 150), 1);
  ASSERT_TRUE(viewShows(deutan));
  scene().resize(sheet, noise(320, 90, 2));
  EXPECT_TRUE(viewShows(deutan));
  scene().resize(sheet, noise(31, 290, 3));
  EXPECT_TRUE(viewShows(deutan));
}

TEST_F(Beneath, RestackedWindowsAreFollowed) {
  Sheet& first = scene().addNoise(within(10, 10, 200, 150), 1);
  Sheet& second = scene().addNoise(within(60, 40, 200, 150), 2);
  scene().addNoise(within(120, 20, 200, 250), 3);
  ASSERT_TRUE(viewShows(deutan));
  scene().restack(first, 2);
  EXPECT_TRUE(viewShows(deutan));
  scene().restack(second, 1);
  EXPECT_TRUE(viewShows(deutan));
  scene().restack(first, 0);
  EXPECT_TRUE(viewShows(deutan));
}

TEST_F(Beneath, WindowsComeAndGo) {
  scene().addNoise(within(10, 10, 200, 150), 1);
  Sheet& second = scene().addNoise(within(60, 40, 200, 150), 2);
  ASSERT_TRUE(viewShows(deutan));
  scene().show(second, false);
  EXPECT_TRUE(viewShows(deutan));
  scene().show(second, true);
  EXPECT_TRUE(viewShows(deutan));
  scene().remove(second);
  EXPECT_TRUE(viewShows(deutan));
}

TEST_F(Beneath, ABorderIsSeen) {
  scene().add({.place = within(40, 40, 200, 150),
               .picture = noise(200, 150, 1),
               .border = 7,
               .borderColour = 0xFF20C040});
  EXPECT_TRUE(viewShows(deutan));
}

TEST_F(Beneath, AShapedWindowIsSeenInItsShape) {
  Sheet& sheet = scene().add({.place = within(40, 40, 200, 150),
                              .picture = noise(200, 150, 1),
                              .shape = {{{0, 0, 50, 150}, {80, 30, 100, 60}}}});
  EXPECT_TRUE(viewShows(deutan));
  scene().shape(sheet, {{10, 20, 180, 40}, {150, 100, 70, 70}});
  EXPECT_TRUE(viewShows(deutan));
  scene().move(sheet, sheet.place.x + 33, sheet.place.y - 12);
  EXPECT_TRUE(viewShows(deutan));
}

TEST_F(Beneath, AShapeThatLeavesNothingShowsNothing) {
  Sheet& sheet = scene().addNoise(within(40, 40, 200, 150), 1);
  ASSERT_TRUE(viewShows(deutan));
  scene().shape(sheet, {});
  EXPECT_TRUE(viewShows(deutan));
  scene().shape(sheet, {{0, 0, 200, 150}});
  EXPECT_TRUE(viewShows(deutan));
}

TEST_F(Beneath, AShapedWindowWithABorderIsSeenInItsShape) {
  scene().add({.place = within(40, 40, 200, 150),
               .picture = noise(200, 150, 1),
               .border = 9,
               .borderColour = 0xFFC02040,
               .shape = {{{-9, -9, 80, 90}, {100, 60, 200, 200}}}});
  EXPECT_TRUE(viewShows(deutan));
}

TEST_F(Beneath, AWindowPartlyOffTheScreenIsSeen) {
  scene().addNoise({-700, -500, 2200, 1200}, 1);
  EXPECT_TRUE(viewShows(deutan));
}

TEST_F(Beneath, AWindowThatHidesAnotherLetsNothingOfItThrough) {
  scene().addNoise(within(10, 10, 100, 100), 1);
  Sheet& cover = scene().addNoise(within(-10, -40, 600, 500), 2);
  ASSERT_TRUE(viewShows(deutan));
  scene().draw(scene().at(0), noise(50, 50, 3), 10, 10);
  EXPECT_TRUE(viewShows(deutan));
  scene().remove(cover);
  EXPECT_TRUE(viewShows(deutan));
}

TEST_F(Beneath, AWindowAboveTheViewIsNotInIt) {
  Sheet& sheet = scene().addNoise(within(10, 10, 200, 150), 1);
  ASSERT_TRUE(viewShows(deutan));
  x().restack(sheet.window, XCB_STACK_MODE_ABOVE);
  sheet.shown = false;
  EXPECT_TRUE(viewShows(deutan, common(within(250, 0, 250, 400), view())));
  // After the window has gone, the view's own pixels must be back.
  scene().remove(sheet);
  EXPECT_TRUE(viewShows(deutan));
}

TEST_F(Beneath, AWindowThatComesBackBeneathIsSeenAgain) {
  Sheet& sheet = scene().addNoise(within(10, 10, 200, 150), 1);
  x().restack(sheet.window, XCB_STACK_MODE_ABOVE);
  settle();
  x().restack(sheet.window, XCB_STACK_MODE_BELOW, x().topLevelOf(main()));
  EXPECT_TRUE(viewShows(deutan));
}

TEST_F(Beneath, AChildThatDrawsIsSeen) {
  Sheet& sheet = scene().addNoise(within(10, 10, 300, 200), 1);
  // Until the program gives the window pixels of its own, what is drawn beneath the view is lost,
  // and nobody draws the child again.
  ASSERT_TRUE(viewShows(deutan));
  const xcb_window_t child = xcb_generate_id(x().connection());
  xcb_create_window(x().connection(), XCB_COPY_FROM_PARENT, child, sheet.window, 40, 30, 120, 90, 0,
                    XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
  xcb_map_window(x().connection(), child);
  for (const std::uint32_t seed : {5U, 6U}) {
    const Picture part = noise(120, 90, seed);
    x().draw(child, part);
    for (int row = 0; row < part.height; ++row) {
      std::copy_n(part.pixels.begin() + row * part.width, part.width,
                  sheet.picture.pixels.begin() + (30 + row) * sheet.picture.width + 40);
    }
    EXPECT_TRUE(viewShows(deutan));
  }
}

TEST_F(Beneath, AFramedWindowIsSeen) {
  Sheet& sheet = scene().add(
      {.place = within(60, 60, 250, 150), .picture = noise(250, 150, 1), .managed = true});
  ASSERT_NE(x().topLevelOf(sheet.window), sheet.window);
  moveFramed(sheet, view().x + 80, view().y + 90);
  // Only the inside is checked, because the window manager decides how its frame looks.
  EXPECT_TRUE(viewShows(deutan, common(sheet.place, view())));
  scene().draw(sheet, noise(100, 80, 2), 20, 30);
  EXPECT_TRUE(viewShows(deutan, common(sheet.place, view())));
}

TEST_F(Beneath, AnIconifiedWindowIsGone) {
  Sheet& sheet = scene().add(
      {.place = within(60, 60, 250, 150), .picture = noise(250, 150, 1), .managed = true});
  moveFramed(sheet, view().x + 80, view().y + 90);
  ASSERT_TRUE(viewShows(deutan, common(sheet.place, view())));
  constexpr std::uint32_t iconic = 3;
  x().tellManager(sheet.window, "WM_CHANGE_STATE", {iconic});
  sheet.shown = false;
  EXPECT_TRUE(viewShows(deutan));
  scene().remove(sheet);
}

}  // namespace
}  // namespace tintora::desktop_test
