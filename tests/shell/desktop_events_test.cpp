// What a desktop does by itself: it moves windows late, takes the mouse away, changes its screens
// and ends the session.
#include <algorithm>
#include <string>

#include "expected_calls.h"
#include "program_run.h"
#include "shell/shell_state.h"

namespace tintora {
namespace {

using platform::EventKind;
using platform::nullDesktop;
using platform::Rect;
using DesktopEvents = ShellTest;
using Monitors = ShellTest;
using Resolution = ShellTest;

TEST_F(DesktopEvents, AMovedMainWindowIsAimedAtOnce) {
  play([]() -> Script {
    co_yield keyDown('H');
    mainWindow().bounds = {100, 200, 600, 700};
    co_yield happens(EventKind::Moved, mainWindow());
    expectCalls(joined({sourceSet("108,231,600,700"),
                        {"setWindowBounds colour space 604,200,1004,600"},
                        painted()}));
    EXPECT_FALSE(nullDesktop().handled);
  });
}

TEST_F(DesktopEvents, OtherMovedWindowsChangeNothing) {
  play([]() -> Script {
    co_yield happens(EventKind::Moved, controlWindow());
    expectCalls({});
    co_yield happens(EventKind::Moved, colourSpaceWindow());
    expectCalls({});
    EXPECT_TRUE(shellState.docked);
  });
}

TEST_F(DesktopEvents, ADragEndsWithTheMouse) {
  play([]() -> Script {
    co_yield mouse(EventKind::LeftDown, mainWindow(), 11, 12);
    co_yield happens(EventKind::MouseLost, mainWindow());
    nullDesktop().cursor = {900, 500};
    co_yield mouse(EventKind::MouseMoved, mainWindow(), 13, 14);
    expectCalls({});
  });
}

TEST_F(DesktopEvents, FullScreenFollowsTheScreen) {
  play([]() -> Script {
    co_yield keyDown('F');
    nullDesktop().screen = {1280, 800};
    co_yield happens(EventKind::ScreenChanged, mainWindow());
    EXPECT_EQ(text(mainWindow().bounds), "0,0,1280,800");
    EXPECT_EQ(text(nullDesktop().magnifierSource), "0,0,1280,800");
    co_yield happens(EventKind::ScreenChanged, controlWindow());
    expectCalls({});
  });
}

TEST_F(DesktopEvents, AnotherScreenSizeMovesNoFramedWindow) {
  play([]() -> Script {
    const Rect before = mainWindow().bounds;
    nullDesktop().screen = {1280, 800};
    co_yield happens(EventKind::ScreenChanged, mainWindow());
    EXPECT_EQ(mainWindow().bounds, before);
  });
}

TEST_F(DesktopEvents, FullScreenStaysSoAtAnotherScale) {
  play([]() -> Script {
    co_yield keyDown('F');
    const Rect screen = mainWindow().bounds;
    mainWindow().bounds = {40, 50, 840, 650};
    co_yield happens(EventKind::ScaleChanged, mainWindow());
    EXPECT_EQ(text(mainWindow().bounds), text(screen));
  });
}

TEST_F(DesktopEvents, TheColourSpaceWindowIsDrawnAnewAtAnotherScale) {
  play([]() -> Script {
    const auto devices = [] {
      return std::ranges::count(nullDesktop().calls, "createGraphicsDevice colour space 384x361");
    };
    const auto before = devices();
    co_yield happens(EventKind::ScaleChanged, colourSpaceWindow());
    EXPECT_EQ(devices(), before);
    nullDesktop().scale = 1.5;
    co_yield happens(EventKind::ScaleChanged, colourSpaceWindow());
    EXPECT_EQ(devices(), before + 1);
  });
}

TEST_F(DesktopEvents, TheEndOfTheSessionSavesTheSettings) {
  play([]() -> Script {
    co_yield command(2);
    EXPECT_FALSE(nullDesktop().store.has_value());
    co_yield happens(EventKind::SessionEnding, controlWindow());
    EXPECT_FALSE(nullDesktop().store.has_value());
    co_yield happens(EventKind::SessionEnding, mainWindow());
    EXPECT_EQ(nullDesktop().store->at("Selected"), 2U);
    EXPECT_FALSE(nullDesktop().handled);
  });
}

// The primary screen is 1920 x 1080. Right of it and below the rule for a maximised window would
// aim at nothing.
TEST_F(Monitors, AreNeverAimedAtAnEmptyArea) {
  play([]() -> Script {
    struct Row {
      Rect bounds;
      const char* source;
    };
    for (const Row& row : {Row{{1912, -8, 3208, 1032}, "1920,23,3208,1080"},
                           Row{{-8, 1072, 1928, 2000}, "0,1103,1920,2000"},
                           Row{{-1288, -8, 8, 1032}, "-1280,23,1920,1080"}}) {
      mainWindow().bounds = row.bounds;
      mainWindow().maximised = true;
      co_yield happens(EventKind::KeyUp, mainWindow());
      EXPECT_EQ(text(nullDesktop().magnifierSource), row.source);
    }
  });
}

TEST_F(Monitors, AWindowWithoutAnAreaIsNotAimed) {
  play([]() -> Script {
    mainWindow().bounds = {100, 200, 104, 204};
    nullDesktop().magnifierSource = {1, 2, 3, 4};
    co_yield happens(EventKind::KeyUp, mainWindow());
    EXPECT_EQ(text(nullDesktop().magnifierSource), "1,2,3,4");
  });
}

TEST_F(Resolution, ScalesTheWindowsFirstSizes) {
  nullDesktop().scale = 1.5;
  play([]() -> Script {
    EXPECT_EQ(text(mainWindow().bounds), "585,240,1335,840");
    EXPECT_EQ(text(controlWindow().bounds), "0,0,600,180");
    co_yield keyDown('H');
    EXPECT_EQ(text(controlWindow().bounds), "660,450,1260,630");
    EXPECT_EQ(colourSpaceWindow().bounds.width(), 600);
    EXPECT_EQ(colourSpaceWindow().bounds.height(), 600);
  });
}

}  // namespace
}  // namespace tintora
