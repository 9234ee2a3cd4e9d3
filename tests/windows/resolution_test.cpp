// The sizes of the windows and of their text on high-resolution screens.
#include <algorithm>
#include <cmath>
#include <string>

#include "picture.h"
#include "program_run.h"
#include "stored_values.h"

namespace tintora::windows_test {
namespace {

constexpr const char* desktopKey = "Control Panel\\Desktop";
constexpr const char* resolutionName = "LogPixels";

class Resolution : public ProgramTest, public testing::WithParamInterface<int> {
 protected:
  void SetUp() override {
    ProgramTest::SetUp();
    const auto dpi = static_cast<DWORD>(GetParam());
    RegSetKeyValueA(HKEY_CURRENT_USER, desktopKey, resolutionName, REG_DWORD, &dpi, sizeof dpi);
  }
  void TearDown() override {
    ProgramTest::TearDown();
    RegDeleteKeyValueA(HKEY_CURRENT_USER, desktopKey, resolutionName);
  }
  static LONG scaled(double pixels) { return std::lround(pixels * GetParam() / 96.0); }
};

TEST_P(Resolution, SizesTheWindows) {
  start();
  const LONG x = screenBounds().right / 2;
  const LONG y = screenBounds().bottom / 2;
  // The desktop does not create windows much larger than the screen.
  if (scaled(500) <= screenBounds().right && scaled(400) <= screenBounds().bottom) {
    EXPECT_EQ(boundsOf(windows().main),
              (Bounds{x - scaled(250), y - scaled(200), x + scaled(250), y + scaled(200)}));
  }
  EXPECT_EQ(boundsOf(windows().control), (Bounds{0, 0, scaled(400), scaled(120)}));
  if (scaled(400) <= screenBounds().bottom) {
    const Bounds colourSpace = boundsOf(windows().colourSpace);
    EXPECT_EQ(colourSpace.width(), scaled(400));
    EXPECT_EQ(colourSpace.height(), scaled(400));
  }
  press('H');
  const Bounds main = boundsOf(windows().main);
  const LONG middleX = (main.left + main.right) / 2;
  const LONG middleY = (main.top + main.bottom) / 2;
  EXPECT_EQ(boundsOf(windows().control), (Bounds{middleX - scaled(200), middleY - scaled(60),
                                                 middleX + scaled(200), middleY + scaled(60)}));
}

// Returns the bounds of the white pixels in a picture.
Bounds extentOfWhite(const Picture& picture) {
  const Colour white{255, 255, 255};
  Bounds extent{picture.width, picture.height, 0, 0};
  for (int y = 0; y < picture.height; ++y) {
    for (int x = 0; x < picture.width; ++x) {
      if (picture.at(x, y) != white) continue;
      extent = {std::min<LONG>(extent.left, x), std::min<LONG>(extent.top, y),
                std::max<LONG>(extent.right, x + 1), std::max<LONG>(extent.bottom, y + 1)};
    }
  }
  return extent;
}

// At 96 dpi the text has three lines from row 10 to about row 66 and is about 380 pixels wide.
TEST_P(Resolution, SizesTheControlWindowsText) {
  storeValues({{"ColorSpace", 0}});
  start();
  // The control window is on the screen wherever the main window is.
  SetWindowPos(windows().main, nullptr, 0, 0, 1280, 800, SWP_NOZORDER | SWP_NOACTIVATE);
  settle();
  press('H');
  Bounds text{};
  // Retry, because the window may be caught while it is being painted.
  EXPECT_TRUE(eventually([&] {
    const Bounds client = clientBoundsOf(windows().control);
    text = extentOfWhite(screenPicture(client));
    return text.top >= scaled(10) && text.bottom > scaled(58) && text.bottom <= scaled(68) &&
           std::abs(text.left - scaled(17)) <= scaled(3) && text.right > scaled(300) &&
           text.right <= client.width();
  })) << text;
}

INSTANTIATE_TEST_SUITE_P(Dpi, Resolution, testing::Values(96, 144, 192, 288),
                         [](const auto& row) { return std::to_string(row.param); });

using OtherMonitor = ProgramTest;

TEST_F(OtherMonitor, SuggestsTheWindowsBounds) {
  start();
  magnifierRecord().suggested = {40, 50, 840, 650};
  ask(ChangeResolution, reinterpret_cast<WPARAM>(windows().main), 144);
  settle();
  EXPECT_EQ(boundsOf(windows().main), (Bounds{40, 50, 840, 650}));
  EXPECT_EQ(boundsOf(windows().magnifier), clientBoundsOf(windows().main));
}

}  // namespace
}  // namespace tintora::windows_test
