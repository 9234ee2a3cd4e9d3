// The windows when they are created, and the forms of the main window.
#include <ostream>
#include <string>
#include <vector>

#include "program_run.h"
#include "stored_values.h"

namespace tintora::windows_test {
namespace {

constexpr DWORD framedStyle = 0xcf0000;
constexpr DWORD framelessStyle = 0x80800000;
constexpr DWORD framedMaximisedStyle = 0x1cf0000;
constexpr DWORD framelessMaximisedStyle = 0x81800000;
constexpr DWORD fullScreenStyle = 0x81000000;
constexpr DWORD seenStyle = 0x80008;
constexpr DWORD hitTransparentStyle = 0x80028;

// Returns the style without the bits that the desktop sets by itself.
DWORD styleOf(HWND window) {
  return static_cast<DWORD>(GetWindowLongA(window, GWL_STYLE)) &
         ~DWORD{WS_VISIBLE | WS_CLIPSIBLINGS};
}

// Returns the extended style without the edge that follows from the frame and without the flag of a
// window that accepts files.
DWORD extendedStyleOf(HWND window) {
  return static_cast<DWORD>(GetWindowLongA(window, GWL_EXSTYLE)) &
         ~DWORD{WS_EX_WINDOWEDGE | WS_EX_ACCEPTFILES};
}

std::string classNameOf(HWND window) {
  std::array<char, 64> name{};
  GetClassNameA(window, name.data(), static_cast<int>(name.size()));
  return name.data();
}

struct WindowRow {
  const char* name;
  HWND ProgramWindows::*window;
  const char* className;
  const char* title;
  DWORD extendedStyle;
  DWORD style;
  bool visible;
};

const std::array windowRows{
    WindowRow{"Main", &ProgramWindows::main, "WindowClassZub",
              " Simulation - Protanope 100% severity", 0x80008, 0xcf0000, true},
    WindowRow{"Magnifier", &ProgramWindows::magnifier, "Magnifier", "MagnifierWindow", 0,
              0x40000001, true},
    WindowRow{"Control", &ProgramWindows::control, "WindowClassZub2",
              "Hit Transparent, Press H to exit", 8, 0xca0000, false},
    WindowRow{"ColourSpace", &ProgramWindows::colourSpace, "WindowClassZub2", "Color Space", 8,
              0xcf0000, false},
};

void PrintTo(const WindowRow& row, std::ostream* out) {
  *out << row.name;
}

class Windows : public UndrawnTest, public testing::WithParamInterface<WindowRow> {};

TEST_P(Windows, AreCreatedAsTheirRowSays) {
  const WindowRow& row = GetParam();
  storeValues({{"ColorSpace", 0}});
  start();
  const HWND window = windows().*row.window;
  EXPECT_EQ(classNameOf(window), row.className);
  EXPECT_EQ(titleOf(window), row.title);
  EXPECT_EQ(extendedStyleOf(window), row.extendedStyle);
  EXPECT_EQ(styleOf(window), row.style);
  EXPECT_EQ(IsWindowVisible(window) != FALSE, row.visible);
}

INSTANTIATE_TEST_SUITE_P(By, Windows, testing::ValuesIn(windowRows),
                         [](const auto& row) { return std::string(row.param.name); });

using FullScreen = UndrawnTest;

TEST_F(FullScreen, IsLeftByShowingTheWindowNormally) {
  start();
  press('F');
  EXPECT_EQ(magnifierRecord().mainShown, SW_SHOWMAXIMIZED);
  press('F');
  EXPECT_EQ(magnifierRecord().mainShown, SW_SHOWNORMAL);
}

using WindowClasses = UndrawnTest;

TEST_F(WindowClasses, HaveTheProgramsIconAndNoBackground) {
  start();
  for (const HWND window : {windows().main, windows().control, windows().colourSpace}) {
    const RecordedClass& facts = classOf(window);
    EXPECT_EQ(facts.style, 3U);
    EXPECT_TRUE(facts.ownIcon);
    EXPECT_TRUE(facts.arrowCursor);
    EXPECT_FALSE(facts.background);
    EXPECT_FALSE(facts.menu);
  }
}

using MainWindow = UndrawnTest;

TEST_F(MainWindow, NamesItselfUntilTheFirstTransform) {
  start();
  for (const RecordedCall& call : calls()) {
    if (call.call != MagnifierCall::SetWindowTransform) continue;
    EXPECT_STREQ(call.title.data(), "Help: Right-click to select; Tab to toggle on/off");
    return;
  }
  FAIL() << "No transform was set.";
}

TEST_F(MainWindow, StandsInTheMiddleOfTheScreen) {
  start();
  const LONG x = screenBounds().right / 2;
  const LONG y = screenBounds().bottom / 2;
  EXPECT_EQ(boundsOf(windows().main), (Bounds{x - 250, y - 200, x + 250, y + 200}));
}

TEST_F(MainWindow, IsOpaqueAndTakesFiles) {
  start();
  BYTE alpha = 0;
  DWORD flags = 0;
  ASSERT_TRUE(GetLayeredWindowAttributes(windows().main, nullptr, &alpha, &flags));
  EXPECT_EQ(alpha, 255);
  EXPECT_EQ(flags, static_cast<DWORD>(LWA_ALPHA));
  EXPECT_NE(GetWindowLongA(windows().main, GWL_EXSTYLE) & WS_EX_ACCEPTFILES, 0);
}

TEST_F(MainWindow, LoadsNothingThatIsDroppedOnIt) {
  start();
  send(windows().main, WM_DROPFILES);
  EXPECT_TRUE(process().isRunning());
  EXPECT_EQ(title(), " Simulation - Protanope 100% severity");
}

using ControlWindow = UndrawnTest;

TEST_F(ControlWindow, HasItsSizeBeforeItIsShown) {
  start();
  EXPECT_EQ(boundsOf(windows().control), (Bounds{0, 0, 400, 120}));
}

// The steps to a form: 'M' maximises, '^' is command 51, '%' command 54, '!' command 53, 'x' closes
// the control window and any other letter is a key.
struct FormRow {
  const char* name;
  const char* steps;
  DWORD style;
  DWORD extendedStyle;
  bool wholeScreen = false;
  bool controlShown = false;
};

void PrintTo(const FormRow& row, std::ostream* out) {
  *out << row.steps;
}

const std::array formRows{
    FormRow{"Framed", "", framedStyle, seenStyle},
    FormRow{"Frameless", " ", framelessStyle, seenStyle},
    FormRow{"FramedAgain", "  ", framedStyle, seenStyle},
    FormRow{"FramelessByCommand", "^", framelessStyle, seenStyle},
    FormRow{"FramedByCommand", "^^", framedStyle, seenStyle},
    FormRow{"FramedByEscape", " \x1b", framedStyle, seenStyle},
    FormRow{"EscapeLeavesAFrame", "\x1b", framedStyle, seenStyle},
    FormRow{"Maximised", "M", framedMaximisedStyle, seenStyle},
    FormRow{"FramelessMaximised", "M ", framelessMaximisedStyle, seenStyle},
    FormRow{"FramedMaximised", "M  ", framedMaximisedStyle, seenStyle},
    FormRow{"FramelessMaximisedByCommand", "M^", framelessStyle, seenStyle},
    FormRow{"HitTransparent", "H", framedStyle, hitTransparentStyle, false, true},
    FormRow{"HitTransparentByCommand", "!", framedStyle, hitTransparentStyle, false, true},
    FormRow{"FramelessHitTransparent", " H", framelessStyle, hitTransparentStyle, false, true},
    FormRow{"HitTransparentAndBack", "HH", framedStyle, seenStyle},
    FormRow{"HitTransparentAndClosed", "Hx", framedStyle, seenStyle},
    FormRow{"FullScreen", "F", fullScreenStyle, hitTransparentStyle, true, true},
    FormRow{"FullScreenByCommand", "%", fullScreenStyle, hitTransparentStyle, true, true},
    FormRow{"FullScreenWhileHitTransparent", "HF", fullScreenStyle, hitTransparentStyle, true,
            true},
    FormRow{"FullScreenKeepsItsForm", "FHW \x1b", fullScreenStyle, hitTransparentStyle, true, true},
    FormRow{"FullScreenIgnoresCommands", "F!^", fullScreenStyle, hitTransparentStyle, true, true},
    FormRow{"FullScreenAndBack", "FF", framedStyle, seenStyle},
    FormRow{"FullScreenAndBackByCommand", "%%", framedStyle, seenStyle},
    FormRow{"FullScreenAndClosed", "Fx", framedStyle, seenStyle},
    FormRow{"FramelessFullScreenAndBack", " FF", framedStyle, seenStyle},
    FormRow{"HitTransparentFullScreenAndBack", "HFF", framedStyle, seenStyle},
};

class Forms : public UndrawnTest, public testing::WithParamInterface<FormRow> {
 protected:
  void go(const std::string& steps) {
    for (const char step : steps) {
      switch (step) {
        case 'M':
          send(windows().main, WM_SYSCOMMAND, SC_MAXIMIZE);
          break;
        case '^':
          choose(51);
          break;
        case '%':
          choose(54);
          break;
        case '!':
          choose(53);
          break;
        case 'x':
          send(windows().control, WM_CLOSE);
          break;
        default:
          press(step);
      }
    }
  }
};

TEST_P(Forms, AreReachedAsTheirRowSays) {
  const FormRow& row = GetParam();
  start();
  const Bounds before = boundsOf(windows().main);
  go(row.steps);
  EXPECT_EQ(styleOf(windows().main), row.style);
  EXPECT_EQ(extendedStyleOf(windows().main), row.extendedStyle);
  EXPECT_NE(GetWindowLongA(windows().main, GWL_EXSTYLE) & WS_EX_ACCEPTFILES, 0);
  EXPECT_TRUE(IsWindowVisible(windows().main));
  EXPECT_EQ(IsWindowVisible(windows().control) != FALSE, row.controlShown);
  if (row.wholeScreen) {
    EXPECT_EQ(boundsOf(windows().main), screenBounds());
    EXPECT_EQ(boundsOf(windows().magnifier), screenBounds());
  } else if ((row.style & WS_MAXIMIZE) == 0 && row.steps[0] != 'M') {
    EXPECT_EQ(boundsOf(windows().main), before);
    EXPECT_EQ(boundsOf(windows().magnifier), clientBoundsOf(windows().main));
  }
  BYTE alpha = 0;
  ASSERT_TRUE(GetLayeredWindowAttributes(windows().main, nullptr, &alpha, nullptr));
  EXPECT_EQ(alpha, 255);
}

INSTANTIATE_TEST_SUITE_P(By, Forms, testing::ValuesIn(formRows),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace tintora::windows_test
