// Settings from one run of the program to the next.
#include <string>
#include <vector>

#include "expected_calls.h"
#include "program_run.h"
#include "shell/shell_state.h"

namespace tintora {
namespace {

using platform::EventKind;
using platform::nullDesktop;
using Mode = TransformMode;
using SettingsRuns = ShellTest;

std::string customText(int count) {
  std::string text;
  for (int i = 0; i < count; ++i) {
    text += "Custom " + std::to_string(i) + "\n0.5 0 0 0\n0 1 0 0\n0 0 1 0\n";
  }
  return text;
}

TEST_F(SettingsRuns, SaveAllNineValues) {
  nullDesktop().arguments = "t";
  play([]() -> Script {
    co_yield keyDown('T');
    co_yield command(104);
    co_yield command(202);
    co_yield command(303);
    co_yield command(777);
    co_yield keyDown('C');
    co_yield happens(EventKind::Closing, colourSpaceWindow());
    for (int turn = 0; turn < 8; ++turn) co_yield wheel(false);
  });
  EXPECT_EQ(nullDesktop().store, (Store{{"Selected", 3},
                                        {"ScrollPc", 60},
                                        {"Filter", 104},
                                        {"Swap", 202},
                                        {"Option", 3},
                                        {"Inversion", 1},
                                        {"Daltonize", 0},
                                        {"ColorSpace", 0},
                                        {"View", 704}}));
}

// A script of commands, and what the run after it starts with.
struct RunRow {
  const char* what;
  std::vector<int> commands;  // three custom transforms are loaded
  std::uint32_t selected;
  const char* title;
};

const std::vector<RunRow> runRows{
    {"custom", {2}, 2, "Custom 2"},
    {"Protan", {4}, 4, " Simulation - Protanope 100% severity"},
    {"Deutan", {5, 776}, 5, " Daltonize - Deuteranope 100% severity"},
    {"Tritan", {6, 777}, 6, " Inverse Tranform - Tritanope 100% severity"},
    {"Greyscale", {7}, 7, "Greyscale"},
    {"Invert", {8}, 8, "Invert "},
    {"Brightness", {9}, 9, "Brightness +0%"},
    {"Contrast", {10}, 10, "Contrast 100%"},
    {"Saturation", {11}, 11, "Saturation 100%"},
    {"yellow filter", {103}, 12, "100% Yellow Filter"},
    {"swap", {201}, 13, "Swap 100% Red and Green"},
    {"unknown swap", {250}, 13, "Swap Red and Blue"},
    {"Circadian Light Block", {12}, 14, "Circadian Light Block, Brightness 100%"},
    {"red filter", {106}, 15, "Red Filter"},
    // The number of the filter is kept, its colour is not.
    {"filter without a colour", {102, 150}, 12, "100% None Filter"},
};

TEST_F(SettingsRuns, ContinueWhereTheLastRunEnded) {
  const ProgramFolder folder;
  folder.writeCustomTransforms(customText(3));
  for (const RunRow& row : runRows) {
    SCOPED_TRACE(row.what);
    forgetEverything();
    nullDesktop().commandLine = folder.program();
    nullDesktop().arguments = "t";
    play([&row]() -> Script {
      for (const int id : row.commands) co_yield command(id);
    });
    EXPECT_EQ(nullDesktop().store->at("Selected"), row.selected);
    const Store saved = *nullDesktop().store;
    restartProcess();
    play([&row]() -> Script {
      EXPECT_EQ(title(), row.title);
      EXPECT_FALSE(transformSettings.transformOff);
      co_return;
    });
    // A run without events changes nothing, except that an unknown swap becomes a known one.
    Store expected = saved;
    if (expected["Swap"] > 203) expected["Swap"] = 203;
    EXPECT_EQ(nullDesktop().store, expected);
  }
}

TEST_F(SettingsRuns, ForgetEverythingElse) {
  play([]() -> Script {
    co_yield keyDown('B');
    for (int turn = 0; turn < 30; ++turn) co_yield wheel(true);
    co_yield keyDown('K');
    co_yield keyDown('F');
    mainWindow().bounds = {1, 2, 300, 400};
  });
  restartProcess();
  play([]() -> Script {
    EXPECT_EQ(title(), "Brightness +0%");
    EXPECT_TRUE(shellState.docked);
    EXPECT_FALSE(shellState.fullScreen);
    EXPECT_EQ(text(mainWindow().bounds), "710,340,1210,740");
    co_return;
  });
}

TEST_F(SettingsRuns, KeepTheTransformThatWasOff) {
  play([]() -> Script {
    co_yield keyDown('D');
    co_yield keyDown(9);
  });
  restartProcess();
  play([]() -> Script {
    EXPECT_EQ(title(), " Simulation - Deuteranope 100% severity");
    co_return;
  });
}

TEST_F(SettingsRuns, ShowNormalVisionOnlyFromAStoredValue) {
  nullDesktop().store = Store{{"Selected", 0}, {"ScrollPc", 80}};
  play([]() -> Script {
    EXPECT_EQ(transformSettings.Selected, Mode::Normal);
    EXPECT_EQ(title(), "Normal  80% severity");
    // A mild protan vision is what the model holds, so the viewers' keys lead there.
    co_yield keyDown('S');
    EXPECT_EQ(title(), " Simulation - Protanomalous 80% severity");
  });
  EXPECT_EQ(nullDesktop().store->at("Selected"), 1U);
}

// If custom transforms are added or removed, a stored selection means another transform.
TEST_F(SettingsRuns, ShiftWithTheNumberOfCustomTransforms) {
  struct Row {
    int before;
    int command;
    int after;
    const char* title;
  };
  const std::vector<Row> rows{
      {0, 4, 1, " Simulation - Tritanope 100% severity"},
      {0, 4, 5, "Custom 4"},
      {0, 1, 3, "Custom 1"},
      {3, 7, 2, "Invert "},
      {3, 7, 0, "Contrast 100%"},
      {3, 2, 0, " Simulation - Deuteranope 100% severity"},
      {3, 2, 2, "Normal  100% severity"},
      {3, 2, 1, " Simulation - Protanope 100% severity"},
      // Past the table: the built-in default.
      {3, 106, 0, " Simulation - Deuteranope 100% severity"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(std::to_string(row.before) + " to " + std::to_string(row.after) + ", command " +
                 std::to_string(row.command));
    forgetEverything();
    const ProgramFolder folder;
    folder.writeCustomTransforms(customText(row.before));
    nullDesktop().commandLine = folder.program();
    play([&row]() -> Script { co_yield command(row.command); });
    restartProcess();
    folder.writeCustomTransforms(customText(row.after));
    play([&row]() -> Script {
      EXPECT_EQ(title(), row.title);
      co_return;
    });
  }
}

TEST_F(SettingsRuns, AreSavedOnceAtTheEnd) {
  play([]() -> Script {
    co_yield keyDown('G');
    co_yield keyDown('D');
    EXPECT_FALSE(nullDesktop().store);
  });
  EXPECT_EQ(nullDesktop().store->at("Selected"), 2U);
}

}  // namespace
}  // namespace tintora
