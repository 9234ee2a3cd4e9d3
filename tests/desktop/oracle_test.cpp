// Through the identity matrix, the view must show the screen as it is without the program. A
// picture of the screen is taken first, and then compared with the view.
#include <algorithm>

#include "clipboard_reader.h"
#include "on_desktop.h"

namespace tintora::desktop_test {
namespace {

// Returns premultiplied pixels with every alpha.
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

// The area of the scenes, with the view over them. The rest of the screen is for the bystander.
constexpr Area stage{200, 100, 640, 480};
// A corner of the screen for the window that shows when the screen is painted.
constexpr Area markerPlace{1240, 760, 20, 20};

class Oracle : public OnDesktop {
 protected:
  void SetUp() override {
    OnDesktop::SetUp();
    sheets_ = std::make_unique<Scene>(display().name(), XCB_NONE);
  }
  void TearDown() override {
    if (marker_ != XCB_NONE) xcb_destroy_window(x().connection(), marker_);
    while (sheets_ && sheets_->size() > 0) sheets_->remove(sheets_->at(0));
    sheets_.reset();
    OnDesktop::TearDown();
  }
  Scene& sheets() { return *sheets_; }
  // Sets the background as background setters do.
  void setNamedBackground(std::uint32_t seed) {
    const Area screen = x().screenArea();
    const xcb_pixmap_t pixmap = x().pixmapOf(noise(screen.width, screen.height, seed));
    xcb_change_window_attributes(x().connection(), x().root(), XCB_CW_BACK_PIXMAP, &pixmap);
    xcb_clear_area(x().connection(), 0, x().root(), 0, 0, 0, 0);
    x().setNumbers(x().root(), "_XROOTPMAP_ID", XCB_ATOM_PIXMAP, {pixmap});
  }
  Area within(int left, int top, int width, int height) const {
    return {stage.x + left, stage.y + top, width, height};
  }

  Sheet& addManaged(const Area& place, std::uint32_t seed) {
    Sheet& sheet = sheets().add(
        {.place = place, .picture = noise(place.width, place.height, seed), .managed = true});
    const xcb_window_t window = sheet.window;
    EXPECT_TRUE(eventually([&] { return x().isShown(window); }));
    x().move(window, place.x, place.y);
    return sheet;
  }
  // Adds a window that takes the focus, so that no frame in the scene changes by losing it.
  void addBystander() {
    const Sheet& bystander = addManaged({950, 650, 200, 80}, 99);
    xcb_set_input_focus(x().connection(), XCB_INPUT_FOCUS_POINTER_ROOT, bystander.window,
                        XCB_CURRENT_TIME);
    x().sync();
  }

  // Waits until the screen shows a window's new colour. A compositing manager paints in the order
  // of events, so it has then painted everything before.
  void waitUntilPainted() {
    xcb_connection_t* const c = x().connection();
    if (marker_ == XCB_NONE) {
      marker_ = xcb_generate_id(c);
      constexpr std::uint32_t unmanaged = 1;
      xcb_create_window(c, XCB_COPY_FROM_PARENT, marker_, x().root(), i16(markerPlace.x),
                        i16(markerPlace.y), u16(markerPlace.width), u16(markerPlace.height), 0,
                        XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                        XCB_CW_OVERRIDE_REDIRECT, &unmanaged);
      xcb_map_window(c, marker_);
    }
    // Events that others must answer first have then been sent.
    sheets().client().sync();
    x().restack(marker_, XCB_STACK_MODE_ABOVE);
    markerColour_ = (markerColour_ + 0x204060U) & 0xFFFFFFU;
    xcb_change_window_attributes(c, marker_, XCB_CW_BACK_PIXEL, &markerColour_);
    xcb_clear_area(c, 0, marker_, 0, 0, 0, 0);
    x().sync();
    EXPECT_TRUE(eventually([&] {
      const Picture seen = x().read(markerPlace);
      return std::ranges::all_of(
          seen.pixels, [&](std::uint32_t pixel) { return (pixel & 0xFFFFFFU) == markerColour_; });
    })) << "The screen does not show the marker.";
  }

  // Returns the screen once it shows everything and has stopped changing.
  Picture restingScreen() {
    Picture last;
    EXPECT_TRUE(eventually(
        [&] {
          sheets().takeEvents();
          waitUntilPainted();
          std::this_thread::sleep_for(std::chrono::milliseconds(150));
          Picture now = x().read(x().screenArea());
          cover(now, markerPlace);
          const bool rests = now.pixels == last.pixels;
          last = std::move(now);
          return rests;
        },
        2 * conditionTimeout));
    return last;
  }

