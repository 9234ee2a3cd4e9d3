#include "shell/settings_store.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "colour_space/colour_space_view.h"
#include "program_run.h"
#include "shell/shell_state.h"

namespace tintora {
namespace {

using platform::nullDesktop;
using Mode = TransformMode;
using Settings = TransformSettings;
using SelectionEncoding = ShellTest;
using LoadedSettings = ShellTest;
using SavedSettings = ShellTest;

const std::vector<std::string> namesInOrder{"Selected",  "ScrollPc",   "Filter",
                                            "Swap",      "Option",     "Inversion",
                                            "Daltonize", "ColorSpace", "View"};

// The built-in modes by their stored values, counted from the number of custom transforms.
struct ModeRow {
  Mode mode;
  std::uint32_t place;
};
const std::vector<ModeRow> modeRows{
    {Mode::Normal, 0},       {Mode::Protan, 1},      {Mode::Deutan, 2},
    {Mode::Tritan, 3},       {Mode::Greyscale, 4},   {Mode::Invert, 5},
    {Mode::Brightness, 6},   {Mode::Contrast, 7},    {Mode::Saturation, 8},
    {Mode::ColourFilter, 9}, {Mode::ColourSwap, 10}, {Mode::CircadianLightBlock, 11},
    {Mode::RedFilter, 12},
};

const std::vector<std::uint32_t> customCounts{0, 1, 3, 120};

TEST_F(SelectionEncoding, CountsBuiltInModesFromTheCustomTransforms) {
  for (const std::uint32_t count : customCounts) {
    for (const ModeRow& row : modeRows) {
      SCOPED_TRACE(static_cast<int>(row.mode));
      Settings settings;
      settings.Selected = row.mode;
      settings.customIndex = 2;
      EXPECT_EQ(encodeSelection(settings, count), count + row.place);
    }
    Settings settings;
    settings.Selected = Mode::Custom;
    for (std::uint32_t index = 0; index < count; ++index) {
      settings.customIndex = static_cast<std::int32_t>(index);
      EXPECT_EQ(encodeSelection(settings, count), index);
    }
  }
}

TEST_F(SelectionEncoding, IsReversedByDecoding) {
  for (const std::uint32_t count : customCounts) {
    for (const ModeRow& row : modeRows) {
      SCOPED_TRACE(static_cast<int>(row.mode));
      Settings settings;
      settings.customIndex = 2;
      decodeSelection(settings, count + row.place, count);
      EXPECT_EQ(settings.Selected, row.mode);
      EXPECT_EQ(settings.customIndex, 0);
    }
    for (std::uint32_t index = 0; index < count; ++index) {
      Settings settings;
      decodeSelection(settings, index, count);
      EXPECT_EQ(settings.Selected, Mode::Custom);
      EXPECT_EQ(settings.customIndex, static_cast<std::int32_t>(index));
    }
  }
}

TEST_F(SelectionEncoding, OfTheFullRedFilterSetsItsColourButNoName) {
  Settings settings;
  settings.filterRed = 0.0;
  settings.filterName = "Cyan";
  decodeSelection(settings, 15, 3);
  EXPECT_EQ(settings.Selected, Mode::RedFilter);
  EXPECT_EQ(settings.filterRed, 1.0);
  EXPECT_EQ(settings.filterGreen, 0.0);
  EXPECT_EQ(settings.filterBlue, 0.0);
  EXPECT_EQ(settings.filterName, "Cyan");
  EXPECT_EQ(settings.Filter, 100);
}

TEST_F(SelectionEncoding, LeavesTheModeForAValuePastTheTable) {
  for (const std::uint32_t count : {0U, 3U}) {
    for (const std::uint32_t stored :
         {count + 13, count + 14, 1000U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFEU, 0xFFFFFFFFU}) {
      SCOPED_TRACE(stored);
      Settings settings;
      settings.customIndex = 2;
      decodeSelection(settings, stored, count);
      EXPECT_EQ(settings.Selected, Mode::Deutan);
      EXPECT_EQ(settings.customIndex, 0);
    }
  }
}

// What a run has after start-up with these stored values.
void expectLoaded(const Store& store, const std::function<void(Settings&)>& change) {
  forgetEverything();
  Settings expected;
  expected.Selected = Mode::Protan;
  change(expected);
  nullDesktop().store = store;
  play([&expected]() -> Script {
    EXPECT_EQ(describe(transformSettings), describe(expected));
    co_return;
  });
}

TEST_F(LoadedSettings, AreTheDefaultsOnAFirstRun) {
  expectLoaded({}, [](Settings&) {});
  forgetEverything();
  nullDesktop().store.reset();
  play([]() -> Script {
    EXPECT_EQ(transformSettings.Selected, Mode::Protan);
    EXPECT_EQ(transformSettings.customIndex, 0);
    EXPECT_EQ(transformSettings.severity, 1.0);
    EXPECT_EQ(transformSettings.Filter, 100);
    EXPECT_EQ(transformSettings.filterName, "None");
    EXPECT_EQ(transformSettings.Swap, ColourSwap::RedBlue);
    EXPECT_EQ(transformSettings.Option, SimulationAlgorithm::Judd1948);
    EXPECT_FALSE(transformSettings.Inversion);
    EXPECT_FALSE(transformSettings.Daltonize);
    EXPECT_TRUE(shellState.colourSpaceVisible);
    EXPECT_EQ(shellState.view, ViewCode::Help);
    EXPECT_EQ(title(), " Simulation - Protanope 100% severity");
    co_return;
  });
}

TEST_F(LoadedSettings, BuiltInDefaultModeIsNotTheOneOfAnEmptyStore) {
  EXPECT_EQ(transformSettings.Selected, Mode::Deutan);
  nullDesktop().store = Store{};
  playNothing();
  EXPECT_EQ(transformSettings.Selected, Mode::Protan);
}

TEST_F(LoadedSettings, TakeSeverityAsAPercentage) {
  struct Row {
    std::uint32_t stored;
    double severity;
  };
  const std::vector<Row> rows{{0, 0.0},
                              {1, 0.01},
                              {35, 0.35},
                              {99, 0.99},
                              {100, 1.0},
                              {101, 1.0},
                              {250, 1.0},
                              {0x7FFFFFFF, 1.0},
                              // -5, -1 and the least of all
                              {0xFFFFFFFB, 0.0},
                              {0xFFFFFFFF, 0.0},
                              {0x80000000, 0.0}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.stored);
    expectLoaded({{"ScrollPc", row.stored}}, [&](Settings& s) { s.severity = row.severity; });
  }
}

struct FilterColour {
  std::uint32_t stored;
  const char* name;
  double red, green, blue;
};
const std::vector<FilterColour> filterColours{
    {100, "Red", 1, 0, 0},    {101, "Green", 0, 1, 0},   {102, "Blue", 0, 0, 1},
    {103, "Yellow", 1, 1, 0}, {104, "Magenta", 1, 0, 1}, {105, "Cyan", 0, 1, 1},
};

void setFilter(Settings& settings, const FilterColour& filter) {
  settings.Filter = static_cast<std::int32_t>(filter.stored);
  settings.filterName = filter.name;
  settings.filterRed = filter.red;
  settings.filterGreen = filter.green;
  settings.filterBlue = filter.blue;
}

TEST_F(LoadedSettings, SetTheColourOfTheFilter) {
  for (const FilterColour& filter : filterColours) {
    SCOPED_TRACE(filter.name);
    expectLoaded({{"Filter", filter.stored}}, [&](Settings& s) { setFilter(s, filter); });
  }
  for (const std::uint32_t other : {0U, 99U, 106U, 107U, 199U, 5000U, 0xFFFFFFFFU}) {
    SCOPED_TRACE(other);
    expectLoaded({{"Filter", other}},
                 [&](Settings& s) { s.Filter = static_cast<std::int32_t>(other); });
  }
}

// The filter is read after the selection, so its colour wins over the red of the selection.
TEST_F(LoadedSettings, PreferTheStoredFilterToTheRedOfTheFullRedFilter) {
  for (const FilterColour& filter : filterColours) {
    SCOPED_TRACE(filter.name);
    expectLoaded({{"Selected", 12}, {"Filter", filter.stored}}, [&](Settings& s) {
      s.Selected = Mode::RedFilter;
      setFilter(s, filter);
    });
  }
  expectLoaded({{"Selected", 12}, {"Filter", 106}}, [](Settings& s) {
    s.Selected = Mode::RedFilter;
    s.Filter = 106;
    s.filterGreen = 0.0;
    s.filterBlue = 0.0;
  });
}

TEST_F(LoadedSettings, KeepTheSwapWithinItsRange) {
  struct Row {
    std::uint32_t stored;
    int swap;
  };
  const std::vector<Row> rows{{0, 200},
                              {150, 200},
                              {199, 200},
                              {200, 200},
                              {201, 201},
                              {202, 202},
                              {203, 203},
                              {204, 203},
                              {999, 203},
                              {0x7FFFFFFF, 203},
                              // Negative ones.
                              {0xFFFFFFFF, 200},
                              {0xFFFFFF38, 200},
                              {0x80000000, 200}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.stored);
    expectLoaded({{"Swap", row.stored}}, [&](Settings& s) { s.Swap = ColourSwap{row.swap}; });
  }
}

