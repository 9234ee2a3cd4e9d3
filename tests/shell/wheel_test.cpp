#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "expected_calls.h"
#include "program_run.h"

namespace tintora {
namespace {

using platform::Event;
using platform::nullDesktop;
using Wheel = ShellTest;
using Settings = TransformSettings;

struct WheelRow {
  const char* mode;
  std::uint32_t stored;  // the selection, with three custom transforms
  double Settings::*value;
  double step;
  double least;
};

const std::vector<WheelRow> wheelRows{
    {"custom", 1, &Settings::severity, 0.05, 0.0},
    {"Normal", 3, &Settings::severity, 0.05, 0.0},
    {"Protan", 4, &Settings::severity, 0.05, 0.0},
    {"Deutan", 5, &Settings::severity, 0.05, 0.0},
    {"Tritan", 6, &Settings::severity, 0.05, 0.0},
    {"Greyscale", 7, &Settings::severity, 0.05, 0.0},
    {"Invert", 8, &Settings::severity, 0.05, 0.0},
    {"Brightness", 9, &Settings::brightness, 0.01, -1.0},
    {"Contrast", 10, &Settings::contrast, 0.01, 0.0},
    {"Saturation", 11, &Settings::saturation, 0.01, 0.0},
    {"colour filter", 12, &Settings::severity, 0.05, 0.0},
    {"colour swap", 13, &Settings::severity, 0.05, 0.0},
    {"Circadian Light Block", 14, &Settings::severity, 0.05, 0.0},
    {"red filter", 15, &Settings::severity, 0.05, 0.0},
};

class WheelInEveryMode : public ShellTest {
 protected:
  WheelInEveryMode() {
    folder.writeCustomTransforms(
        "Warm\n1 0 0 0\n0 1 0 0\n0 0 0.5 0\n"
        "$Soft\n0.5 0 0 0.2\n0 0.5 0 0.2\n0 0 0.5 0.2\n"
        "Bare\n1 0 0 0\n0 1 0 0\n0 0 1 0\n");
  }

  void start(const WheelRow& row) const {
    forgetEverything();
    nullDesktop().commandLine = folder.program();
    nullDesktop().store = Store{{"Selected", row.stored}, {"ScrollPc", 50}};
  }

