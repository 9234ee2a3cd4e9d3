// Saves screenshots of the program for people to look at.
#include <windows.h>
// This header needs windows.h before it.
#include <gdiplus.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "colour_space_run.h"
#include "picture.h"
#include "program_run.h"
#include "stored_values.h"

namespace tintora::windows_test {
namespace {

constexpr Colour viewBackground{80, 100, 120};
constexpr Bounds area{240, 100, 1040, 720};

// Returns a rainbow: hues from left to right, and white at the top through the pure colour to
// black.
Colour rainbow(int x, int y) {
  const double hue = 6.0 * (x - area.left) / area.width();
  const double height = 2.0 * (y - area.top) / area.height();
  const auto channel = [&](double peak) {
    const double distance = std::abs(std::remainder(hue - peak, 6.0));
    const double pure = std::clamp(2.0 - distance, 0.0, 1.0);
    const double value = height < 1 ? 1 - height * (1 - pure) : pure * (2 - height);
    return static_cast<std::uint8_t>(std::lround(255 * value));
  };
  return {channel(0), channel(2), channel(4)};
}

class Pictures : public ColourSpaceTest {
 protected:
  void SetUp() override {
    ProgramTest::SetUp();
    const Gdiplus::GdiplusStartupInput input;
    Gdiplus::GdiplusStartup(&token_, &input, nullptr);
  }
  void TearDown() override {
    Gdiplus::GdiplusShutdown(token_);
    ProgramTest::TearDown();
  }

  void startOverRainbow(const std::string& arguments = "") {
    storeValues({{"Selected", 2}, {"ColorSpace", 0}});
    start(arguments);
  }

  // Waits until the colour space window has its new size on the display: its lower right corner, in
  // which no view draws, must show the views' background.
  void awaitWholeView() {
    EXPECT_TRUE(eventually([this] {
      const Bounds client = clientBoundsOf(windows().colourSpace);
      const Bounds corner{client.right - 1, client.bottom - 1, client.right, client.bottom};
      return screenPicture(corner).at(0, 0) == viewBackground;
    }));
  }

  // Saves a part of the screen once it no longer changes.
  void save(const std::string& name, const Bounds& part) {
    Picture picture = screenPicture(part);
    eventually([&] {
      Sleep(300);
      finishDrawing();
      Picture next = screenPicture(part);
      std::swap(picture, next);
      return picture.pixels == next.pixels;
    });
    Gdiplus::Bitmap bitmap(picture.width, picture.height);
    for (int y = 0; y < picture.height; ++y) {
      for (int x = 0; x < picture.width; ++x) {
        const Colour& colour = picture.at(x, y);
        bitmap.SetPixel(x, y, {colour[0], colour[1], colour[2]});
      }
    }
    const std::string path = std::string(std::getenv("TINTORA_PICTURES")) + "\\" + name + ".png";
    constexpr CLSID png{
        0x557cf406, 0x1a04, 0x11d3, {0x9a, 0x73, 0x00, 0x00, 0xf8, 0x1e, 0xf3, 0x2e}};
    EXPECT_EQ(bitmap.Save(std::wstring(path.begin(), path.end()).c_str(), &png, nullptr),
              Gdiplus::Ok);
  }

 private:
  Backdrop backdrop_{area, &rainbow};
  ULONG_PTR token_ = 0;
};

TEST_F(Pictures, OfTheMainWindow) {
  startOverRainbow();
  save("main-window", area);
}

TEST_F(Pictures, OfTheControlWindow) {
  startOverRainbow();
  press('H');
  save("control-window", area);
}

TEST_F(Pictures, OfFullScreen) {
  startOverRainbow();
  press('F');
  save("full-screen", screenBounds());
}

TEST_F(Pictures, OfTheColourSpaceWindow) {
  struct View {
    const char* name;
    ColourSpaceView code;
  };
  for (const auto& [name, code] :
       {View{"response-curves", CurvesView}, View{"rgb-cube", CubeView},
        View{"chromaticity-diagram", DiagramView}, View{"help", HelpView}}) {
    for (const ClientSize& size : {ClientSize{400, 400}, ClientSize{800, 600}}) {
      startWith(code, size, 2, 0);
      const std::string extent =
          "-" + std::to_string(size.width) + "x" + std::to_string(size.height);
      awaitWholeView();
      save(name + extent, clientBoundsOf(windows().colourSpace));
      turnWheel(true, 10);
      if (code == CubeView) drag(MK_LBUTTON, {{200, 200}, {280, 160}});
      save(name + extent + "-half", clientBoundsOf(windows().colourSpace));
      end();
    }
  }
}

TEST_F(Pictures, OfTheMenus) {
  startOverRainbow("-st");
  moveCursor(250, 110);
  struct Submenu {
    const char* name;
    int ups;  // presses of each key; "up" starts at the end of the menu
    int rights;
    int downs;
  };
  for (const Submenu& submenu :
       {Submenu{"menu-help", 1, 1, 0}, Submenu{"menu-view-options", 2, 1, 0},
        Submenu{"menu-colour-space-window", 3, 1, 0}, Submenu{"menu-colour-swap", 4, 2, 0},
        Submenu{"menu-colour-filter", 4, 1, 1}, Submenu{"menu-simulation-option", 9, 1, 0}}) {
    openMenu(windows().main);
    const auto pressInMenu = [&](int key, int times) {
      for (int i = 0; i < times; ++i) {
        PostMessageA(windows().main, WM_KEYDOWN, static_cast<WPARAM>(key), 0);
      }
    };
    pressInMenu(VK_UP, submenu.ups);
    pressInMenu(VK_RIGHT, submenu.rights);
    pressInMenu(VK_DOWN, submenu.downs);
    if (submenu.downs > 0) pressInMenu(VK_RIGHT, 1);
    settle();
    save(submenu.name, screenBounds());
    PostMessageA(windows().main, WM_CANCELMODE, 0, 0);
    ASSERT_TRUE(eventually([this] { return openMenuWindow() == nullptr; }));
  }
}

}  // namespace
}  // namespace tintora::windows_test
