#include <array>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "engine/effect_matrix.h"
#include "expected_calls.h"
#include "program_run.h"
#include "shell/shell_state.h"

namespace tintora {
namespace {

using platform::Event;
using platform::EventKind;
using platform::nullDesktop;
using Keys = ShellTest;
using Settings = TransformSettings;
using Mode = TransformMode;

// The situation in which each key is pressed: a deutan simulation at 60%, the main window framed
// and hit-transparent, so that repainting the control window can be seen, and the RGB cube docked.
const Store storedSituation{
    {"Selected", 2}, {"ScrollPc", 60}, {"Filter", 103}, {"Swap", 202}, {"View", 703}};

const Calls copyCalls{
    "showCursor false",     "handleWaitingEvents", "captureClientArea main",
    "putOnClipboard main",  "deletePicture",       "setTitle main Image Copied To Clipboard",
    "startTimer main 3000", "showCursor true",     "handleWaitingEvents"};

const Calls viewShown = joined({besideMain(), painted(), shownBesideMain()});

Calls changed(const Calls& application) {
  return joined({application, painted()});
}

Calls stepped(const std::string& title) {
  return joined({simulated(2, title), magnifierInvalidated(), painted()});
}

// Moved or sized by an arrow key.
Calls nudged(const std::string& bounds, const std::string& client, const std::string& source) {
  return joined(
      {{"setWindowBounds main " + bounds, "fitMagnifier magnifier " + client}, sourceSet(source)});
}

const std::string sameClient = "0,0,484,361";

struct KeyRow {
  const char* name;
  int key;
  Calls calls;
  std::function<void(Settings&)> change = [](Settings&) {};
  int view = 703;
  bool shift = false;
  bool control = false;
};

std::function<void(Settings&)> mode(Mode mode) {
  return [mode](Settings& s) { s.Selected = mode; };
}
std::function<void(Settings&)> severity(double severity) {
  return [severity](Settings& s) { s.severity = severity; };
}

const std::vector<KeyRow> keyRows{
    {"Tab", 9, changed(switchedOff()), [](Settings& s) { s.transformOff = true; }},
    {"Esc", 27, {}},
    {"Space", 32,
     joined({{"setWindowForm main frameless", "showWindow main shown",
              "fitMagnifier magnifier 0,0,500,400"},
             sourceSet("710,340,1210,740"),
             besideMain(),
             painted()})},
    {"Page Up", 33, stepped(" Simulation - Deuteranomalous 65% severity"), severity(0.65)},
    {"numpad plus", 107, stepped(" Simulation - Deuteranomalous 65% severity"), severity(0.65)},
    {"plus", 187, stepped(" Simulation - Deuteranomalous 65% severity"), severity(0.65)},
    {"Page Down", 34, stepped(" Simulation - Deuteranomalous 55% severity"), severity(0.55)},
    {"numpad minus", 109, stepped(" Simulation - Deuteranomalous 55% severity"), severity(0.55)},
    {"minus", 189, stepped(" Simulation - Deuteranomalous 55% severity"), severity(0.55)},
    {"Left", 37, nudged("709,340,1209,740", sameClient, "717,371,1209,740")},
    {"Up", 38, nudged("710,339,1210,739", sameClient, "718,370,1210,739")},
    {"Right", 39, nudged("711,340,1211,740", sameClient, "719,371,1211,740")},
    {"Down", 40, nudged("710,341,1210,741", sameClient, "718,372,1210,741")},
    {.name = "Shift Left",
     .key = 37,
     .calls = nudged("710,340,1209,740", "0,0,483,361", "718,371,1209,740"),
     .shift = true},
    {.name = "Shift Up",
     .key = 38,
     .calls = nudged("710,340,1210,739", "0,0,484,360", "718,371,1210,739"),
     .shift = true},
    {.name = "Shift Right",
     .key = 39,
     .calls = nudged("710,340,1211,740", "0,0,485,361", "718,371,1211,740"),
     .shift = true},
    {.name = "Shift Down",
     .key = 40,
     .calls = nudged("710,340,1210,741", "0,0,484,362", "718,371,1210,741"),
     .shift = true},
    {.name = "Ctrl Left",
     .key = 37,
     .calls = nudged("710,340,1209,740", "0,0,483,361", "718,371,1209,740"),
     .control = true},
    {.name = "Ctrl Up",
     .key = 38,
     .calls = nudged("710,340,1210,739", "0,0,484,360", "718,371,1210,739"),
     .control = true},
    {.name = "Ctrl Right",
     .key = 39,
     .calls = nudged("710,340,1211,740", "0,0,485,361", "718,371,1211,740"),
     .control = true},
    {.name = "Ctrl Down",
     .key = 40,
     .calls = nudged("710,340,1210,741", "0,0,484,362", "718,371,1210,741"),
     .control = true},
    {.name = "Ctrl Shift Down",
     .key = 40,
     .calls = nudged("710,340,1210,741", "0,0,484,362", "718,371,1210,741"),
     .shift = true,
     .control = true},
    {"A", 65,
     joined({mainMark(9, true), simulated(2, " Daltonize - Deuteranomalous 60% severity", 9),
             painted()}),
     [](Settings& s) { s.Daltonize = true; }},
    {"B", 66, changed(otherEffect("Brightness +0%")), mode(Mode::Brightness)},
    {.name = "C", .key = 67, .calls = viewShown, .view = 704},
    {.name = "Ctrl C", .key = 67, .calls = copyCalls, .control = true},
    {.name = "Shift C", .key = 67, .calls = viewShown, .view = 704, .shift = true},
    {"D", 68, changed(simulated(2, " Simulation - Deuteranomalous 60% severity"))},
    {.name = "E", .key = 69, .calls = viewShown, .view = 702},
    {"G", 71, changed(otherEffect("Greyscale")), mode(Mode::Greyscale)},
    {"H", 72, {"showWindow control hidden", "setHitTransparent main false"}},
    {"I", 73, changed(otherEffect("Invert ")), mode(Mode::Invert)},
    {"K", 75, painted()},
    {"L", 76, changed(otherEffect("Circadian Light Block, Brightness 60%")),
     mode(Mode::CircadianLightBlock)},
    {"N", 78, changed(otherEffect("Saturation 100%")), mode(Mode::Saturation)},
    {"O", 79, changed(otherEffect("Contrast 100%")), mode(Mode::Contrast)},
    {.name = "Ctrl O", .key = 79, .calls = copyCalls, .control = true},
    {.name = "Shift O",
     .key = 79,
     .calls = changed(otherEffect("Contrast 100%")),
     .change = mode(Mode::Contrast),
     .shift = true},
    {"P", 80, changed(simulated(1, " Simulation - Protanomalous 60% severity")),
     mode(Mode::Protan)},
    {.name = "R", .key = 82, .calls = viewShown},
    {"S", 83, changed(simulated(2, " Simulation - Deuteranomalous 60% severity"))},
    {"T", 84, {}},
    {"W", 87, {"showWindow colour space hidden"}},
    {.name = "F1", .key = 112, .calls = viewShown, .view = 705},
};

TEST_F(Keys, WorkInEveryWindow) {
  for (const char* window : {"main", "control", "colour space"}) {
    for (const KeyRow& row : keyRows) {
      SCOPED_TRACE(std::string(row.name) + " in " + window);
      forgetEverything();
      nullDesktop().store = storedSituation;
      play([&row, window]() -> Script {
        co_yield keyDown('H');
        Settings expected = transformSettings;
        row.change(expected);

        holdKeys(row.shift, row.control);
        Event event = keyDown(row.key);
        event.window = nullDesktop().window(window);
        co_yield event;
        expectCalls(row.calls);
        EXPECT_TRUE(nullDesktop().handled);
        EXPECT_EQ(describe(transformSettings), describe(expected));
        EXPECT_EQ(static_cast<int>(shellState.view), row.view);
      });
    }
  }
}

// full_screen_test.cpp covers what F does; this test covers that the key does it.
TEST_F(Keys, FEntersAndLeavesFullScreen) {
  play([]() -> Script {
    co_yield keyDown('F');
    EXPECT_TRUE(shellState.fullScreen);
    co_yield keyDown('F');
    EXPECT_FALSE(shellState.fullScreen);
  });
}

TEST_F(Keys, WithoutAnActionDoNothing) {
  std::array<bool, 256> known{};
  for (const KeyRow& row : keyRows) known.at(static_cast<std::size_t>(row.key)) = true;
  known['F'] = true;
  play([&known]() -> Script {
    co_yield keyDown('H');
    const std::string before = describe(transformSettings);
    for (int key = 0; key < 256; ++key) {
      if (known.at(static_cast<std::size_t>(key))) continue;
      SCOPED_TRACE(key);
      co_yield keyDown(key);
      expectCalls({});
      EXPECT_EQ(describe(transformSettings), before);
    }
  });
}

// This includes keys without an action.
TEST_F(Keys, FromTabToMinusAreNotLeftToTheDesktop) {
  play([]() -> Script {
    for (int key = 1; key <= 255; ++key) {
      SCOPED_TRACE(key);
      nullDesktop().handled = true;
      co_yield {.kind = EventKind::KeyDown, .window = &controlWindow(), .key = key};
      EXPECT_EQ(nullDesktop().handled, key >= 9 && key <= 189);
    }
  });
}

TEST_F(Keys, DoNothingWhenReleased) {
  play([]() -> Script {
    const std::string before = describe(transformSettings);
    for (int key = 0; key < 256; ++key) {
      SCOPED_TRACE(key);
      Event event = happens(EventKind::KeyUp, mainWindow());
      event.key = key;
      co_yield event;
      expectCalls({});
      EXPECT_TRUE(nullDesktop().handled);
      EXPECT_EQ(describe(transformSettings), before);
    }
  });
}

TEST_F(Keys, IgnoredInFullScreen) {
  struct Row {
    const char* name;
    int key;
    bool shift = false;
    bool control = false;
  };
  const std::vector<Row> rows{
      {"Esc", 27},
      {"Space", 32},
      {"Left", 37},
      {"Up", 38},
      {"Right", 39},
      {"Down", 40},
      {"Shift Left", 37, true},
      {"Shift Up", 38, true},
      {"Ctrl Right", 39, false, true},
      {"Ctrl Down", 40, false, true},
      {"H", 'H'},
      {"W", 'W'},
  };
  for (const int key : {int{'F'}, 0}) {
    forgetEverything();
    nullDesktop().store = storedSituation;
    play([&rows, key]() -> Script {
      co_yield key != 0 ? keyDown(key) : command(54);
      for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        holdKeys(row.shift, row.control);
        co_yield keyDown(row.key);
        expectCalls({});
        EXPECT_TRUE(shellState.fullScreen);
        EXPECT_TRUE(mainWindow().hitTransparent);
      }
    });
  }
}

TEST_F(Keys, ArrowsDoNothingToAMaximisedWindow) {
  play([]() -> Script {
    mainWindow().maximised = true;
    for (int key = 37; key <= 40; ++key) {
      SCOPED_TRACE(key);
      holdKeys(false, false);
      co_yield keyDown(key);
      expectCalls({});
      holdKeys(true, false);
      co_yield keyDown(key);
      expectCalls({});
    }
  });
}

TEST_F(Keys, TabTogglesTheTransform) {
  play([]() -> Script {
    co_yield keyDown('G');
    const EffectMatrix greyscale = nullDesktop().colourEffect;
    const std::string before = describe(transformSettings);
    co_yield keyDown(9);
    EXPECT_EQ(title(), "Transform off, press Tab to turn transform back on");
    EXPECT_EQ(nullDesktop().colourEffect, identityEffectMatrix);
    EXPECT_TRUE(transformSettings.transformOff);
    co_yield keyDown(9);
    expectCalls(otherEffect("Greyscale"));
    EXPECT_EQ(nullDesktop().colourEffect, greyscale);
    EXPECT_EQ(describe(transformSettings), before);
  });
}

TEST_F(Keys, AnyOtherChangeAlsoEndsTheTabbedState) {
  play([]() -> Script {
    const std::vector<Event> changes{keyDown('G'), wheel(false), command(200), command(301)};
    for (const Event& event : changes) {
      co_yield keyDown(9);
      EXPECT_TRUE(transformSettings.transformOff);
      co_yield event;
      EXPECT_FALSE(transformSettings.transformOff);
      EXPECT_NE(title(), "Transform off, press Tab to turn transform back on");
    }
  });
}

TEST_F(Keys, TChoosesTritanOnlyIfEnabled) {
  for (const bool enabled : {false, true}) {
    SCOPED_TRACE(enabled);
    forgetEverything();
    nullDesktop().arguments = enabled ? "t" : "s";
    play([enabled]() -> Script {
      co_yield keyDown('T');
      if (enabled) {
        expectCalls(applied({.title = " Simulation - Tritanope 100% severity",
                             .viewerItem = itemsWithTritan.simulation,
                             .typeItem = 3,
                             .refreshesViews = true},
                            itemsWithTritan));
        EXPECT_EQ(transformSettings.Selected, Mode::Tritan);
      } else {
        expectCalls({});
        EXPECT_EQ(transformSettings.Selected, Mode::Protan);
      }
    });
  }
}

// A, S and their commands go back to the deficiency shown last.
TEST_F(Keys, ViewersReturnToTheLastDeficiency) {
  nullDesktop().arguments = "t";
  play([]() -> Script {
    struct Row {
      int type;
      const char* word;
    };
    const std::vector<Row> rows{{'P', "Protanope"}, {'D', "Deuteranope"}, {'T', "Tritanope"}};
    const std::vector<std::pair<Event, std::string>> viewers{{keyDown('A'), " Daltonize - "},
                                                             {keyDown('S'), " Simulation - "},
                                                             {command(776), " Daltonize - "},
                                                             {command(775), " Simulation - "}};
    for (const Row& row : rows) {
      for (const auto& [event, prefix] : viewers) {
        SCOPED_TRACE(row.word + prefix);
        co_yield keyDown(row.type);
        const Mode deficiency = transformSettings.Selected;
        co_yield keyDown('G');
        co_yield event;
        EXPECT_EQ(transformSettings.Selected, deficiency);
        EXPECT_EQ(title(), prefix + row.word + " 100% severity");
      }
    }
  });
}

}  // namespace
}  // namespace tintora
