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
  constexpr Colour lightGrey{180, 180, 180};
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
