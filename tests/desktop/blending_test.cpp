// Windows that let through what is beneath them, and the background of the screen.
#include "program_run.h"

namespace tintora::desktop_test {
namespace {

// Premultiplied pixels of every alpha.
Picture translucentNoise(int width, int height, std::uint32_t seed) {
  Picture picture = noise(width, height, seed);
  const Picture alphas = noise(width, height, seed + 1000);
  for (std::size_t i = 0; i < picture.pixels.size(); ++i) {
    const std::uint32_t alpha = alphas.pixels[i] & 0xFFU;
    const std::uint32_t pixel = picture.pixels[i];
    std::uint32_t result = alpha << 24U;
    for (const unsigned int shift : {0U, 8U, 16U}) {
      result |= ((pixel >> shift & 0xFFU) * alpha / 255U) << shift;
    }
    picture.pixels[i] = result;
  }
  return picture;
}

// Through no transform: rounded once by the server, and once more by nobody.
class Blending : public ProgramTest {
 protected:
  void SetUp() override {
    ProgramTest::SetUp();
    storeValues({{"Selected", 2}, {"ColorSpace", 0}});
    start();
    press(XK_Tab);
    ASSERT_TRUE(titleBecomes(offTitle));
  }
  Area within(int x, int y, int width, int height) const {
    const Area area = view();
    return {area.x + x, area.y + y, width, height};
  }
};

TEST_F(Blending, ATranslucentWindowLetsTheBackgroundThrough) {
  scene().add({.place = within(30, 20, 300, 250),
               .picture = translucentNoise(300, 250, 1),
               .translucent = true});
  EXPECT_TRUE(viewShows(identityEffect));
}

TEST_F(Blending, ATranslucentWindowLetsWindowsThrough) {
  scene().addNoise(within(10, 60, 350, 150), 1);
  Sheet& sheet = scene().add({.place = within(30, 20, 300, 250),
                              .picture = translucentNoise(300, 250, 2),
                              .translucent = true});
  EXPECT_TRUE(viewShows(identityEffect));
  scene().move(sheet, sheet.place.x + 71, sheet.place.y + 40);
  EXPECT_TRUE(viewShows(identityEffect));
  scene().resize(sheet, translucentNoise(90, 310, 3));
  EXPECT_TRUE(viewShows(identityEffect));
  // What changes beneath it changes the sum.
  scene().draw(scene().at(0), noise(100, 70, 4), 120, 30);
  EXPECT_TRUE(viewShows(identityEffect));
}

TEST_F(Blending, AWindowOverATranslucentOneHidesIt) {
  scene().add({.place = within(30, 20, 300, 250),
               .picture = translucentNoise(300, 250, 1),
               .translucent = true});
  scene().addNoise(within(100, 50, 120, 120), 2);
  EXPECT_TRUE(viewShows(identityEffect));
}

TEST_F(Blending, AWindowsOpacityIsFollowed) {
  scene().addNoise(within(10, 60, 350, 150), 1);
  Sheet& sheet = scene().addNoise(within(30, 20, 300, 250), 2);
  ASSERT_TRUE(viewShows(identityEffect));
  for (const double opacity : {0.5, 0.0, 0.8, 1.0}) {
    scene().setOpacity(sheet, opacity);
    EXPECT_TRUE(viewShows(identityEffect)) << opacity;
  }
  xcb_delete_property(x().connection(), sheet.window, x().atom("_NET_WM_WINDOW_OPACITY"));
  x().sync();
  EXPECT_TRUE(viewShows(identityEffect));
}

TEST_F(Blending, AShapedTranslucentWindowIsBlendedInItsShape) {
  scene().addNoise(within(10, 60, 350, 150), 1);
  scene().add({.place = within(30, 20, 300, 250),
               .picture = translucentNoise(300, 250, 2),
               .translucent = true,
               .shape = {{{0, 0, 100, 250}, {150, 40, 90, 90}}}});
  EXPECT_TRUE(viewShows(identityEffect));
}

// Sets a pixmap as background setters do.
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

TEST_F(Background, APixmapThatIsGoneIsNotTaken) {
  const xcb_pixmap_t pixmap = x().pixmapOf(noise(64, 64, 1));
  name(pixmap);
  xcb_free_pixmap(x().connection(), pixmap);
  x().sync();
  storeValues({{"Selected", 4}});
  start();
  EXPECT_TRUE(viewShows(expected::greyscale()));
}

}  // namespace
}  // namespace tintora::desktop_test
