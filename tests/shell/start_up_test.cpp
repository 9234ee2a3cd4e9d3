#include <algorithm>
#include <iterator>
#include <set>
#include <string>
#include <vector>

#include "colour_space/colour_space_view.h"
#include "engine/effect_matrix.h"
#include "expected_calls.h"
#include "platform/null/null_graphics.h"
#include "program_run.h"
#include "shell/shell_state.h"
#include "spectral/simulation_matrix.h"

namespace tintora {
namespace {

using platform::nullDesktop;
using StartUp = ShellTest;
using ShutDown = ShellTest;
using CommandLineLetters = ShellTest;

Calls callsFrom(const std::string& first) {
  const Calls& calls = nullDesktop().calls;
  return {std::ranges::find(calls, first), calls.end()};
}

// The marks that the engine sets before the menus are built have no effect and are left out.
Calls withoutMarks(const Calls& calls) {
  Calls rest;
  std::ranges::remove_copy_if(calls, std::back_inserter(rest), [](const std::string& call) {
    return call.starts_with("checkMenuItem");
  });
  return rest;
}

// Returns the calls before the first one that builds the menus.
Calls callsBeforeMenus() {
  const Calls& calls = nullDesktop().calls;
  return withoutMarks({calls.begin(), std::ranges::find_if(calls, [](const std::string& call) {
                         return call.starts_with("destroyMenu");
                       })});
}

const Calls nineEmptyMenus{"createMenu menu 1", "createMenu menu 2", "createMenu menu 3",
                           "createMenu menu 4", "createMenu menu 5", "createMenu menu 6",
                           "createMenu menu 7", "createMenu menu 8", "createMenu menu 9"};

const std::string createMain =
    "createWindow main Help: Right-click to select; Tab to toggle on/off 710,340,1210,740";
const std::string createMagnifier = "createMagnifier MagnifierWindow 0,0,500,400";
const std::string createControl =
    "createWindow control Hit Transparent, Press H to exit 0,0,400,120";
const std::string createColourSpace = "createWindow colour space Color Space 0,0,400,400";

TEST_F(StartUp, TakesItsStepsInOrderUpToTheMenus) {
  playNothing();
  EXPECT_EQ(
      callsBeforeMenus(),
      joined({nineEmptyMenus,
              {"startMagnifier", "readValues", "registerWindowKinds", createMain, createMagnifier,
               createControl, createColourSpace},
              deviceCreated(384, 361),
              {"acceptDroppedFiles main true", "setUnmagnified magnifier",
               "setTitle main  Simulation - Protanope 100% severity", "setColourEffect magnifier"},
              viewsRefreshed()}));
  EXPECT_EQ(colourSpaceView.cameraDistance, 4.0F) << "The camera is not set up.";
}

TEST_F(StartUp, RebuildsEveryMenuAndTheMainMenuLast) {
  playNothing();
  const Calls& calls = nullDesktop().calls;
  auto call = std::ranges::find_if(calls, [](const auto& c) { return c.starts_with("destroy"); });
  std::set<std::string> destroyed;
  for (int menu = 10; menu <= 18; ++menu) {
    SCOPED_TRACE(menu);
    ASSERT_TRUE(call->starts_with("destroyMenu menu "));
    destroyed.insert(*call++);
    EXPECT_EQ(*call++, "createMenu menu " + std::to_string(menu));
    // The alternative transforms and the main menu are built with a mark.
    if (menu == 12 || menu == 18) {
      EXPECT_EQ(*call++, "checkMenuItem menu " + std::to_string(menu) + " 1 true");
    }
  }
  EXPECT_EQ(destroyed.size(), 9U);
  for (int menu = 1; menu <= 9; ++menu) {
    EXPECT_TRUE(destroyed.contains("destroyMenu menu " + std::to_string(menu))) << menu;
  }
  EXPECT_EQ(*call, "showWindow main as started");
}

TEST_F(StartUp, FillsTheMenusInTheOrderOfTheirNumbers) {
  play([]() -> Script {
    const ShellMenus& menus = shellState.menus;
    const std::vector<int> numbers{menus.colourFilter->number,
                                   menus.colourSwap->number,
                                   menus.alternativeTransforms->number,
                                   menus.otherColourEffects->number,
                                   menus.spare->number,
                                   menus.help->number,
                                   menus.viewOptions->number,
                                   menus.colourSpace->number,
                                   menus.main->number};
    EXPECT_EQ(numbers, (std::vector<int>{10, 11, 12, 13, 14, 15, 16, 17, 18}));
    co_return;
  });
}

TEST_F(StartUp, ShowsTheWindowsAndAppliesTheTransformOnceMore) {
  play([]() -> Script {
    EXPECT_EQ(callsFrom("showWindow main as started"),
              joined({{"showWindow main as started"},
                      sourceSet("718,371,1210,740"),
                      simulated(1, " Simulation - Protanope 100% severity"),
                      {"showWindow colour space as started"}}));
    co_return;
  });
}

TEST_F(StartUp, ShowsNoColourSpaceWindowThatWasHidden) {
  nullDesktop().store = Store{{"ColorSpace", 0}};
  play([]() -> Script {
    EXPECT_EQ(callsFrom("showWindow main as started"),
              joined({{"showWindow main as started"},
                      sourceSet("718,371,1210,740"),
                      simulated(1, " Simulation - Protanope 100% severity")}));
    EXPECT_EQ(colourSpaceWindow().shown, platform::ShowState::Hidden);
    co_return;
  });
  // The renderer is created nevertheless.
  EXPECT_EQ(std::ranges::count(nullDesktop().calls, "createGraphicsDevice colour space 384x361"),
            1);
}

TEST_F(StartUp, CentresTheMainWindowOnTheScreen) {
  struct Row {
    platform::Size screen;
    std::string bounds;
  };
  const std::vector<Row> rows{{{1920, 1080}, "710,340,1210,740"},
                              {{1366, 768}, "433,184,933,584"},
                              {{1365, 767}, "432,183,932,583"},
                              {{400, 300}, "-50,-50,450,350"}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.bounds);
    forgetEverything();
    nullDesktop().screen = row.screen;
    playNothing();
    EXPECT_EQ(text(mainWindow().bounds), row.bounds);
  }
}

TEST_F(StartUp, PassesTheSavedViewToTheRenderer) {
  for (const std::uint32_t view : {702U, 703U, 704U, 705U}) {
    SCOPED_TRACE(view);
    forgetEverything();
    nullDesktop().store = Store{{"View", view}, {"ColorSpace", 0}};
    playNothing();
    EXPECT_EQ(static_cast<std::uint32_t>(colourSpaceView.viewCode), view);
    EXPECT_EQ(colourSpaceView.window, &colourSpaceWindow());
    EXPECT_EQ(colourSpaceView.width, 384);
    EXPECT_EQ(colourSpaceView.height, 361);
  }
}

TEST_F(StartUp, ComputesAFirstMatrixFromTheLoadedSettings) {
  // Greyscale leaves the model as the start made it.
  nullDesktop().store = Store{{"Selected", 4}, {"ScrollPc", 40}, {"Option", 2}, {"Inversion", 1}};
  playNothing();
  EXPECT_EQ(modelContext.modelCvdType, CvdType::Protan);
  EXPECT_DOUBLE_EQ(modelContext.modelSeverity, 0.4);
  EXPECT_EQ(modelContext.Option, SimulationAlgorithm::Machado2009);
  EXPECT_TRUE(modelContext.Inversion);
  EXPECT_FALSE(modelContext.Daltonize);
  // Machado, Oliveira & Fernandes 2009, protan, severity 0.4: the first row begins with this.
  EXPECT_NEAR(modelContext.uninvertedMatrix[0], 0.539009, 1e-6);
}

TEST_F(StartUp, PassesTheEffectMatrixToTheMagnifier) {
  playNothing();
  EXPECT_EQ(nullDesktop().colourEffect, effectMatrix);
  EXPECT_NE(effectMatrix, identityEffectMatrix);
}

struct Failure {
  const char* what;
  Calls calls;  // after the nine menus
};

TEST_F(StartUp, EndsAtOnceIfTheDesktopLacksSomething) {
  const Calls untilMain{"startMagnifier", "readValues", "registerWindowKinds", createMain};
  const std::vector<Failure> rows{
      {"service", {"startMagnifier"}},
      {"magnifier", joined({untilMain, {createMagnifier}})},
      {"control", joined({untilMain, {createMagnifier, createControl}})},
      {"colour space", joined({untilMain, {createMagnifier, createControl, createColourSpace}})},
  };
  const Store store{{"ScrollPc", 70}, {"View", 702}};
  for (const Failure& row : rows) {
    SCOPED_TRACE(row.what);
    forgetEverything();
    nullDesktop().store = store;
    nullDesktop().hasMagnifier = std::string(row.what) != "service";
    nullDesktop().windowThatFails = row.what;
    bool reached = false;
    const int result = play([&reached]() -> Script {
      reached = true;
      co_return;
    });
    EXPECT_EQ(result, 0);
    EXPECT_FALSE(reached);
    EXPECT_EQ(nullDesktop().calls, joined({nineEmptyMenus, row.calls}));
    EXPECT_EQ(nullDesktop().store, store);
  }
}

TEST_F(ShutDown, TakesItsStepsInOrder) {
  const int result =
      play([]() -> Script { co_yield happens(platform::EventKind::Destroyed, mainWindow()); });
  EXPECT_EQ(result, 0);
  EXPECT_EQ(callsFrom("quit 0"),
            joined({{"quit 0"},
                    sourceSet("718,371,1210,740"),
                    {"setTitle colour space Help", "present", "writeValues", "stopMagnifier",
                     "destroyMenu menu 18", "destroyMenu menu 10", "destroyMenu menu 11",
                     "destroyMenu menu 12", "destroyMenu menu 15", "destroyMenu menu 16",
                     "destroyMenu menu 13", "destroyMenu menu 14", "destroyMenu menu 17",
                     "acceptDroppedFiles main false", "unregisterWindowKinds",
                     "releaseGraphicsDevice"}}));
  EXPECT_TRUE(platform::nullGraphics().devices.empty());
  EXPECT_TRUE(nullDesktop().menus.empty());
}

TEST_F(ShutDown, StopsAPendingTitleTimerAfterTheSettingsAreSaved) {
  play([]() -> Script { co_yield command(52); });
  const Calls calls = callsFrom("writeValues");
  ASSERT_GE(calls.size(), 3U);
  EXPECT_EQ(calls[1], "stopTimer main");
  EXPECT_EQ(calls[2], "stopMagnifier");
  EXPECT_FALSE(shellState.titleTimerPending);
  EXPECT_FALSE(mainWindow().timer);
}

TEST_F(ShutDown, ReturnsTheRequestedExitStatus) {
  for (const int told : {0, 7}) {
    forgetEverything();
    const int result = play([told]() -> Script {
      platform::quit(told);
      co_return;
    });
    EXPECT_EQ(result, told);
  }
}

TEST_F(ShutDown, HandlesNoEventAfterTheEnd) {
  bool wentOn = false;
  play([&wentOn]() -> Script {
    co_yield happens(platform::EventKind::Destroyed, mainWindow());
    wentOn = true;
  });
  EXPECT_FALSE(wentOn);
}

TEST_F(CommandLineLetters, CountAmongTheFirstTenCharactersInLowerCase) {
  struct Row {
    const char* arguments;
    bool simulationOptions;
    bool tritan;
  };
  const std::vector<Row> rows{
      {"", false, false},
      {"-st", true, true},
      {"-ts", true, true},
      {"s", true, false},
      {"t", false, true},
      {"/s", true, false},
      {"-s -t", true, true},
      {"-S -T", false, false},
      {"-St", false, true},
      {"-sT", true, false},
      {"0123456789st", false, false},
      {"012345678st", true, false},  // the s is the tenth
      {"01234567st", true, true},
      {"         s", true, false},
      {"          s", false, false},
      {"first", true, true},
      {"xyz", false, false},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.arguments);
    forgetEverything();
    nullDesktop().arguments = row.arguments;
    playNothing();
    EXPECT_EQ(shellState.simulationOptionsEnabled, row.simulationOptions);
    EXPECT_EQ(shellState.tritanEnabled, row.tritan);
  }
}

TEST_F(CommandLineLetters, AreNotLookedForInTheProgramsOwnPath) {
  nullDesktop().commandLine = "C:\\st\\tests.exe";
  playNothing();
  EXPECT_FALSE(shellState.simulationOptionsEnabled);
  EXPECT_FALSE(shellState.tritanEnabled);
}

TEST_F(CommandLineLetters, RemoveTheTritanItemAndTheAlgorithmsWhenOff) {
  for (const bool on : {false, true}) {
    SCOPED_TRACE(on);
    forgetEverything();
    nullDesktop().arguments = on ? "-st" : "";
    play([on]() -> Script {
      const auto& entries = shellState.menus.main->entries;
      const auto has = [&entries](const std::string& start) {
        return std::ranges::any_of(
            entries, [&start](const auto& entry) { return entry.text.starts_with(start); });
      };
      EXPECT_EQ(has("Tritan"), on);
      EXPECT_EQ(has("Simulation Option"), on);
      co_return;
    });
  }
}

}  // namespace
}  // namespace tintora
