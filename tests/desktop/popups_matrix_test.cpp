// Other programs' menus and tips above the view while it fills the screen and lets the mouse
// through. The view must filter them too, on every desktop.
#include <algorithm>
#include <iterator>

#include "clipboard_reader.h"
#include "on_desktop.h"

namespace tintora::desktop_test {
namespace {

constexpr Area popupPlace{90, 70, 260, 180};

class Popups : public OnDesktop {
 protected:
  void SetUp() override {
    OnDesktop::SetUp();
    storeValues({{"Selected", 4}, {"View", 703}, {"ColorSpace", 0}});
    start();
    const Area screen = x().screenArea();
    scene().addNoise({0, 0, screen.width, screen.height}, 7);
  }

  void fillScreen() {
    press(XK_f);
    ASSERT_TRUE(eventually([&] { return view() == x().screenArea(); }));
    ASSERT_TRUE(showing(control(), true));
    ASSERT_TRUE(outerBecomes(control(), controlPlace(x().screenArea())));
    // Window managers raise their windows above unmanaged ones.
    lower(scene().at(0));
  }
  void lower(const Sheet& sheet) {
    x().restack(sheet.window, XCB_STACK_MODE_BELOW, x().topLevelOf(main()));
  }
  void raise(const Sheet& sheet) { x().restack(sheet.window, XCB_STACK_MODE_ABOVE); }
  Sheet& addPopup(const Area& place = popupPlace, std::uint32_t seed = 21) {
    Sheet& popup = scene().addNoise(place, seed);
    raise(popup);
    return popup;
  }
  // Succeeds if the screen around the popups, beside the control window, is grey.
  testing::AssertionResult showsGrey() {
    lower(scene().at(0));
    return viewShows(grey, {40, 30, 420, 300});
  }
  // Returns true if a window looks as it was drawn.
  bool isUnfiltered(const Sheet& sheet) {
    scene().takeEvents();
    return opaque(x().read(sheet.place).pixels) == opaque(sheet.picture.pixels);
  }
  static std::vector<std::uint32_t> opaque(std::vector<std::uint32_t> pixels) {
    for (std::uint32_t& pixel : pixels) pixel &= 0xFFFFFFU;
    return pixels;
  }
  // Returns true if a window is shown and not beneath a guard window, where some window managers
  // keep minimised ones.
  bool isOnScreen(xcb_window_t window) const {
    const xcb_window_t outer = x().topLevelOf(window);
    bool above = false;
    for (const xcb_window_t child : x().children(x().root())) {
      if (child == outer) above = true;
      if (x().text(child, "WM_NAME").ends_with("guard window")) above = false;
    }
    return above && x().isShown(window);
  }
  std::vector<xcb_window_t> covers() const {
    std::vector<xcb_window_t> found = x().children(x().root());
    std::erase_if(found, [this](xcb_window_t window) {
      return x().text(window, "WM_NAME") != "Tintora cover";
    });
    return found;
  }
};

TEST_P(Popups, TheyAreFilteredWhereverTheyCome) {
  Sheet& popup = addPopup();
  EXPECT_TRUE(eventually([&] { return isUnfiltered(popup); }));
  fillScreen();
  ASSERT_TRUE(showsGrey());
  scene().draw(popup, noise(90, 60, 5), 20, 30);
  EXPECT_TRUE(showsGrey());
  scene().move(popup, 170, 130);
  EXPECT_TRUE(showsGrey());
  Sheet& submenu = addPopup({210, 160, 200, 150}, 22);
  EXPECT_TRUE(showsGrey());
  scene().shape(submenu, {{0, 0, 80, 150}, {110, 40, 60, 90}});
  EXPECT_TRUE(showsGrey());
  const int before = scene().clicksIn(submenu);
  x().moveMouse(240, 250);
  settle();
  x().click(1);
  EXPECT_TRUE(eventually([&] { return scene().clicksIn(submenu) > before; }));
  saveScreen("popups_" + GetParam().name, x().screenArea());
  scene().show(popup, false);
  scene().remove(submenu);
  EXPECT_TRUE(showsGrey());
  EXPECT_TRUE(eventually([&] { return covers().empty(); }));
  scene().show(popup, true);
  raise(popup);
  EXPECT_TRUE(showsGrey());
}

TEST_P(Popups, TheyAreAsBeforeWhenFullScreenEnds) {
  fillScreen();
  Sheet& popup = addPopup();
  ASSERT_TRUE(showsGrey());
  ClipboardReader reader(display().name());
  press(XK_c, {XK_Control_L});
  ASSERT_TRUE(eventually([&] { return reader.picture().width == x().screenArea().width; }));
  const Picture copied = reader.picture();
  const Picture seen = x().read(popupPlace);
  for (int y = 0; y < popupPlace.height; y += 9) {
    ASSERT_EQ(copied.at(popupPlace.x + 30, popupPlace.y + y) & 0xFFFFFFU,
              seen.at(30, y) & 0xFFFFFFU);
  }
  press(XK_f);
  ASSERT_TRUE(showing(control(), false));
  EXPECT_TRUE(eventually([&] { return covers().empty(); }));
  EXPECT_TRUE(eventually([&] { return isUnfiltered(popup); }));
  fillScreen();
  raise(popup);
  EXPECT_TRUE(showsGrey());
  end();
  EXPECT_TRUE(eventually([&] { return isUnfiltered(popup); }));
  EXPECT_EQ(readFile(errorsFile()), "");
}

TEST_P(Popups, TheyAreAsBeforeWhileItIsMinimised) {
  if (GetParam().manager == Manager::I3) GTEST_SKIP() << "The window manager minimises no windows.";
  fillScreen();
  Sheet& popup = addPopup();
  ASSERT_TRUE(showsGrey());
  constexpr std::uint32_t iconic = 3;
  x().tellManager(main(), "WM_CHANGE_STATE", {iconic});
  EXPECT_TRUE(eventually([&] { return covers().empty(); }));
  EXPECT_TRUE(eventually([&] { return isUnfiltered(popup); }));
  x().activate(main());
  xcb_map_window(x().connection(), main());
  x().sync();
  ASSERT_TRUE(eventually([&] { return isOnScreen(main()); }));
  ASSERT_TRUE(eventually([&] { return view() == x().screenArea(); }));
  raise(popup);
  // The window manager may put the window beneath the scene once more.
  EXPECT_TRUE(showsGrey() || showsGrey());
  EXPECT_FALSE(covers().empty());
}

TEST_P(Popups, TheProgramsOwnMenuIsAboveThem) {
  fillScreen();
  const Area own = x().areaOf(control());
  addPopup({own.x - 60, own.y + 60, 150, 150});
  ASSERT_TRUE(viewShows(grey, {own.x - 50, own.y + 70, 130, 30}));
  x().moveMouse(own.x + own.width - 60, own.y + 30);
  settle();
  x().click(3);
  ASSERT_TRUE(eventually([this] { return openMenus().size() == 1; }));
  addPopup({own.x - 160, own.y + 70, 150, 150}, 22);
  ASSERT_TRUE(eventually([this] { return covers().size() == 2; }));
  const xcb_window_t menu = openMenus().front();
  EXPECT_TRUE(eventually([&] {
    const auto stack = x().children(x().root());
    return std::ranges::find(stack, covers().front()) < std::ranges::find(stack, menu);
  }));
  EXPECT_TRUE(x().isShown(menu));
  x().press(XK_Escape);
}

// Screen locks do this.
TEST_P(Popups, AProgramThatKeepsRaisingItsWindowHasItsWay) {
  fillScreen();
  Sheet& popup = addPopup();
  ASSERT_TRUE(showsGrey());
  EXPECT_TRUE(eventually([&] {
    raise(popup);
    settle();
    return covers().empty();
  }));
  EXPECT_TRUE(eventually([&] { return isUnfiltered(popup); }));
  scene().show(popup, false);
  EXPECT_TRUE(showsGrey());
  scene().show(popup, true);
  raise(popup);
  EXPECT_TRUE(showsGrey());
}

// Two programs that each cover the windows above their views must come to rest.
TEST_P(Popups, ASecondProgramLikeThisOneDoesNotFight) {
  fillScreen();
  addPopup();
  ASSERT_TRUE(showsGrey());
  const auto before = x().children(x().root());
  Process other(launch());
  ASSERT_TRUE(eventually([&] {
    lower(scene().at(0));
    const auto now = x().children(x().root());
    return now.size() > before.size() + 2;
  }));
  settle();
  scene().draw(scene().at(1), noise(90, 60, 5), 20, 30);
  EXPECT_TRUE(viewShows(grey, popupPlace));
  const std::uint32_t events = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
  xcb_change_window_attributes(x().connection(), x().root(), XCB_CW_EVENT_MASK, &events);
  EXPECT_TRUE(eventually([&] {
    constexpr std::chrono::milliseconds rest{300};
    x().takeEvents([](const xcb_generic_event_t&) {});
    std::this_thread::sleep_for(rest);
    bool restacked = false;
    x().takeEvents([&](const xcb_generic_event_t& event) {
      restacked |= (event.response_type & 0x7F) == XCB_CONFIGURE_NOTIFY;
    });
    return !restacked;
  })) << "The programs keep raising their windows.";
  other.signal(SIGTERM);
  EXPECT_EQ(other.result(), 0);
  EXPECT_TRUE(showsGrey());
}

std::vector<Desktop> popupDesktops() {
  std::vector<Desktop> chosen;
  std::ranges::copy_if(allDesktops(), std::back_inserter(chosen), [](const Desktop& desktop) {
    // With late frames, the scene is above the view until it is lowered.
    if (desktop.manager == Manager::FakeLate) return false;
    return desktop.compositor == Compositor::None || desktop.manager == Manager::Openbox;
  });
  return chosen;
}

INSTANTIATE_TEST_SUITE_P(On, Popups, testing::ValuesIn(popupDesktops()), nameOf);

}  // namespace
}  // namespace tintora::desktop_test