TEST_F(LoadedSettings, TakeOptionAndViewAsTheyAre) {
  for (const std::uint32_t stored : {0U, 1U, 4U, 5U, 77U, 0xFFFFFFFFU}) {
    SCOPED_TRACE(stored);
    expectLoaded({{"Option", stored}},
                 [&](Settings& s) { s.Option = SimulationAlgorithm{stored}; });
    EXPECT_EQ(nullDesktop().store->at("Option"), stored);
  }
  for (const std::uint32_t stored : {702U, 703U, 704U, 705U, 0U, 706U, 0xFFFFFFFFU}) {
    SCOPED_TRACE(stored);
    expectLoaded({{"View", stored}}, [](Settings&) {});
    EXPECT_EQ(static_cast<std::uint32_t>(shellState.view), stored);
    EXPECT_EQ(nullDesktop().store->at("View"), stored);
  }
}

TEST_F(LoadedSettings, TreatEverythingButZeroAsTrue) {
  for (const std::uint32_t stored : {0U, 1U, 2U, 0x80000000U, 0xFFFFFFFFU}) {
    SCOPED_TRACE(stored);
    const bool expected = stored != 0;
    expectLoaded({{"Inversion", stored}}, [&](Settings& s) { s.Inversion = expected; });
    expectLoaded({{"Daltonize", stored}}, [&](Settings& s) { s.Daltonize = expected; });
    expectLoaded({{"ColorSpace", stored}}, [](Settings&) {});
    EXPECT_EQ(shellState.colourSpaceVisible, expected);
    // Saved as 0 or 1.
    EXPECT_EQ(nullDesktop().store->at("ColorSpace"), expected ? 1U : 0U);
  }
}

