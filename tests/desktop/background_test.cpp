// The screen's background, when it is set and set again.
#include <chrono>
#include <cmath>
#include <filesystem>
#include <thread>

#include "program_run.h"

namespace tintora::desktop_test {
namespace {

// Sets a pixmap as the background, as background setters do.
class Background : public ProgramTest {
 protected:
  void name(xcb_pixmap_t pixmap) {
    x().setNumbers(x().root(), "_XROOTPMAP_ID", XCB_ATOM_PIXMAP, {pixmap});
  }
  void set(const Picture& tile) {
    const xcb_pixmap_t pixmap = x().pixmapOf(tile);
    xcb_change_window_attributes(x().connection(), x().root(), XCB_CW_BACK_PIXMAP, &pixmap);
    xcb_clear_area(x().connection(), 0, x().root(), 0, 0, 0, 0);
    name(pixmap);
  }

  // Starts a display on which a compositing manager paints a background of its own.
  void useComposedDisplay(const std::vector<std::string>& options = {}) {
    const auto composed =
        std::make_shared<XDisplay>(std::vector<std::string>{}, Manager::None, "1280x800");
    composed->startCompositor(options);
    useDisplay(composed);
  }
  // Draws a picture on the screen, as a compositing manager does.
  void drawOnScreen(const Picture& picture, const Area& place) const {
    const xcb_pixmap_t pixmap = x().pixmapOf(picture);
    const xcb_gcontext_t onScreen = xcb_generate_id(x().connection());
    const std::uint32_t mode = XCB_SUBWINDOW_MODE_INCLUDE_INFERIORS;
    xcb_create_gc(x().connection(), onScreen, x().root(), XCB_GC_SUBWINDOW_MODE, &mode);
    xcb_copy_area(x().connection(), pixmap, x().root(), onScreen, 0, 0, i16(place.x), i16(place.y),
                  u16(place.width), u16(place.height));
    xcb_free_gc(x().connection(), onScreen);
    xcb_free_pixmap(x().connection(), pixmap);
    x().sync();
  }
  // Returns true once the program has waited for longer than it ever does before it looks at the
  // screen.
  bool comesToRest() { return process().rests(std::chrono::milliseconds(1200)); }
  void moveView(int left, int top) {
    x().move(main(), left, top);
    ASSERT_TRUE(eventually([&] { return view().x == left; }));
    settle();
  }
  // Succeeds once a place within the view shows a picture in grey.
  testing::AssertionResult greyIn(const Area& place, const Picture& original) const {
    Picture seen;
    const auto isRight = [&](std::size_t i) {
      const Colour wanted = filtered(colourOf(original.pixels[i]), grey);
      const Colour actual = colourOf(seen.pixels[i]);
      for (std::size_t j = 0; j < 3; ++j) {
        if (std::abs(actual[j] - std::round(wanted[j])) > 1) return false;
      }
      return true;
    };
    std::size_t first = 0;
    const bool right = eventually([&] {
      seen = x().read(place);
      for (first = 0; first < seen.pixels.size() && isRight(first);) ++first;
      return first == original.pixels.size();
    });
    if (right) return testing::AssertionSuccess();
    saveScreen("background", x().screenArea());
    const int pixel = static_cast<int>(first);
    return testing::AssertionFailure() << "The pixel at " << place.x + pixel % place.width << ", "
                                       << place.y + pixel / place.width << " is wrong.";
  }
};

TEST_F(Background, ANamedPixmapIsSeen) {
  const Area screen = x().screenArea();
  const Picture tile = noise(screen.width, screen.height, 1);
  set(tile);
  storeValues({{"Selected", 4}});
  start();
  scene().setBackdrop(tile);
  EXPECT_TRUE(viewShows(expected::greyscale()));
}

TEST_F(Background, ASmallNamedPixmapIsRepeated) {
  const Picture tile = noise(61, 37, 1);
  set(tile);
  storeValues({{"Selected", 4}});
  start();
  scene().setBackdrop(tile);
  EXPECT_TRUE(viewShows(expected::greyscale()));
}

TEST_F(Background, AChangeOfTheNamedPixmapIsFollowed) {
  storeValues({{"Selected", 4}});
  start();
  ASSERT_TRUE(viewShows(expected::greyscale()));
  for (const std::uint32_t seed : {1U, 2U}) {
    const Picture tile = noise(300, 200, seed);
    set(tile);
    scene().setBackdrop(tile);
    EXPECT_TRUE(viewShows(expected::greyscale())) << seed;
  }
}

TEST_F(Background, AnUnnamedPixmapIsSeen) {
  const Picture tile = noise(64, 64, 1);
  const xcb_pixmap_t pixmap = x().pixmapOf(tile);
  xcb_change_window_attributes(x().connection(), x().root(), XCB_CW_BACK_PIXMAP, &pixmap);
  xcb_clear_area(x().connection(), 0, x().root(), 0, 0, 0, 0);
  xcb_free_pixmap(x().connection(), pixmap);
  x().sync();
  storeValues({{"Selected", 4}});
  start();
  scene().setBackdrop(tile);
  EXPECT_TRUE(viewShows(expected::greyscale()));
}

// A setter of one colour leaves no pixmap for other programs to read.
TEST_F(Background, AnUnnamedColourSetLaterIsFollowed) {
  storeValues({{"Selected", 4}});
  start();
  ASSERT_TRUE(viewShows(expected::greyscale()));
  for (const std::uint32_t colour : {0x20A060U, 0xD04010U}) {
    setBackground(colour);
    scene().setBackdrop(solid(1, 1, colour));
    EXPECT_TRUE(viewShows(expected::greyscale())) << colour;
  }
}

TEST_F(Background, AColourSetDuringFullScreenIsSeenAfterwards) {
  storeValues({{"Selected", 4}, {"ColorSpace", 0}});
  start();
  ASSERT_TRUE(viewShows(expected::greyscale()));
  const Area before = view();
  press(XK_f);
  ASSERT_TRUE(eventually([&] { return view() == x().screenArea(); }));
  ASSERT_TRUE(comesToRest());
  constexpr std::uint32_t colour = 0x20A060;
  setBackground(colour);
  scene().setBackdrop(solid(1, 1, colour));
  press(XK_f);
  ASSERT_TRUE(eventually([&] { return view() == before; }));
  EXPECT_TRUE(viewShows(expected::greyscale()));
}

// If the server reported that paint in the middle of an answer, the program would understand no
// later answer.
TEST_F(Background, ASettingIsFollowedWhileTheServerHasYetToPaintAWindow) {
  preload(TINTORA_LATE_PAINT);
  storeValues({{"Selected", 4}, {"ColorSpace", 0}});
  start();
  constexpr Area besideTheView{5, 5, 100, 80};
  scene().addNoise(besideTheView, 1);
  ASSERT_TRUE(viewShows(expected::greyscale()));
  for (const std::uint32_t colour : {0x20A060U, 0xD04010U}) {
    setBackground(colour);
    scene().setBackdrop(solid(1, 1, colour));
    EXPECT_TRUE(viewShows(expected::greyscale())) << colour;
  }
  EXPECT_TRUE(std::filesystem::exists(folder() + "/late-paint"));
}

TEST_F(Background, AnUnnamedPixmapIsSeenWhereverTheViewIsMoved) {
  const Picture tile = noise(70, 50, 1);
  const xcb_pixmap_t pixmap = x().pixmapOf(tile);
  xcb_change_window_attributes(x().connection(), x().root(), XCB_CW_BACK_PIXMAP, &pixmap);
  xcb_clear_area(x().connection(), 0, x().root(), 0, 0, 0, 0);
  x().sync();
  storeValues({{"Selected", 4}, {"ColorSpace", 0}});
  start();
  scene().setBackdrop(tile);
  for (const int left : {30, 700}) {
    x().move(main(), left, 100);
    EXPECT_TRUE(eventually([&] { return std::abs(view().x - left) < 40; }));
    EXPECT_TRUE(viewShows(expected::greyscale())) << left;
  }
}

TEST_F(Background, APixmapThatIsGoneIsNotTaken) {
  const xcb_pixmap_t pixmap = x().pixmapOf(noise(64, 64, 1));
  name(pixmap);
  xcb_free_pixmap(x().connection(), pixmap);
  x().sync();
  storeValues({{"Selected", 4}});
  start();
  EXPECT_TRUE(viewShows(expected::greyscale()));
}

// A compositing manager that is behind still draws a window in a place that the window leaves again
// and again. The picture of the window must not be taken for the background there.
TEST_F(Background, AWindowThatComesAndGoesIsNotTakenForIt) {
  constexpr std::chrono::milliseconds pause{60};
  constexpr std::chrono::milliseconds longestPause{250};
  useComposedDisplay();
  storeValues({{"Selected", 4}, {"ColorSpace", 0}});
  start();
  x().move(main(), 700, 300);
  const Area place{100, 100, 200, 150};
  ASSERT_TRUE(eventually([&] { return view().x == 700; }));
  settle();
  const Picture background = x().read(place);
  Sheet& sheet = scene().addNoise(place, 1);
  ASSERT_TRUE(eventually([&] { return x().read(place).pixels != background.pixels; }));
  const Picture late = x().read(place);
  {
    const auto held = display().holdCompositor(std::chrono::milliseconds(3500));
    for (int i = 0; i < 30; ++i) {
      const auto left = std::chrono::steady_clock::now();
      scene().move(sheet, 900, 20);
      drawOnScreen(late, place);
      std::this_thread::sleep_for(pause);
      scene().move(sheet, place.x, place.y);
      const auto away = std::chrono::steady_clock::now() - left;
      if (away > longestPause) GTEST_SKIP() << "The machine is too busy.";
    }
    x().move(main(), 90, 90);
    ASSERT_TRUE(eventually([&] { return view().x == 90; }));
    settle();
    scene().move(sheet, 900, 20);
  }
  EXPECT_TRUE(greyIn(place, background));
}

// The shadow was on the screen when the program started, so the background without it is not known.
TEST_F(Background, AShadowLeavesNoTrace) {
  for (const std::string radius : {"12", "60"}) {
    useComposedDisplay({"--shadow", "--shadow-radius", radius, "--shadow-opacity", "0.9"});
    const Picture background = x().read(x().screenArea());
    Scene sheets(display().name(), XCB_NONE);
    Sheet& sheet = sheets.addNoise({300, 250, 200, 150}, 1);
    constexpr Area besideIt{502, 300, 4, 4};
    ASSERT_TRUE(eventually([&] { return x().read(besideIt).at(0, 0) != background.at(0, 0); }));
    storeValues({{"Selected", 4}, {"ColorSpace", 0}});
    start();
    moveView(150, 120);
    sheets.putBelow(main());
    settle();
    sheets.move(sheet, 1000, 600);
    const Area seen = view();
    Picture wanted = solid(seen.width, seen.height, background.at(0, 0));
    EXPECT_TRUE(greyIn(seen, wanted)) << "The shadow's radius was " << radius << ".";
    end();
  }
}

// While windows cover the whole screen, the program does not follow what is drawn there.
TEST_F(Background, WhatAWindowUncoversBesideTheViewIsSeenLater) {
  useComposedDisplay();
  constexpr Area uncovered{640, 0, 640, 800};
  const Picture empty = x().read(uncovered);
  Scene sheets(display().name(), XCB_NONE);
  sheets.addNoise({0, 0, 640, 800}, 2);
  Sheet& right = sheets.addNoise(uncovered, 3);
  storeValues({{"Selected", 4}, {"ColorSpace", 0}});
  start();
  sheets.putBelow(main());
  moveView(40, 120);
  ASSERT_TRUE(comesToRest());
  sheets.move(right, 1280, 0);
  // The compositing manager paints there first.
  ASSERT_TRUE(eventually([&] { return x().read(uncovered).pixels == empty.pixels; }));
  const Picture background = noise(640, 800, 4);
  drawOnScreen(background, uncovered);
  ASSERT_TRUE(comesToRest());
  moveView(740, 120);
  constexpr Area within{800, 200, 100, 100};
  EXPECT_TRUE(greyIn(within, partOf(background, {160, 200, 100, 100})));
}

// The background was seen before the shadow came. When another background is set later, it is
// learned in the shadow too, because the one that was known is out of date.
TEST_F(Background, AShadowIsNotTakenForAPartOfAPicture) {
  useComposedDisplay();
  const Picture background = noise(1280, 800, 1);
  drawOnScreen(background, x().screenArea());
  storeValues({{"Selected", 4}, {"ColorSpace", 0}});
  start();
  Sheet& sheet = scene().addNoise({100, 100, 120, 80}, 2);
  constexpr Area besideIt{80, 100, 20, 80};
  drawOnScreen(solid(besideIt.width, besideIt.height, 0x101010), besideIt);
  EXPECT_TRUE(comesToRest());
  moveView(40, 40);
  scene().move(sheet, 1000, 600);
  constexpr Area aroundIt{60, 60, 200, 200};
  EXPECT_TRUE(greyIn(aroundIt, partOf(background, aroundIt)));

  const Picture other = noise(1280, 800, 3);
  for (const Area& besideTheView : {Area{560, 0, 720, 800}, Area{0, 460, 560, 340}}) {
    drawOnScreen(partOf(other, besideTheView), besideTheView);
  }
  EXPECT_TRUE(comesToRest());
  moveView(760, 380);
  scene().move(sheet, 20, 20);
  constexpr Area leftOfIt{960, 560, 40, 180};
  EXPECT_TRUE(greyIn(leftOfIt, partOf(other, leftOfIt)));
}

// Another window was near from the beginning, so the background there may have had its shadow.
TEST_F(Background, AShadowOfTheMainWindowIsNotTakenForAPartOfAPicture) {
  useComposedDisplay();
  Scene sheets(display().name(), XCB_NONE);
  sheets.addNoise({300, 100, 60, 60}, 2);
  const Picture background = noise(1280, 800, 1);
  drawOnScreen(background, x().screenArea());
  storeValues({{"Selected", 4}, {"ColorSpace", 0}});
  start();
  const Area shadow{view().x - 20, 200, 20, 80};
  ASSERT_LT(shadow.x, 400);
  drawOnScreen(solid(shadow.width, shadow.height, 0x101010), shadow);
  EXPECT_TRUE(comesToRest());
  moveView(shadow.x - 60, 180);
  EXPECT_TRUE(greyIn(shadow, partOf(background, shadow)));
}

}  // namespace
}  // namespace tintora::desktop_test