  void startOverStage(const StoredValues& values = {{"Selected", 2}, {"ColorSpace", 0}}) {
    storeValues(values);
    start();
    press(XK_Tab);
    ASSERT_TRUE(titleBecomes(offTitle));
    if (GetParam().manager == Manager::FakeLate) {
      EXPECT_TRUE(eventually([&] { return x().topLevelOf(main()) != main(); }));
    }
    moveOverStage();
    // Window managers keep unmanaged windows above all others.
    sheets().putBelow(main());
  }
  // Covers a background that the window manager paints itself. No event reports it, so the program
  // does not know the part that has always been covered.
  void hideUnknownBackground() {
    if (GetParam().manager == Manager::Fake) sheets().addNoise(within(-60, -60, 800, 600), 6);
  }
  void letBackgroundBeSeen() {
    if (GetParam().manager != Manager::Fake) return;
    x().move(main(), 640, 20);
    // Gives the program time: it waits before it learns, because windows may be about to disappear.
    for (int i = 0; i < 4; ++i) restingScreen();
    moveOverStage();
  }
  void moveOverStage() {
    x().configure(main(),
                  XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                      XCB_CONFIG_WINDOW_HEIGHT,
                  {u32(stage.x - 10), u32(stage.y - 10), u32(stage.width), u32(stage.height)});
    EXPECT_TRUE(eventually([&] {
      const Area now = view();
      return std::abs(now.x - stage.x) < 60 && std::abs(now.y - stage.y) < 60 &&
             now.width == stage.width;
    })) << testing::PrintToString(view());
  }

  // Succeeds once the view shows the picture, to one step in each channel.
  testing::AssertionResult viewIs(const Picture& screen) {
    return viewIs(screen, [this] { return view(); });
  }
  testing::AssertionResult viewIs(const Picture& screen, const std::function<Area()>& part,
                                  const ColourEffect& effect = identityEffect) {
    std::string difference;
    const bool right = eventually([&] {
      sheets().takeEvents();
      difference = firstDifference(x().read(part()), screen, part(), effect);
      return difference.empty();
    });
    if (right) return testing::AssertionSuccess();
    saveScreen("oracle-" + GetParam().name, x().screenArea());
    return testing::AssertionFailure() << difference;
  }
  static std::string firstDifference(const Picture& seen, const Picture& screen, const Area& area,
                                     const ColourEffect& effect) {
    if (seen.pixels.empty()) return "Nothing is seen.";
    for (int y = 0; y < area.height; ++y) {
      for (int x = 0; x < area.width; ++x) {
        const std::uint32_t original = screen.at(area.x + x, area.y + y);
        const Colour wanted = desktop_test::filtered(colourOf(original), effect);
        const Colour actual = colourOf(seen.at(x, y));
        for (std::size_t i = 0; i < 3; ++i) {
          if (std::abs(actual[i] - wanted[i]) <= 1) continue;
          char text[120];
          std::snprintf(text, sizeof text, "At (%d, %d) of the screen: #%06X for #%06X.",
                        area.x + x, area.y + y, seen.at(x, y) & 0xFFFFFFU, original & 0xFFFFFFU);
          return text;
        }
      }
    }
    return {};
  }

 private:
  // Blackens a part of a picture.
  static void cover(Picture& picture, const Area& part) {
    for (int y = part.y; y < part.bottom(); ++y) {
      std::fill_n(picture.pixels.begin() + y * picture.width + part.x, part.width, 0);
    }
  }

