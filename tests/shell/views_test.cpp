#include <algorithm>
#include <string>
#include <vector>

#include "colour_space/colour_space_view.h"
#include "expected_calls.h"
#include "program_run.h"
#include "shell/shell_state.h"

namespace tintora {
namespace {

using platform::Event;
using platform::EventKind;
using platform::nullDesktop;
using Views = ShellTest;
using Captions = ShellTest;

struct ViewRow {
  const char* what;
  Event (*event)();
  std::uint32_t view;  // before
  bool visible;
  int viewAfter;
  bool visibleAfter;
};

Event curves() {
  return keyDown('E');
}
Event cube() {
  return keyDown('R');
}
Event diagram() {
  return keyDown('C');
}
Event help() {
  return keyDown(112);
}
Event showOrHide() {
  return keyDown('W');
}

// Keys; the commands beside them do the same.
const std::vector<ViewRow> viewRows{
    {"E", &curves, 705, true, 702, true},
    {"E again", &curves, 702, true, 702, true},
    {"E, hidden", &curves, 702, false, 702, true},
    {"R", &cube, 705, true, 703, true},
    {"R again", &cube, 703, true, 703, true},
    {"R, hidden", &cube, 705, false, 703, true},
    {"C", &diagram, 702, true, 704, true},
    {"C again", &diagram, 704, true, 704, true},
    {"C, hidden", &diagram, 704, false, 704, true},
    {"F1", &help, 703, true, 705, true},
    {"F1 again", &help, 705, true, 705, false},
    {"F1, hidden", &help, 705, false, 705, true},
    {"F1, hidden cube", &help, 703, false, 705, true},
    {"W", &showOrHide, 703, true, 703, false},
    {"W, curves", &showOrHide, 702, true, 702, false},
    {"W, diagram", &showOrHide, 704, true, 704, false},
    {"W, Help", &showOrHide, 705, true, 703, true},
    {"W, hidden", &showOrHide, 704, false, 704, true},
    {"W, hidden Help", &showOrHide, 705, false, 703, true},
    {"W, unknown view", &showOrHide, 999, true, 999, false},
};

Event asCommand(const Event& event) {
  switch (event.key) {
    case 'E':
      return command(702);
    case 'R':
      return command(703);
    case 'C':
      return command(704);
    case 112:
      return command(705);
    default:
      return command(700);
  }
}

TEST_F(Views, AreChosenShownAndHidden) {
  for (const ViewRow& row : viewRows) {
    for (const bool docked : {true, false}) {
      for (const bool byCommand : {false, true}) {
        SCOPED_TRACE(std::string(row.what) + (docked ? ", docked" : "") +
                     (byCommand ? ", command" : ""));
        forgetEverything();
        nullDesktop().store = Store{{"View", row.view}, {"ColorSpace", row.visible ? 1U : 0U}};
        play([&row, docked, byCommand]() -> Script {
          co_yield keyDown('H');
          if (!docked) co_yield keyDown('K');
          co_yield byCommand ? asCommand(row.event()) : row.event();
          const Calls moved = docked ? besideMain() : Calls{};
          expectCalls(row.visibleAfter ? joined({row.visible ? moved : Calls{},
                                                 painted(),
                                                 moved,
                                                 {"showWindow colour space shown"}})
                                       : Calls{"showWindow colour space hidden"});
          EXPECT_EQ(static_cast<int>(shellState.view), row.viewAfter);
          EXPECT_EQ(shellState.colourSpaceVisible, row.visibleAfter);
          EXPECT_EQ(shellState.docked, docked);
        });
        EXPECT_EQ(nullDesktop().store->at("View"), static_cast<std::uint32_t>(row.viewAfter));
        EXPECT_EQ(nullDesktop().store->at("ColorSpace"), row.visibleAfter ? 1U : 0U);
      }
    }
  }
}

TEST_F(Views, AreHiddenByClosingTheirWindow) {
  play([]() -> Script {
    co_yield keyDown('R');
    co_yield happens(EventKind::Closing, colourSpaceWindow());
    expectCalls({"showWindow colour space hidden"});
    EXPECT_TRUE(nullDesktop().handled);
    EXPECT_FALSE(shellState.colourSpaceVisible);
    // No longer drawn, until it is shown again.
    co_yield keyDown('G');
    EXPECT_EQ(std::ranges::count(callsOfEvent(), "present"), 0);
    co_yield keyDown('W');
    EXPECT_EQ(std::ranges::count(callsOfEvent(), "present"), 1);
    EXPECT_EQ(shellState.view, ViewCode::RgbCube);
  });
}

TEST_F(Views, AreShownOrHiddenOnlyOutsideFullScreen) {
  for (const std::uint32_t visible : {0U, 1U}) {
    forgetEverything();
    nullDesktop().store = Store{{"View", 704}, {"ColorSpace", visible}};
    play([visible]() -> Script {
      co_yield keyDown('F');
      co_yield keyDown('W');
      expectCalls({});
      co_yield command(700);
      expectCalls({});
      EXPECT_EQ(shellState.colourSpaceVisible, visible != 0);
    });
  }
}

TEST_F(Captions, NameTheViewAfterEveryEvent) {
  struct Row {
    int command;
    const char* caption;
  };
  const std::vector<Row> rows{{702, "Photoreceptor Response Curves"},
                              {703, "RGB Cube"},
                              {704, "Chromaticity Diagram"},
                              {705, "Help"}};
  play([&rows]() -> Script {
    co_yield keyDown('R');
    for (const Row& row : rows) {
      SCOPED_TRACE(row.caption);
      co_yield command(row.command);
      EXPECT_EQ(colourSpaceWindow().title, row.caption);
      EXPECT_EQ(static_cast<int>(colourSpaceView.viewCode), row.command);
      // After any kind of event.
      colourSpaceWindow().title.clear();
      colourSpaceView.viewCode = {};
      co_yield happens(EventKind::KeyUp, mainWindow());
      EXPECT_EQ(colourSpaceWindow().title, row.caption);
      EXPECT_EQ(static_cast<int>(colourSpaceView.viewCode), row.command);
    }
  });
}

TEST_F(Captions, AreKeptForAnUnknownView) {
  nullDesktop().store = Store{{"View", 999}};
  play([]() -> Script {
    co_yield keyDown('G');
    EXPECT_EQ(colourSpaceWindow().title, "Color Space");
    EXPECT_EQ(callsOfEvent().back(), "present");
  });
}

TEST_F(Captions, StayWhileTheWindowIsHidden) {
  nullDesktop().store = Store{{"View", 703}, {"ColorSpace", 0}};
  play([]() -> Script {
    co_yield keyDown('G');
    EXPECT_EQ(colourSpaceWindow().title, "Color Space");
    expectCalls(otherEffect("Greyscale"));
  });
}

TEST_F(Captions, TheRendererRepeatsTheMainWindowsTitle) {
  play([]() -> Script {
    const std::vector<Event> events{keyDown('G'), keyDown('D'),
                                    wheel(false), keyDown(9),
                                    command(52),  happens(EventKind::TimerElapsed, mainWindow())};
    for (const Event& event : events) {
      co_yield event;
      EXPECT_EQ(colourSpaceView.titleText, title());
    }
    EXPECT_EQ(colourSpaceView.titleText, " Simulation - Deuteranomalous 95% severity");
  });
}

TEST_F(Captions, TheRendererTakesTwoHundredCharactersOfTheTitle) {
  const ProgramFolder folder;
  folder.writeCustomTransforms(std::string(180, 'a') + std::string(90, 'b') +
                               "\n1 0 0 0\n0 1 0 0\n0 0 1 0\n");
  nullDesktop().commandLine = folder.program();
  nullDesktop().store = Store{{"Selected", 0}};
  play([]() -> Script {
    co_yield happens(EventKind::KeyUp, mainWindow());
    EXPECT_EQ(colourSpaceView.titleText, std::string(180, 'a') + std::string(20, 'b'));
  });
}

}  // namespace
}  // namespace tintora
