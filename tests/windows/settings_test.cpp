// What the program stores when it ends, and how it starts from stored settings.
#include <cstdint>
#include <fstream>
#include <ostream>
#include <string>

#include "expected_effects.h"
#include "program_run.h"
#include "stored_values.h"

namespace tintora::windows_test {

namespace {

using namespace expected;

constexpr DWORD invalidView = 42;

StoredValues defaultsWith(const StoredValues& others) {
  StoredValues values{{"Selected", 1},  {"ScrollPc", 100}, {"Filter", 100},
                      {"Swap", 200},    {"Option", 0},     {"Inversion", 0},
                      {"Daltonize", 0}, {"ColorSpace", 1}, {"View", 705}};
  for (const auto& [name, value] : others) values[name] = value;
  return values;
}

constexpr int wheelDown = -1;
constexpr int tab = -2;

struct SavedRow {
  const char* name;
  std::vector<int> commands;
  StoredValues changed;
  const char* arguments = "";
};

void PrintTo(const SavedRow& row, std::ostream* out) {
  *out << row.name;
}

const std::array savedRows{
    SavedRow{"Nothing", {}, {}},
    SavedRow{"Protan", {2, 1}, {{"Selected", 1}}},
    SavedRow{"Deutan", {2}, {{"Selected", 2}}},
    SavedRow{"Tritan", {3}, {{"Selected", 3}}, "-t"},
    SavedRow{"Greyscale", {4}, {{"Selected", 4}}},
    SavedRow{"Invert", {5}, {{"Selected", 5}}},
    SavedRow{"Brightness", {6}, {{"Selected", 6}}},
    SavedRow{"Contrast", {7}, {{"Selected", 7}}},
    SavedRow{"Saturation", {8}, {{"Selected", 8}}},
    SavedRow{"Filter", {104}, {{"Selected", 9}, {"Filter", 104}}},
    SavedRow{"Swap", {202}, {{"Selected", 10}, {"Swap", 202}}},
    SavedRow{"Circadian", {9}, {{"Selected", 11}}},
    SavedRow{"FullRed", {106}, {{"Selected", 12}, {"Filter", 106}}},
    SavedRow{"Severity", std::vector<int>(13, wheelDown), {{"ScrollPc", 35}}},
    SavedRow{"NoSeverity", std::vector<int>(20, wheelDown), {{"ScrollPc", 0}}},
    SavedRow{"Algorithm", {303}, {{"Option", 3}}, "-s"},
    SavedRow{"Daltonize", {776}, {{"Daltonize", 1}}},
    SavedRow{"Inversion", {777}, {{"Inversion", 1}}},
    SavedRow{"View", {702}, {{"View", 702}}},
    SavedRow{"HiddenColourSpace", {705}, {{"ColorSpace", 0}}},
    SavedRow{"TransformOff", {5, tab}, {{"Selected", 5}}},
};

class Saved : public UndrawnTest, public testing::WithParamInterface<SavedRow> {};

TEST_P(Saved, ValuesAreThoseOfTheirRow) {
  start(GetParam().arguments);
  for (const int command : GetParam().commands) {
    if (command == wheelDown) {
      turnWheel(false);
    } else if (command == tab) {
      press(VK_TAB);
    } else {
      choose(command);
    }
  }
  end();
  EXPECT_EQ(storedValues(), defaultsWith(GetParam().changed));
}

INSTANTIATE_TEST_SUITE_P(By, Saved, testing::ValuesIn(savedRows),
                         [](const auto& row) { return std::string(row.param.name); });

struct LoadedRow {
  const char* name;
  StoredValues stored;
  const char* title;
  ColourEffect effect;
};

void PrintTo(const LoadedRow& row, std::ostream* out) {
  *out << row.name;
}

const std::array loadedRows{
    LoadedRow{"Nothing", {}, " Simulation - Protanope 100% severity", effectOf(juddProtan(1))},
    LoadedRow{"OnlySeverity",
              {{"ScrollPc", 35}},
              " Simulation - Protanomalous 35% severity",
              effectOf(juddProtan(0.35))},
    LoadedRow{"Normal", {{"Selected", 0}}, "Normal  100% severity", effectOf(juddProtan(0.2))},
    LoadedRow{"Deutan",
              {{"Selected", 2}},
              " Simulation - Deuteranope 100% severity",
              effectOf(juddDeutan(1))},
    LoadedRow{"Tritan",
              {{"Selected", 3}},
              " Simulation - Tritanope 100% severity",
              effectOf(juddTritan(1))},
    LoadedRow{"Greyscale", {{"Selected", 4}}, "Greyscale", greyscale()},
    LoadedRow{"Invert", {{"Selected", 5}}, "Invert ", inverted()},
    LoadedRow{"Brightness", {{"Selected", 6}}, "Brightness +0%", identityEffect},
    LoadedRow{"Contrast", {{"Selected", 7}}, "Contrast 100%", identityEffect},
    LoadedRow{"Saturation", {{"Selected", 8}}, "Saturation 100%", identityEffect},
    LoadedRow{
        "Filter", {{"Selected", 9}, {"Filter", 105}}, "100% Cyan Filter", filtered({0, 1, 1}, 1)},
    LoadedRow{"FilterWithoutItsColour", {{"Selected", 9}}, "100% None Filter", identityEffect},
    LoadedRow{
        "Swap", {{"Selected", 10}, {"Swap", 201}}, "Swap 100% Red and Green", swapped(0, 1, 1)},
    LoadedRow{"SwapBelow",
              {{"Selected", 10}, {"Swap", 150}, {"ScrollPc", 50}},
              "Swap 50% Red and Blue",
              swapped(0, 2, 0.5)},
    LoadedRow{"SwapAbove",
              {{"Selected", 10}, {"Swap", 999}, {"ScrollPc", 50}},
              "Swap Red and Blue",
              swapped(0, 2, 1)},
    LoadedRow{
        "Circadian", {{"Selected", 11}}, "Circadian Light Block, Brightness 100%", circadian(1)},
    LoadedRow{"FullRed", {{"Selected", 12}, {"Filter", 106}}, "Red Filter", filtered({1, 0, 0}, 1)},
    LoadedRow{"FullRedOverridden",
              {{"Selected", 12}, {"Filter", 102}},
              "Red Filter",
              filtered({0, 0, 1}, 1)},
    LoadedRow{"PastTheTable",
              {{"Selected", 13}},
              " Simulation - Deuteranope 100% severity",
              effectOf(juddDeutan(1))},
    LoadedRow{"SeverityAbove",
              {{"ScrollPc", 250}},
              " Simulation - Protanope 100% severity",
              effectOf(juddProtan(1))},
    LoadedRow{"SeverityBelow",
              {{"ScrollPc", static_cast<DWORD>(-5)}},
              " Simulation - Protanomalous 0% severity",
              identityEffect},
    LoadedRow{"Algorithm",
              {{"Option", 2}},
              " Simulation - Protanope 100% severity",
              effectOf(machadoProtan())},
    LoadedRow{"Daltonize",
              {{"Daltonize", 1}, {"ScrollPc", 50}},
              " Daltonize - Protanomalous 50% severity",
              effectOf(daltonized(juddProtan(0.5)))},
    LoadedRow{"Inversion",
              {{"Inversion", 7}, {"ScrollPc", 50}},
              " Inverse Transform - Protanomalous 50% severity",
              effectOf(inverse(juddProtan(0.5)))},
    LoadedRow{"BothFlags",
              {{"Inversion", 1}, {"Daltonize", 1}, {"ScrollPc", 50}},
              " Inverse Transform - Protanomalous 50% severity",
              effectOf(daltonized(juddProtan(0.5)))},
};

class Loaded : public UndrawnTest, public testing::WithParamInterface<LoadedRow> {};

TEST_P(Loaded, ValuesTakeEffect) {
  storeValues({{"View", 705}});  // creates the registry key
  if (GetParam().stored.empty()) removeStoredValues();
  storeValues(GetParam().stored);
  start();
  EXPECT_EQ(title(), GetParam().title);
  EXPECT_TRUE(areEqual(lastCall(MagnifierCall::SetColorEffect).values, GetParam().effect));
}

INSTANTIATE_TEST_SUITE_P(By, Loaded, testing::ValuesIn(loadedRows),
                         [](const auto& row) { return std::string(row.param.name); });

using Settings = UndrawnTest;

TEST_F(Settings, SurviveIntoTheNextStart) {
  start("-s");
  choose(2);
  choose(302);
  choose(776);
  choose(703);
  turnWheel(false, 8);
  const std::string before = title();
  const ColourEffect effect = lastCall(MagnifierCall::SetColorEffect).values;
  end();
  start("-s");
  EXPECT_EQ(title(), before);
  EXPECT_EQ(title(), " Daltonize - Deuteranomalous 60% severity");
  EXPECT_TRUE(areEqual(lastCall(MagnifierCall::SetColorEffect).values, effect));
  EXPECT_EQ(titleOf(windows().colourSpace), "RGB Cube");
}

void storeAs(DWORD type, const char* name, const void* value, DWORD size) {
  RegSetKeyValueA(HKEY_CURRENT_USER, "Software\\Tintora", name, type, value, size);
}

TEST_F(Settings, AreReadWhateverTypeTheirFourBytesHave) {
  const DWORD severity = 35;
  storeValues({{"Selected", 2}});
  storeAs(REG_BINARY, "ScrollPc", &severity, sizeof severity);
  start();
  EXPECT_EQ(title(), " Simulation - Deuteranomalous 35% severity");
}

TEST_F(Settings, ThatTakeMoreThanFourBytesAreNotRead) {
  storeValues({{"Selected", 2}});
  storeAs(REG_SZ, "ScrollPc", "thirty-five", 12);
  storeAs(REG_QWORD, "Inversion", "\1\1\1\1\1\1\1\1", 8);
  start();
  EXPECT_EQ(title(), " Simulation - Deuteranope 100% severity");
}

TEST_F(Settings, KeepAViewThatThereIsNot) {
  storeValues({{"View", invalidView}});
  start();
  end();
  EXPECT_EQ(storedValues()["View"], invalidView);
}

TEST_F(Settings, CountBuiltInModesFromTheCustomTransforms) {
  std::ofstream(customFile(), std::ios::binary) << "One\n1 0 0 0\n0 1 0 0\n0 0 1 0\n"
                                                << "Two\n1 0 0 0\n0 1 0 0\n0 0 1 0\n";
  storeValues({{"Selected", 1}});
  start();
  EXPECT_EQ(title(), "Two");
  end();
  EXPECT_EQ(storedValues()["Selected"], 1U);
  storeValues({{"Selected", 2 + 5}});
  start();
  EXPECT_EQ(title(), "Invert ");
  end();
  EXPECT_EQ(storedValues()["Selected"], 7U);
}

}  // namespace
}  // namespace tintora::windows_test