  std::unique_ptr<Scene> sheets_;
  xcb_window_t marker_ = XCB_NONE;
  std::uint32_t markerColour_ = 0;
};

TEST_P(Oracle, TheBackground) {
  addBystander();
  const Picture screen = restingScreen();
  startOverStage();
  EXPECT_TRUE(viewIs(screen));
}

TEST_P(Oracle, ANamedBackground) {
  addBystander();
  setNamedBackground(7);
  const Picture screen = restingScreen();
  startOverStage();
  EXPECT_TRUE(viewIs(screen));
}

TEST_P(Oracle, WindowsOfEveryKind) {
  addManaged(within(40, 60, 260, 160), 1);
  addManaged(within(200, 180, 240, 200), 2);
  addBystander();
  setNamedBackground(9);
  sheets().addNoise(within(350, 40, 150, 260), 3);
  sheets().add({.place = within(80, 250, 170, 150),
                .picture = noise(170, 150, 4),
                .border = 6,
                .borderColour = 0xFF20C040,
                .shape = {{{0, 0, 60, 150}, {90, 30, 86, 60}}}});
  const Picture screen = restingScreen();
  startOverStage();
  EXPECT_TRUE(viewIs(screen));
}

TEST_P(Oracle, TranslucentWindows) {
  hideUnknownBackground();
  addManaged(within(40, 60, 260, 160), 1);
  addBystander();
  setNamedBackground(9);
  sheets().addNoise(within(10, 200, 350, 150), 2);
  sheets().add({.place = within(90, 100, 300, 250),
                .picture = translucentNoise(300, 250, 3),
                .translucent = true});
  Sheet& thin = sheets().addNoise(within(300, 30, 200, 250), 4);
  sheets().setOpacity(thin, 0.5);
  sheets().add({.place = within(330, 90, 200, 200),
                .picture = translucentNoise(200, 200, 5),
                .translucent = true,
                .opacity = 0.7,
                .shape = {{{0, 0, 70, 200}, {110, 40, 60, 90}}}});
  const Picture screen = restingScreen();
  startOverStage();
  EXPECT_TRUE(viewIs(screen));
}

TEST_P(Oracle, WindowsThatChange) {
  hideUnknownBackground();
  addBystander();
  setNamedBackground(9);
  Sheet& first = sheets().addNoise(within(40, 40, 200, 150), 1);
  Sheet& second = sheets().add({.place = within(140, 90, 250, 200),
                                .picture = translucentNoise(250, 200, 2),
                                .translucent = true});
  Sheet& third = sheets().addNoise(within(300, 240, 200, 150), 3);
  const auto change = [&] {
    sheets().move(first, stage.x + 120, stage.y + 200);
    sheets().draw(second, translucentNoise(90, 80, 5), 30, 40);
    sheets().setOpacity(third, 0.4);
  };
  const auto changeBack = [&] {
    sheets().move(first, stage.x + 40, stage.y + 40);
    sheets().setOpacity(third, 1);
  };
  change();
  const Picture screen = restingScreen();
  changeBack();
  startOverStage();
  change();
  EXPECT_TRUE(viewIs(screen));
}

// A window that covered the background at the start must not leave a trace when it goes.
TEST_P(Oracle, AWindowThatGoes) {
  addBystander();
  setNamedBackground(8);
  const Picture screen = restingScreen();
  Sheet& sheet = sheets().addNoise(within(100, 100, 300, 250), 1);
  restingScreen();
  startOverStage();
  sheets().move(sheet, 20, 600);
  letBackgroundBeSeen();
  EXPECT_TRUE(viewIs(screen, [this] {
    Area area = view();
    area.height -= 60;
    return area;
  }));
}

// Copies repeatedly, because a copy may be out of date by chance.
TEST_P(Oracle, TheClipboard) {
  hideUnknownBackground();
  addBystander();
  setNamedBackground(9);
  Sheet& sheet = sheets().addNoise(within(100, 60, 300, 250), 1);
  std::vector<Picture> screens;
  constexpr std::uint32_t rounds = 6;
  for (std::uint32_t round = 0; round < rounds; ++round) {
    sheets().draw(sheet, noise(200, 180, round + 2), 20, 30);
    screens.push_back(restingScreen());
  }
  startOverStage();
  ASSERT_TRUE(viewIs(screens.back()));
  ClipboardReader reader(display().name());
  for (std::uint32_t round = 0; round < rounds; ++round) {
    const std::string before = reader.ask("TIMESTAMP");
    sheets().draw(sheet, noise(200, 180, round + 2), 20, 30);
    press(XK_c, {XK_Control_L});
    ASSERT_TRUE(eventually([&] { return reader.ask("TIMESTAMP") != before; }));
    const Picture copied = reader.picture();
    const Area area = view();
    ASSERT_EQ(copied.width, area.width);
    ASSERT_EQ(copied.height, area.height);
    EXPECT_EQ(firstDifference(copied, screens[round], area, identityEffect), "");
  }
}

TEST_P(Oracle, AMinimisedWindow) {
  Sheet& sheet = addManaged(within(100, 100, 260, 160), 1);
  addBystander();
  setNamedBackground(9);
  if (GetParam().manager == Manager::Twm || GetParam().manager == Manager::I3) {
    // These window managers show an icon, or nothing similar.
    x().restack(sheet.window, XCB_STACK_MODE_BELOW);
  } else {
    constexpr std::uint32_t iconic = 3;
    x().tellManager(sheet.window, "WM_CHANGE_STATE", {iconic});
  }
  const Picture screen = restingScreen();
  startOverStage();
  EXPECT_TRUE(viewIs(screen));
}

INSTANTIATE_TEST_SUITE_P(Desktops, Oracle, testing::ValuesIn(allDesktops()), nameOf);

}  // namespace
}  // namespace tintora::desktop_test
