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
  useDisplay(std::make_shared<XDisplay>(std::vector<std::string>{}, Manager::None, "1280x800",
                                        Compositor::Picom));
  storeValues({{"Selected", 4}, {"ColorSpace", 0}});
  start();
  x().move(main(), 700, 300);
  const Area place{100, 100, 200, 150};
  ASSERT_TRUE(eventually([&] { return view().x == 700; }));
  settle();
  const Picture background = x().read(place);
  Sheet& sheet = scene().addNoise(place, 1);
  ASSERT_TRUE(eventually([&] { return x().read(place).pixels != background.pixels; }));
  const xcb_pixmap_t late = x().pixmapOf(x().read(place));
  const xcb_gcontext_t onScreen = xcb_generate_id(x().connection());
  const std::uint32_t mode = XCB_SUBWINDOW_MODE_INCLUDE_INFERIORS;
  xcb_create_gc(x().connection(), onScreen, x().root(), XCB_GC_SUBWINDOW_MODE, &mode);
  {
    const auto held = display().holdCompositor(std::chrono::milliseconds(3500));
    for (int i = 0; i < 30; ++i) {
      const auto left = std::chrono::steady_clock::now();
      scene().move(sheet, 900, 20);
      xcb_copy_area(x().connection(), late, x().root(), onScreen, 0, 0, 100, 100, 200, 150);
      x().sync();
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
  const auto shows = [&] {
    const Picture seen = x().read(place);
    for (std::size_t i = 0; i < seen.pixels.size(); ++i) {
      const Colour wanted = filtered(colourOf(background.pixels[i]), grey);
      const Colour actual = colourOf(seen.pixels[i]);
      for (std::size_t j = 0; j < 3; ++j) {
        if (std::abs(actual[j] - std::round(wanted[j])) > 1) return false;
      }
    }
    return true;
  };
  EXPECT_TRUE(eventually(shows));
}

}  // namespace
}  // namespace tintora::desktop_test
