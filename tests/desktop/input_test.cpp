// Input beyond plain keys and clicks: fine and sideways wheels, menu keys, second clicks.
#include <sys/stat.h>

#include <array>

#include "menu_run.h"
#include "platform/linux/wheel.h"

namespace tintora::desktop_test {
namespace {

using platform::wholeSteps;

TEST(Wheel, PiecesOfAStepAddUp) {
  int travel = 0;
  int steps = 0;
  for (int i = 0; i < 24; ++i) steps += wholeSteps(travel, 15);
  EXPECT_EQ(steps, 3);
  EXPECT_EQ(travel, 0);
  for (int i = 0; i < 12; ++i) steps += wholeSteps(travel, -20);
  EXPECT_EQ(steps, 1);
}

TEST(Wheel, SeveralStepsMayComeAtOnce) {
  int travel = 0;
  EXPECT_EQ(wholeSteps(travel, 250), 2);
  EXPECT_EQ(travel, 10);
  EXPECT_EQ(wholeSteps(travel, 110), 1);
}

TEST(Wheel, TurningBackStartsAnew) {
  int travel = 0;
  EXPECT_EQ(wholeSteps(travel, 100), 0);
  EXPECT_EQ(wholeSteps(travel, -100), 0);
  EXPECT_EQ(wholeSteps(travel, -20), -1);
}

TEST(Wheel, ATurnSidewaysLeavesTheStepInHand) {
  int travel = 0;
  EXPECT_EQ(wholeSteps(travel, 100), 0);
  EXPECT_EQ(wholeSteps(travel, 0), 0);
  EXPECT_EQ(wholeSteps(travel, 20), 1);
}

class Input : public MenuTest {
 protected:
  void begin() {
    storeValues({{"Selected", 1}, {"ColorSpace", 0}});
    start();
  }
};

TEST_F(Input, TheMenuKeyAndShiftF10OpenTheMenu) {
  begin();
  for (const auto& [key, held] :
       {std::pair<xcb_keysym_t, std::vector<xcb_keysym_t>>{XK_Menu, {}}, {XK_F10, {XK_Shift_L}}}) {
    x().moveMouse(view().x + 70, view().y + 40);
    settle();
    press(key, held);
    ASSERT_TRUE(eventually([this] { return openMenus().size() == 1; }));
    EXPECT_EQ(x().areaOf(openMenus()[0]).x, view().x + 70);
    x().press(XK_Escape);
    ASSERT_TRUE(eventually([this] { return openMenus().empty(); }));
    // With the mouse outside the window, the menu opens in the window's middle.
    x().moveMouse(5, 5);
    settle();
    press(key, held);
    ASSERT_TRUE(eventually([this] { return openMenus().size() == 1; }));
    EXPECT_NEAR(x().areaOf(openMenus()[0]).x, view().x + view().width / 2.0, 2);
    x().press(XK_Escape);
    ASSERT_TRUE(eventually([this] { return openMenus().empty(); }));
  }
}

TEST_F(Input, ARightClickElsewhereMovesTheMenuThere) {
  begin();
  x().moveMouse(view().x + 200, view().y + 200);
  settle();
  x().click(3);
  ASSERT_TRUE(eventually([this] { return openMenus().size() == 1; }));
  x().moveMouse(view().x + 40, view().y + 30);
  settle();
  x().click(3);
  EXPECT_TRUE(eventually([this] {
    const auto menus = openMenus();
    return menus.size() == 1 && x().areaOf(menus[0]).x == view().x + 40;
  }));
}

// The release goes to the menu, so the window gets no event for it.
TEST_F(Input, ADragThatAMenuInterruptsHasEnded) {
  begin();
  const Area before = x().outerAreaOf(main());
  x().moveMouse(view().x + 150, view().y + 100);
  x().button(1, true);
  settle();
  press(XK_F10, {XK_Shift_L});
  ASSERT_TRUE(eventually([this] { return openMenus().size() == 1; }));
  x().moveMouse(view().x + 20, view().y + 20);
  x().button(1, false);
  x().press(XK_Escape);
  ASSERT_TRUE(eventually([this] { return openMenus().empty(); }));
  x().moveMouse(view().x + 60, view().y + 60);
  settle();
  x().button(3, true);
  x().moveMouse(view().x + 90, view().y + 95);
  settle();
  EXPECT_EQ(x().outerAreaOf(main()), before);
  x().button(3, false);
}

TEST_F(Input, TheKeypadWithoutNumLockMovesAndSteps) {
  begin();
  const Area before = x().outerAreaOf(main());
  const auto isAt = [&](int byX, int byY) {
    return eventually([&] {
      const Area now = x().outerAreaOf(main());
      return now.x == before.x + byX && now.y == before.y + byY;
    });
  };
  press(XK_KP_Right);
  EXPECT_TRUE(isAt(1, 0));
  press(XK_KP_Down);
  EXPECT_TRUE(isAt(1, 1));
  press(XK_KP_Left);
  EXPECT_TRUE(isAt(0, 1));
  press(XK_KP_Up);
  EXPECT_TRUE(isAt(0, 0));
  for (const xcb_keysym_t down : std::array<xcb_keysym_t, 2>{XK_KP_Next, XK_KP_Subtract})
    press(down);
  EXPECT_TRUE(titleBecomes(" Simulation - Protanomalous 90% severity"));
  for (const xcb_keysym_t up : std::array<xcb_keysym_t, 2>{XK_KP_Prior, XK_KP_Add}) press(up);
  EXPECT_TRUE(titleBecomes(" Simulation - Protanope 100% severity"));
}

TEST_F(Input, AWheelTurnedSidewaysChangesNothing) {
  begin();
  x().moveMouse(view());
  constexpr int right = 7;
  for (int i = 0; i < 2; ++i) x().click(right);
  turnWheel(false, 1);
  EXPECT_TRUE(titleBecomes(" Simulation - Protanomalous 95% severity"));
}

// On keyboards with other letters, keys have the codes of the Latin letters in their position.
TEST_F(Input, LettersOfAnotherScriptCountByTheirKeys) {
  useDisplay({}, Manager::Openbox);
  Process layout({.command = {"setxkbmap", "-display", display().name(), "ru"}});
  ASSERT_EQ(layout.result(), 0);
  begin();
  struct Key {
    xcb_keysym_t letter;
    const char* title;
  };
  for (const auto& [letter, expected] :
       {Key{XK_Cyrillic_pe, "Greyscale"}, Key{XK_Cyrillic_sha, "Invert "},
        Key{XK_Cyrillic_ve, " Simulation - Deuteranope 100% severity"}}) {
    press(letter);
    EXPECT_TRUE(titleBecomes(expected));
  }
}

TEST_F(Input, APipeInPlaceOfTheSettingsDoesNotHoldUpTheEnd) {
  writeFile(configFolder() + "/tintora/other", "");
  ASSERT_EQ(mkfifo(settingsFile().c_str(), 0600), 0);
  start();
  end();
}

TEST_F(Input, NamesOfTheCustomFileAreReadAsUtf8WhereTheyAre) {
  const std::string utf8 = "Gr\xC3\xBCn \xCE\xB1";
  const std::string windows =
      "Gr\xFC"
      "n";
  const std::string rows = "1 0 0 0\n0 1 0 0\n0 0 1 0\n";
  struct Name {
    std::string written, shown;
  };
  for (const Name& name : {Name{utf8, utf8}, Name{windows, "Gr\xC3\xBCn"}}) {
    writeFile(configFolder() + "/tintora/Tintora_custom.txt",
              std::string(name.written).append("\n").append(rows));
    storeValues({{"Selected", 0}, {"ColorSpace", 1}, {"View", 703}});
    start();
    EXPECT_TRUE(eventually([&] { return title(main()).find(name.shown) != std::string::npos; }))
        << title(main());
    end();
  }
}

}  // namespace
}  // namespace tintora::desktop_test
