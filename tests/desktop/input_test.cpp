// Input beyond plain keys and clicks: fine and sideways wheels, the menu's keys, a second click.
#include <sys/stat.h>

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
    // Not over the window: in the middle of it.
    x().moveMouse(5, 5);
    settle();
    press(key, held);
    ASSERT_TRUE(eventually([this] { return openMenus().size() == 1; }));
    EXPECT_NEAR(x().areaOf(openMenus()[0]).x, view().x + view().width / 2, 2);
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
  for (const auto& [name, shown] : {std::pair{utf8, utf8}, {windows, std::string("Gr\xC3\xBCn")}}) {
    writeFile(configFolder() + "/tintora/Tintora_custom.txt", name + "\n" + rows);
    storeValues({{"Selected", 0}, {"ColorSpace", 1}, {"View", 703}});
    start();
    EXPECT_TRUE(eventually([&] { return title(main()).find(shown) != std::string::npos; }))
        << title(main());
    end();
  }
}

}  // namespace
}  // namespace tintora::desktop_test
