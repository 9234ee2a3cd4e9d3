#include <string>
#include <vector>

#include "expected_calls.h"
#include "program_run.h"
#include "shell/shell_state.h"

namespace tintora {
namespace {

using platform::Event;
using platform::EventKind;
using platform::nullDesktop;
using Docking = ShellTest;

Event maximised(const platform::Window& window) {
  Event event = happens(EventKind::Sized, window);
  event.maximised = true;
  return event;
}

std::string place() {
  return text(colourSpaceWindow().bounds);
}

TEST_F(Docking, KeepsTheSizeOfTheColourSpaceWindow) {
  play([]() -> Script {
    colourSpaceWindow().bounds = {5, 6, 305, 256};
    mainWindow().bounds = {100, 200, 600, 700};
    co_yield happens(EventKind::Moving, mainWindow());
    EXPECT_EQ(place(), "604,200,904,450");
  });
}

TEST_F(Docking, IsToggledByKeyAndByCommand) {
  const std::vector<Event (*)()> toggles{[] { return keyDown('K'); }, [] { return command(701); }};
  for (const auto toggle : toggles) {
    forgetEverything();
    play([toggle]() -> Script {
      co_yield keyDown('H');
      co_yield toggle();
      expectCalls(painted());
      EXPECT_FALSE(shellState.docked);
      co_yield toggle();
      expectCalls(joined({besideMain(), painted()}));
      EXPECT_TRUE(shellState.docked);
    });
  }
}

TEST_F(Docking, DoesNotMoveAHiddenWindow) {
  nullDesktop().store = Store{{"ColorSpace", 0}, {"View", 703}};
  play([]() -> Script {
    const std::vector<Event> events{keyDown('K'), keyDown('K'),
                                    happens(EventKind::Moving, mainWindow()),
                                    happens(EventKind::Sized, mainWindow())};
    for (const Event& event : events) {
      co_yield event;
      EXPECT_EQ(place(), "0,0,400,400");
    }
    // Only when it is shown.
    co_yield keyDown('W');
    EXPECT_EQ(place(), "1214,340,1614,740");
  });
}

TEST_F(Docking, EndsWhenTheColourSpaceWindowIsMovedUntilKDocksItAgain) {
  play([]() -> Script {
    co_yield keyDown('H');
    colourSpaceWindow().bounds = {50, 60, 450, 460};
    co_yield happens(EventKind::Moving, colourSpaceWindow());
    expectCalls({});
    EXPECT_FALSE(nullDesktop().handled);
    EXPECT_FALSE(shellState.docked);
    const std::vector<Event> events{
        happens(EventKind::Moving, mainWindow()), happens(EventKind::Sized, mainWindow()),
        happens(EventKind::Sizing, mainWindow()), keyDown('R'), keyDown(32)};
    for (const Event& event : events) {
      mainWindow().bounds = {100, 200, 600, 600};
      co_yield event;
      EXPECT_EQ(place(), "50,60,450,460");
    }
    co_yield keyDown('K');
    EXPECT_EQ(place(), "604,200,1004,600");
  });
}

TEST_F(Docking, EndsWhenAWindowIsMaximised) {
  for (const bool main : {true, false}) {
    SCOPED_TRACE(main);
    forgetEverything();
    play([main]() -> Script {
      co_yield happens(EventKind::Sized, main ? mainWindow() : colourSpaceWindow());
      EXPECT_TRUE(shellState.docked);
      co_yield maximised(main ? mainWindow() : colourSpaceWindow());
      EXPECT_FALSE(shellState.docked);
      EXPECT_EQ(place(), "1214,340,1614,740");
    });
  }
}

TEST_F(Docking, ShowsAnUndockedWindowWhereItIs) {
  nullDesktop().store = Store{{"ColorSpace", 0}};
  play([]() -> Script {
    co_yield keyDown('K');
    colourSpaceWindow().bounds = {50, 60, 450, 460};
    const std::vector<Event> events{keyDown('R'), keyDown('C'), keyDown('E'), keyDown(112),
                                    command(702), command(703), command(704), keyDown('W'),
                                    keyDown('W'), command(700), command(700)};
    for (const Event& event : events) {
      co_yield event;
      EXPECT_EQ(place(), "50,60,450,460");
    }
    EXPECT_EQ(colourSpaceWindow().shown, platform::ShowState::Shown);
  });
}

TEST_F(Docking, FollowsAMainWindowThatWasMovedWhileHidden) {
  play([]() -> Script {
    co_yield keyDown('R');
    co_yield keyDown('W');
    mainWindow().bounds = {10, 20, 510, 420};
    co_yield happens(EventKind::Moving, mainWindow());
    EXPECT_EQ(place(), "1214,340,1614,740");
    co_yield keyDown('W');
    EXPECT_EQ(place(), "514,20,914,420");
  });
}

}  // namespace
}  // namespace tintora