// A missing value keeps its default; the others are read.
TEST_F(LoadedSettings, KeepTheDefaultOfAMissingValue) {
  const Store whole{{"Selected", 10}, {"ScrollPc", 40},  {"Filter", 104},
                    {"Swap", 202},    {"Option", 2},     {"Inversion", 1},
                    {"Daltonize", 1}, {"ColorSpace", 0}, {"View", 704}};
  for (const std::string& missing : namesInOrder) {
    SCOPED_TRACE(missing);
    Store store = whole;
    store.erase(missing);
    const auto has = [&missing](const char* name) { return missing != name; };
    expectLoaded(store, [&](Settings& s) {
      s.Selected = has("Selected") ? Mode::ColourSwap : Mode::Protan;
      s.severity = has("ScrollPc") ? 0.4 : 1.0;
      if (has("Filter")) setFilter(s, filterColours[4]);
      s.Swap = has("Swap") ? ColourSwap::GreenBlue : ColourSwap::RedBlue;
      s.Option = has("Option") ? SimulationAlgorithm::Machado2009 : SimulationAlgorithm::Judd1948;
      s.Inversion = has("Inversion");
      s.Daltonize = has("Daltonize");
    });
    EXPECT_EQ(shellState.colourSpaceVisible, !has("ColorSpace"));
    EXPECT_EQ(static_cast<int>(shellState.view), has("View") ? 704 : 705);
  }
}

TEST_F(LoadedSettings, AreReadInOrder) {
  nullDesktop().store = Store{};
  playNothing();
  EXPECT_EQ(nullDesktop().readNames, namesInOrder);
}

TEST_F(SavedSettings, AreWrittenInOrder) {
  playNothing();
  EXPECT_EQ(nullDesktop().writtenNames, namesInOrder);
  EXPECT_EQ(nullDesktop().store->size(), namesInOrder.size());
}

TEST_F(SavedSettings, HoldWholePercents) {
  struct Row {
    double severity;
    std::uint32_t stored;
  };
  const std::vector<Row> rows{{0.0, 0},    {0.05, 5},    {0.29, 29},     {0.35, 35}, {0.57, 57},
                              {0.999, 99}, {0.9999, 99}, {0.99999, 100}, {1.0, 100}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.severity);
    forgetEverything();
    play([&row]() -> Script {
      transformSettings.severity = row.severity;
      co_return;
    });
    EXPECT_EQ(nullDesktop().store->at("ScrollPc"), row.stored);
  }
  // Every stop of the wheel is kept, though seven steps of 0.05 are a hair less than 0.35.
  forgetEverything();
  play([]() -> Script {
    for (int turn = 0; turn < 13; ++turn) co_yield wheel(false);
  });
  EXPECT_EQ(nullDesktop().store->at("ScrollPc"), 35U);
}

}  // namespace
}  // namespace tintora
