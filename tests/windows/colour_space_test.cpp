// When and where the colour space window is shown, and its title.
#include <ostream>
#include <string>

#include "program_run.h"
#include "stored_values.h"

namespace tintora::windows_test {
namespace {

class ColourSpace : public ProgramTest {
 protected:
  bool isShown() const { return IsWindowVisible(windows().colourSpace) != FALSE; }
  std::string caption() const { return titleOf(windows().colourSpace); }

  // Returns true if its left top corner is at the main window's right top corner, apart from a gap.
  bool isBesideMain() const {
    const Bounds main = boundsOf(windows().main);
    const Bounds bounds = boundsOf(windows().colourSpace);
    return bounds.left == main.right + 4 && bounds.top == main.top;
  }
  // Moves and resizes the main window. A docked window follows both.
  void moveMain(int x, int y) {
    SetWindowPos(windows().main, nullptr, x, y, 300 + x, 200 + y, SWP_NOZORDER | SWP_NOACTIVATE);
    settle();
  }
};

struct ViewRow {
  const char* name;
  bool byKey;
  int code;
  const char* caption;
};

void PrintTo(const ViewRow& row, std::ostream* out) {
  *out << row.name;
}

constexpr std::array viewRows{
    ViewRow{"KeyE", true, 'E', "Photoreceptor Response Curves"},
    ViewRow{"KeyR", true, 'R', "RGB Cube"},
    ViewRow{"KeyC", true, 'C', "Chromaticity Diagram"},
    ViewRow{"KeyF1", true, VK_F1, "Help"},
    ViewRow{"KeyW", true, 'W', "RGB Cube"},
    ViewRow{"Command702", false, 702, "Photoreceptor Response Curves"},
    ViewRow{"Command703", false, 703, "RGB Cube"},
    ViewRow{"Command704", false, 704, "Chromaticity Diagram"},
    ViewRow{"Command705", false, 705, "Help"},
    ViewRow{"Command700", false, 700, "RGB Cube"},
};

class Views : public ColourSpace, public testing::WithParamInterface<ViewRow> {};

TEST_P(Views, AreShownBesideTheMainWindow) {
  storeValues({{"ColorSpace", 0}});
  start();
  ASSERT_FALSE(isShown());
  GetParam().byKey ? press(GetParam().code) : choose(GetParam().code);
  EXPECT_TRUE(isShown());
  EXPECT_EQ(caption(), GetParam().caption);
  EXPECT_TRUE(isBesideMain());
}

INSTANTIATE_TEST_SUITE_P(By, Views, testing::ValuesIn(viewRows),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(ColourSpace, IsShownWithTheHelpAtFirst) {
  start();
  EXPECT_TRUE(isShown());
  EXPECT_EQ(caption(), "Help");
}

TEST_F(ColourSpace, HelpIsHiddenByItsOwnKey) {
  start();
  press(VK_F1);
  EXPECT_FALSE(isShown());
  press(VK_F1);
  EXPECT_TRUE(isShown());
}

TEST_F(ColourSpace, IsHiddenAndShownAgain) {
  storeValues({{"View", 704}});
  start();
  press('W');
  EXPECT_FALSE(isShown());
  choose(700);
  EXPECT_TRUE(isShown());
  EXPECT_EQ(caption(), "Chromaticity Diagram");
}

TEST_F(ColourSpace, TurnsFromTheHelpToTheCube) {
  start();
  press('W');
  EXPECT_TRUE(isShown());
  EXPECT_EQ(caption(), "RGB Cube");
}

TEST_F(ColourSpace, IsHiddenWhenItIsClosed) {
  start();
  send(windows().colourSpace, WM_CLOSE);
  EXPECT_FALSE(isShown());
  EXPECT_TRUE(process().isRunning());
}

TEST_F(ColourSpace, FollowsTheMainWindowWhileDocked) {
  start();
  press('E');
  moveMain(50, 60);
  EXPECT_TRUE(isBesideMain());
  press('K');
  moveMain(150, 160);
  EXPECT_FALSE(isBesideMain());
  press('K');
  EXPECT_TRUE(isBesideMain());
  choose(701);
  moveMain(50, 160);
  EXPECT_FALSE(isBesideMain());
}

TEST_F(ColourSpace, IsUndockedByMovingItByHand) {
  start();
  press('E');
  // The desktop sends this message while a window is dragged.
  RECT bounds{};
  SendMessageA(windows().colourSpace, WM_MOVING, 0, reinterpret_cast<LPARAM>(&bounds));
  moveMain(50, 60);
  EXPECT_FALSE(isBesideMain());
}

TEST_F(ColourSpace, IsUndockedByMaximising) {
  start();
  press('E');
  send(windows().main, WM_SYSCOMMAND, SC_MAXIMIZE);
  send(windows().main, WM_SYSCOMMAND, SC_RESTORE);
  moveMain(50, 60);
  EXPECT_FALSE(isBesideMain());
}

TEST_F(ColourSpace, IsUndockedByFullScreen) {
  start();
  press('E');
  press('F');
  press('F');
  moveMain(50, 60);
  EXPECT_FALSE(isBesideMain());
}

TEST_F(ColourSpace, CannotBeToggledInFullScreen) {
  storeValues({{"View", 703}});
  start();
  press('F');
  press('W');
  choose(700);
  press('W');
  EXPECT_TRUE(isShown());
}

}  // namespace
}  // namespace tintora::windows_test