  ProgramFolder folder;
};

// Starts at values far from every limit, so that no step is clamped.
void setMiddleValues() {
  transformSettings.severity = 0.5;
  transformSettings.brightness = 0.25;
  transformSettings.contrast = 0.5;
  transformSettings.saturation = 0.75;
}

TEST_F(WheelInEveryMode, StepsTheValueOfTheModeAndNoOther) {
  for (const WheelRow& row : wheelRows) {
    for (const bool up : {true, false}) {
      SCOPED_TRACE(row.mode + std::string(up ? " up" : " down"));
      start(row);
      play([&row, up]() -> Script {
        setMiddleValues();
        Settings expected = transformSettings;
        expected.*row.value += up ? row.step : -row.step;
        co_yield wheel(up);
        EXPECT_EQ(describe(transformSettings), describe(expected));
        EXPECT_TRUE(nullDesktop().handled);
      });
    }
  }
}

TEST_F(WheelInEveryMode, StaysWithinTheRangeOfTheValue) {
  for (const WheelRow& row : wheelRows) {
    SCOPED_TRACE(row.mode);
    start(row);
    play([&row]() -> Script {
      double& value = transformSettings.*row.value;
      value = 1.0 - row.step / 2;
      co_yield wheel(true);
      EXPECT_EQ(value, 1.0);
      co_yield wheel(true);
      EXPECT_EQ(value, 1.0);
      value = row.least + row.step / 2;
      co_yield wheel(false);
      EXPECT_EQ(value, row.least);
      co_yield wheel(false);
      EXPECT_EQ(value, row.least);
      // Through the whole range, in both directions.
      for (int turn = 0; turn < 250; ++turn) co_yield wheel(true);
      EXPECT_EQ(value, 1.0);
      for (int turn = 0; turn < 250; ++turn) co_yield wheel(false);
      EXPECT_EQ(value, row.least);
    });
  }
}

TEST_F(WheelInEveryMode, WorksByKeysToo) {
  for (const WheelRow& row : wheelRows) {
    for (const auto& [key, up] : std::vector<std::pair<int, bool>>{
             {33, true}, {107, true}, {187, true}, {34, false}, {109, false}, {189, false}}) {
      SCOPED_TRACE(row.mode + std::string(" key ") + std::to_string(key));
      start(row);
      play([&row, key = key, up = up]() -> Script {
        setMiddleValues();
        Settings expected = transformSettings;
        expected.*row.value += up ? row.step : -row.step;
        co_yield keyDown(key);
        EXPECT_EQ(describe(transformSettings), describe(expected));
      });
    }
  }
}

TEST_F(Wheel, AppliesInvalidatesAndRepaints) {
  play([]() -> Script {
    co_yield keyDown('H');
    co_yield wheel(false);
    expectCalls(joined({simulated(1, " Simulation - Protanomalous 95% severity"),
                        magnifierInvalidated(), painted()}));
    co_yield keyDown('B');
    co_yield wheel(false);
    expectCalls(joined({otherEffect("Brightness -1%"), magnifierInvalidated(), painted()}));
  });
}

TEST_F(Wheel, WorksInEveryWindow) {
  play([]() -> Script {
    double expected = 1.0;
    const std::vector<platform::Window*> windows{&mainWindow(), &controlWindow(),
                                                 &colourSpaceWindow()};
    for (platform::Window* const window : windows) {
      SCOPED_TRACE(window->name);
      Event event = wheel(false);
      event.window = window;
      co_yield event;
      expected -= 0.05;
      EXPECT_DOUBLE_EQ(transformSettings.severity, expected);
    }
  });
}

TEST_F(Wheel, LeavesFullSeverityAtFullSeverity) {
  play([]() -> Script {
    co_yield wheel(true);
    EXPECT_EQ(transformSettings.severity, 1.0);
    EXPECT_EQ(title(), " Simulation - Protanope 100% severity");
  });
}

TEST_F(Wheel, ShowsAWholePercentAfterEveryStep) {
  play([]() -> Script {
    for (int percent = 95; percent >= 0; percent -= 5) {
      co_yield wheel(false);
      EXPECT_EQ(title(), " Simulation - Protanomalous " + std::to_string(percent) + "% severity");
    }
    co_yield keyDown('N');
    for (int percent = 99; percent >= 0; --percent) {
      co_yield wheel(false);
      EXPECT_EQ(title(), "Saturation " + std::to_string(percent) + "%");
    }
    co_yield keyDown('B');
    for (int percent = 1; percent <= 100; ++percent) {
      co_yield wheel(true);
      EXPECT_EQ(title(), "Brightness +" + std::to_string(percent) + "%");
    }
  });
}

TEST_F(WheelInEveryMode, ChangesTheStrengthOfAnAdjustableEntry) {
  start(wheelRows[0]);
  play([]() -> Script {
    EXPECT_EQ(title(), "Soft   50% (mouse-wheel adjusts %)");
    EXPECT_FLOAT_EQ(nullDesktop().colourEffect[0][0], 0.75F);
    EXPECT_FLOAT_EQ(nullDesktop().colourEffect[4][2], 0.1F);
    co_yield wheel(true);
    EXPECT_EQ(title(), "Soft   55% (mouse-wheel adjusts %)");
    EXPECT_FLOAT_EQ(nullDesktop().colourEffect[0][0], 0.725F);
    EXPECT_FLOAT_EQ(nullDesktop().colourEffect[4][2], 0.11F);
  });
}

}  // namespace
}  // namespace tintora
