// Keys, commands and wheel turns that change the transform: tests the title and the colour effect
// that the magnifier gets.
#include <string>

#include "expected_effects.h"
#include "program_run.h"
#include "stored_values.h"

namespace tintora::windows_test {
namespace {

using namespace expected;

struct ModeRow {
  const char* name;
  bool byKey;
  int code;
  const char* title;
  ColourEffect effect;
  const char* arguments = "";
};

void PrintTo(const ModeRow& row, std::ostream* out) {
  *out << row.title;
}

constexpr double startSeverity = 0.6;

ModeRow key(const char* name, int code, const char* title, const ColourEffect& effect,
            const char* arguments = "") {
  return {name, true, code, title, effect, arguments};
}
ModeRow command(const char* name, int code, const char* title, const ColourEffect& effect,
                const char* arguments = "") {
  return {name, false, code, title, effect, arguments};
}

const ColourEffect deutan = effectOf(juddDeutan(startSeverity));
const char* const deutanTitle = " Simulation - Deuteranomalous 60% severity";

const std::array modeRows{
    key("P", 'P', " Simulation - Protanomalous 60% severity", effectOf(juddProtan(startSeverity))),
    key("D", 'D', deutanTitle, deutan),
    key("T", 'T', " Simulation - Tritanomalous 60% severity", effectOf(juddTritan(startSeverity)),
        "-t"),
    key("TWithoutTheLetter", 'T', deutanTitle, deutan),
    key("A", 'A', " Daltonize - Deuteranomalous 60% severity",
        effectOf(daltonized(juddDeutan(startSeverity)))),
    key("S", 'S', deutanTitle, deutan),
    key("G", 'G', "Greyscale", greyscale()),
    key("I", 'I', "Invert ", inverted()),
    key("B", 'B', "Brightness +0%", identityEffect),
    key("O", 'O', "Contrast 100%", identityEffect),
    key("N", 'N', "Saturation 100%", identityEffect),
    key("L", 'L', "Circadian Light Block, Brightness 60%", circadian(startSeverity)),
    key("Tab", VK_TAB, "Transform off, press Tab to turn transform back on", identityEffect),
    key("PageUp", VK_PRIOR, " Simulation - Deuteranomalous 65% severity",
        effectOf(juddDeutan(0.65))),
    key("NumpadPlus", VK_ADD, " Simulation - Deuteranomalous 65% severity",
        effectOf(juddDeutan(0.65))),
    key("Plus", VK_OEM_PLUS, " Simulation - Deuteranomalous 65% severity",
        effectOf(juddDeutan(0.65))),
    key("PageDown", VK_NEXT, " Simulation - Deuteranomalous 55% severity",
        effectOf(juddDeutan(0.55))),
    key("NumpadMinus", VK_SUBTRACT, " Simulation - Deuteranomalous 55% severity",
        effectOf(juddDeutan(0.55))),
    key("Minus", VK_OEM_MINUS, " Simulation - Deuteranomalous 55% severity",
        effectOf(juddDeutan(0.55))),
    key("AnyOther", 'Q', deutanTitle, deutan),
    command("Protan", 1, " Simulation - Protanomalous 60% severity",
            effectOf(juddProtan(startSeverity))),
    command("Deutan", 2, deutanTitle, deutan),
    command("Tritan", 3, " Simulation - Tritanomalous 60% severity",
            effectOf(juddTritan(startSeverity)), "-t"),
    command("TritanWithoutTheLetter", 3, deutanTitle, deutan),
    command("Greyscale", 4, "Greyscale", greyscale()),
    command("Invert", 5, "Invert ", inverted()),
    command("Brightness", 6, "Brightness +0%", identityEffect),
    command("Contrast", 7, "Contrast 100%", identityEffect),
    command("Saturation", 8, "Saturation 100%", identityEffect),
    command("Circadian", 9, "Circadian Light Block, Brightness 60%", circadian(startSeverity)),
    command("NoCommand", 10, deutanTitle, deutan),
    command("Toggle", 50, "Transform off, press Tab to turn transform back on", identityEffect),
    command("Red", 100, "60% Red Filter", filtered({1, 0, 0}, startSeverity)),
    command("Green", 101, "60% Green Filter", filtered({0, 1, 0}, startSeverity)),
    command("Blue", 102, "60% Blue Filter", filtered({0, 0, 1}, startSeverity)),
    command("Yellow", 103, "60% Yellow Filter", filtered({1, 1, 0}, startSeverity)),
    command("Magenta", 104, "60% Magenta Filter", filtered({1, 0, 1}, startSeverity)),
    command("Cyan", 105, "60% Cyan Filter", filtered({0, 1, 1}, startSeverity)),
    command("FullRed", 106, "Red Filter", filtered({1, 0, 0}, 1)),
    command("UnnamedFilter", 107, "60% None Filter", filtered({1, 1, 1}, startSeverity)),
    command("SwapRedAndBlue", 200, "Swap 60% Red and Blue", swapped(0, 2, startSeverity)),
    command("SwapRedAndGreen", 201, "Swap 60% Red and Green", swapped(0, 1, startSeverity)),
    command("SwapGreenAndBlue", 202, "Swap 60% Green and Blue", swapped(1, 2, startSeverity)),
    command("Simulation", 775, deutanTitle, deutan),
    command("Daltonize", 776, " Daltonize - Deuteranomalous 60% severity",
            effectOf(daltonized(juddDeutan(startSeverity)))),
    command("Inverse", 777, " Inverse Transform - Deuteranomalous 60% severity",
            effectOf(inverse(juddDeutan(startSeverity)))),
};

// Each row starts from a deutan simulation at 60 %.
class Modes : public UndrawnTest, public testing::WithParamInterface<ModeRow> {};

TEST_P(Modes, ShowAsTheirRowSays) {
  const ModeRow& row = GetParam();
  storeValues({{"Selected", 2}, {"ScrollPc", 60}, {"Filter", 107}});
  start(row.arguments);
  ASSERT_EQ(title(), deutanTitle);
  row.byKey ? press(row.code) : choose(row.code);
  EXPECT_EQ(title(), row.title);
  EXPECT_TRUE(areEqual(lastCall(MagnifierCall::SetColorEffect).values, row.effect));
}

INSTANTIATE_TEST_SUITE_P(By, Modes, testing::ValuesIn(modeRows), [](const auto& row) {
  return std::string(row.param.byKey ? "Key" : "Command") + row.param.name;
});

struct AlgorithmRow {
  int command;
  Weights weights;
};

void PrintTo(const AlgorithmRow& row, std::ostream* out) {
  *out << row.command;
}

const std::array algorithmRows{
    AlgorithmRow{300, juddProtan(1)},
    AlgorithmRow{302, machadoProtan()},
    AlgorithmRow{303, vienot1997Protan()},
    AlgorithmRow{304, vienot1999Protan()},
};

class Algorithms : public UndrawnTest, public testing::WithParamInterface<AlgorithmRow> {};

TEST_P(Algorithms, GiveTheirPublishedMatrix) {
  storeValues({{"Selected", 1}, {"Option", 1}});
  start("-s");
  choose(GetParam().command);
  EXPECT_TRUE(
      areEqual(lastCall(MagnifierCall::SetColorEffect).values, effectOf(GetParam().weights)));
  EXPECT_EQ(title(), " Simulation - Protanope 100% severity");
}

INSTANTIATE_TEST_SUITE_P(By, Algorithms, testing::ValuesIn(algorithmRows), [](const auto& row) {
  return "Command" + std::to_string(row.param.command);
});

struct WheelRow {
  const char* name;
  int command;
  bool up;
  int times;
  const char* title;
  ColourEffect effect;
};

void PrintTo(const WheelRow& row, std::ostream* out) {
  *out << row.title;
}

const std::array wheelRows{
    WheelRow{"SeverityDown", 1, false, 3, " Simulation - Protanomalous 45% severity",
             effectOf(juddProtan(0.45))},
    WheelRow{"SeverityUp", 1, true, 7, " Simulation - Protanomalous 95% severity",
             effectOf(juddProtan(0.95))},
    WheelRow{"SeverityToItsTop", 1, true, 9, " Simulation - Protanope 100% severity",
             effectOf(juddProtan(1))},
    WheelRow{"SeverityToItsBottom", 1, false, 13, " Simulation - Protanomalous 0% severity",
             identityEffect},
    WheelRow{"BrightnessUp", 6, true, 25, "Brightness +25%", brightened(0.25)},
    WheelRow{"BrightnessDown", 6, false, 5, "Brightness -5%", brightened(-0.05)},
    WheelRow{"BrightnessToItsTop", 6, true, 103, "Brightness +100%", brightened(1)},
    WheelRow{"BrightnessToItsBottom", 6, false, 103, "Brightness -100%", brightened(-1)},
    WheelRow{"ContrastDown", 7, false, 30, "Contrast 70%", withContrast(0.7)},
    WheelRow{"ContrastUp", 7, true, 1, "Contrast 100%", withContrast(1)},
    WheelRow{"ContrastToItsBottom", 7, false, 102, "Contrast 0%", withContrast(0)},
    WheelRow{"SaturationDown", 8, false, 40, "Saturation 60%", withSaturation(0.6)},
    WheelRow{"SaturationToItsBottom", 8, false, 102, "Saturation 0%", withSaturation(0)},
    WheelRow{"FilterDown", 103, false, 4, "40% Yellow Filter", filtered({1, 1, 0}, 0.4)},
    WheelRow{"SwapUp", 200, true, 8, "Swap 100% Red and Blue", swapped(0, 2, 1)},
    WheelRow{"CircadianDown", 9, false, 12, "Circadian Light Block, Brightness 0%", circadian(0)},
};

// Each row starts from a severity of 60 %.
class Wheel : public UndrawnTest, public testing::WithParamInterface<WheelRow> {};

TEST_P(Wheel, StepsTheValueOfTheMode) {
  const WheelRow& row = GetParam();
  storeValues({{"Selected", 2}, {"ScrollPc", 60}});
  start();
  choose(row.command);
  turnWheel(row.up, row.times);
  EXPECT_EQ(title(), row.title);
  EXPECT_TRUE(areEqual(lastCall(MagnifierCall::SetColorEffect).values, row.effect));
}

INSTANTIATE_TEST_SUITE_P(By, Wheel, testing::ValuesIn(wheelRows),
                         [](const auto& row) { return std::string(row.param.name); });

using TransformToggle = UndrawnTest;

TEST_F(TransformToggle, GoesThereAndBack) {
  storeValues({{"Selected", 4}});
  start();
  for (int round = 0; round < 2; ++round) {
    press(VK_TAB);
    EXPECT_TRUE(areEqual(lastCall(MagnifierCall::SetColorEffect).values, identityEffect));
    press(VK_TAB);
    EXPECT_TRUE(areEqual(lastCall(MagnifierCall::SetColorEffect).values, greyscale()));
    EXPECT_EQ(title(), "Greyscale");
  }
}

TEST_F(TransformToggle, EndsWithAnyOtherChange) {
  start();
  press(VK_TAB);
  press('I');
  EXPECT_EQ(title(), "Invert ");
  press(VK_TAB);
  EXPECT_EQ(title(), "Transform off, press Tab to turn transform back on");
}

}  // namespace
}  // namespace tintora::windows_test
