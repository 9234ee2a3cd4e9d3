// The sizes of the windows and of their text on high-resolution screens.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <string>

#include "colour_space_run.h"
#include "ink.h"
#include "painted_page.h"
#include "picture.h"
#include "program_run.h"
#include "seen_plane.h"
#include "stored_values.h"
#include "without_libraries.h"

namespace tintora::windows_test {
namespace {

constexpr const char* desktopKey = "Control Panel\\Desktop";
constexpr const char* resolutionName = "LogPixels";

class Resolution : public ColourSpaceTest, public testing::WithParamInterface<int> {
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
  static double scale() { return GetParam() / 96.0; }
  static LONG scaled(double pixels) { return std::lround(pixels * scale()); }
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

// Succeeds if the text in two pictures has the same shape at the same place, give or take as many
// pixels.
testing::AssertionResult showsTheSameText(const Picture& actual, const Picture& expected,
                                          int tolerance) {
  const Likeness likeness = likenessOf(expected, actual);
  if (std::abs(likeness.x) <= tolerance && std::abs(likeness.y) <= tolerance &&
      likeness.correlation > 0.9) {
    return testing::AssertionSuccess();
  }
  return testing::AssertionFailure()
         << likeness.x << "," << likeness.y << " away, correlation " << likeness.correlation;
}

// Returns the place of the outer end of a wavelength's tick mark in a picture of the diagram, given
// a shorter wavelength from which on the locus is nearly straight.
SeenPoint endOfTick(const Picture& picture, const Chromaticity& at, const Chromaticity& before) {
  constexpr double length = 0.025 / 4.0;
  const double x = at.x - before.x;
  const double y = at.y - before.y;
  const double distance = std::hypot(x, y);
  return seenChromaticity(picture, at.x - y / distance * length, at.y + x / distance * length);
}

struct LabelRow {
  std::size_t wavelength;  // an index of the known wavelengths
  double x;                // from the end of the tick mark to the text's left edge, at 96 dpi
  double y;
};

TEST_P(Resolution, SizesTheColourSpaceWindowsText) {
  constexpr std::array labels{LabelRow{1, -22, -5}, LabelRow{4, 4, -10}, LabelRow{5, 4, -10}};
  constexpr int labelWidth = 22;
  const WithoutLibraries without(d3dxLibraries());
  startWith(HelpView, {680, 680});
  const Picture help = shown();
  const ClientSize size{help.width, help.height};
  EXPECT_TRUE(showsTheSameText(help, helpPage(size, scale()), 0));

  press('C');
  const Picture diagram = shown();
  for (const LabelRow& label : labels) {
    const Chromaticity& at = spectralColours[label.wavelength];
    const SeenPoint tick = endOfTick(diagram, at, spectralColours[label.wavelength - 1]);
    const auto x = static_cast<int>(tick.x / scale() + label.x);
    const auto y = static_cast<int>(tick.y / scale() + label.y);
    const Bounds area{scaled(x), scaled(y), scaled(x + labelWidth), scaled(y + labelHeight)};
    const Picture expected = paintedPage(
        size, {{x, y, x + 100, lightGrey, std::to_string(at.nanometres), labelHeight}}, scale());
    EXPECT_TRUE(showsTheSameText(part(diagram, area), part(expected, area), 3)) << at.nanometres;
  }
}

INSTANTIATE_TEST_SUITE_P(Dpi, Resolution, testing::Values(96, 144, 192, 288),
                         [](const auto& row) { return std::to_string(row.param); });

// Monitors of different resolutions.
class OtherMonitor : public ColourSpaceTest {
 protected:
  static void divideScreen(int border, int leftDpi, int rightDpi) {
    magnifierRecord().dpi = leftDpi;
    magnifierRecord().rightDpi = rightDpi;
    magnifierRecord().border = border;
  }
  void changeResolution(HWND window, int dpi, const Bounds& suggested) {
    magnifierRecord().suggested = {suggested.left, suggested.top, suggested.right,
                                   suggested.bottom};
    ask(ChangeResolution, reinterpret_cast<WPARAM>(window), dpi);
    settle();
  }
  void TearDown() override {
    mouse_event(MOUSEEVENTF_LEFTUP, 0, 0, 0, 0);
    ColourSpaceTest::TearDown();
  }
};

TEST_F(OtherMonitor, SuggestsTheWindowsBounds) {
  start();
  changeResolution(windows().main, 144, {40, 50, 840, 650});
  EXPECT_EQ(boundsOf(windows().main), (Bounds{40, 50, 840, 650}));
  EXPECT_EQ(boundsOf(windows().magnifier), clientBoundsOf(windows().main));
  press('F');
  changeResolution(windows().main, 192, {40, 50, 840, 650});
  EXPECT_EQ(boundsOf(windows().main), screenBounds());
}

// Full screen is on the primary monitor. On the way back, the desktop tells the window of its own
// monitor's resolution before it has left full screen.
TEST_F(OtherMonitor, HasTheWindowBackAfterFullScreen) {
  storeValues({{"ColorSpace", 0}});
  start();
  divideScreen(700, 96, 192);
  SetWindowPos(windows().main, nullptr, 800, 100, 400, 300, SWP_NOZORDER | SWP_NOACTIVATE);
  settle();
  press('F');
  EXPECT_EQ(boundsOf(windows().main), screenBounds());
  press('F');
  EXPECT_EQ(magnifierRecord().resolutionChanges, 2U);
  EXPECT_EQ(boundsOf(windows().main), (Bounds{800, 100, 1200, 400}));
  EXPECT_EQ(boundsOf(windows().magnifier), clientBoundsOf(windows().main));
}

TEST_F(OtherMonitor, SizesTheTextInWindowsThatKeepTheirSize) {
  constexpr double scale = 2.0;
  constexpr int dpi = 192;
  const WithoutLibraries without(d3dxLibraries());
  startWith(HelpView, {680, 680});
  changeResolution(windows().colourSpace, dpi, boundsOf(windows().colourSpace));
  const Picture help = shown();
  EXPECT_TRUE(showsTheSameText(help, helpPage({help.width, help.height}, scale), 0));

  magnifierRecord().dpi = 96;
  SetWindowPos(windows().main, nullptr, 0, 0, 1280, 800, SWP_NOZORDER | SWP_NOACTIVATE);
  settle();
  press('W');
  press('W');
  press('H');
  const HWND control = windows().control;
  SetWindowPos(control, nullptr, 100, 100, 800, 240, SWP_NOZORDER | SWP_NOACTIVATE);
  settle();
  changeResolution(control, dpi, boundsOf(control));
  EXPECT_TRUE(eventually([&] {
    const Bounds text = extentOfWhite(screenPicture(clientBoundsOf(control)));
    return text.top >= 20 && text.bottom > 116 && text.bottom <= 136;
  }));
}

// Takes hold of the window near its left edge. If it got the size for the other resolution at once,
// it would be on the first monitor again.
TEST_F(OtherMonitor, LeavesADraggedWindowItsSizeUntilItIsReleased) {
  storeValues({{"ColorSpace", 0}});
  divideScreen(1200, 192, 96);  // the program starts on the left monitor
  start();
  divideScreen(640, 192, 96);
  SetWindowPos(windows().main, nullptr, 100, 100, 400, 300, SWP_NOZORDER | SWP_NOACTIVATE);
  settle();
  moveCursor(150, 200);
  beginDrag();
  for (const LONG x : {460, 480, 500, 520}) {
    moveCursor(x, 200);
    const Bounds expected{x - 50, 100, x + 350, 400};
    EXPECT_TRUE(eventually([&] { return boundsOf(windows().main) == expected; }))
        << boundsOf(windows().main) << " instead of " << expected;
  }
  EXPECT_EQ(magnifierRecord().resolutionChanges, 1U);
  mouse_event(MOUSEEVENTF_LEFTUP, 0, 0, 0, 0);
  const Bounds released{570, 175, 770, 325};
  EXPECT_TRUE(eventually([&] { return boundsOf(windows().main) == released; }))
      << boundsOf(windows().main);
}

// Docked, the colour space window does not choose its place. Where the size for each of the two
// monitors would put it on the other one, it keeps the size that it has.
TEST_F(OtherMonitor, NeverGoesBackAndForth) {
  constexpr int gap = 4;
  struct Row {
    LONG left;
    LONG size;
  };
  divideScreen(640, 192, 96);
  start();
  SetWindowPos(windows().main, nullptr, 0, 100, 300, 200, SWP_NOZORDER | SWP_NOACTIVATE);
  settle();
  magnifierRecord().resolutionChanges = 0;
  for (const Row& row :
       {Row{400, 400}, Row{480, 400}, Row{560, 200}, Row{480, 200}, Row{420, 400}}) {
    SetWindowPos(windows().main, nullptr, row.left - gap - 300, 100, 300, 200,
                 SWP_NOZORDER | SWP_NOACTIVATE);
    settle();
    EXPECT_EQ(boundsOf(windows().colourSpace),
              (Bounds{row.left, 100, row.left + row.size, 100 + row.size}));
  }
  EXPECT_LE(magnifierRecord().resolutionChanges, 4U);
}

}  // namespace
}  // namespace tintora::windows_test
