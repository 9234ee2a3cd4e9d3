#include "engine/apply_transform.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "display_recorder.h"
#include "engine/colour_effects.h"
#include "engine/effect_matrix.h"
#include "matrix_expectations.h"

namespace tintora {
namespace {

using Mode = TransformMode;
using Algorithm = SimulationAlgorithm;
using ApplyTransform = EngineTest;
using MenuMarks = EngineTest;
using TransformOff = EngineTest;

const std::vector<std::string> clearedMarks{
    "main 1 off",        "main 2 off",        "main 3 off",        "main 5 off",
    "main 6 off",        "main 7 off",        "main 9 off",        "main 12 off",
    "alternative 0 off", "alternative 1 off", "alternative 2 off", "alternative 3 off",
    "alternative 4 off", "alternative 5 off", "alternative 6 off",
};

// Returns the calls of an application: it clears all marks, then makes these calls.
std::vector<std::string> afterClearing(const std::vector<std::string>& calls) {
  std::vector<std::string> all = clearedMarks;
  all.insert(all.end(), calls.begin(), calls.end());
  return all;
}

bool contains(const std::vector<std::string>& calls, const std::string& call) {
  return std::ranges::find(calls, call) != calls.end();
}

TEST_F(ApplyTransform, IsTheIdentityAtStart) {
  expectSameEffect(
      recordsAtStart().effect,
      {{{1, 0, 0, 0, 0}, {0, 1, 0, 0, 0}, {0, 0, 1, 0, 0}, {0, 0, 0, 1, 0}, {0, 0, 0, 0, 1}}});
  expectSameEffect(identityEffectMatrix, recordsAtStart().effect);
}

TEST_F(ApplyTransform, HoldsOutputChannelsInItsColumnsAndOffsetsInItsLastRow) {
  storeColourEffect({{11, 12, 13, 21, 22, 23, 31, 32, 33}, {41, 42, 43}});
  expectSameEffect(effectMatrix, {{{11, 21, 31, 0, 0},
                                   {12, 22, 32, 0, 0},
                                   {13, 23, 33, 0, 0},
                                   {0, 0, 0, 1, 0},
                                   {41, 42, 43, 0, 1}}});
}

TEST_F(ApplyTransform, RoundsDoublesToFloats) {
  storeColourEffect({{0.1, 0, 0, 0, 1, 0, 0, 0, 1}, {0, 0.7, 0}});
  EXPECT_EQ(effectMatrix[0][0], 0.1F);
  EXPECT_EQ(effectMatrix[4][1], 0.7F);
}

TEST_F(ApplyTransform, TakesTheModelsMatrixTransposed) {
  transformSettings.Selected = Mode::Tritan;
  applyTransform();
  // Judd 1948 at full severity.
  const EffectMatrix tritan{{{1.0F - 0.216F, -0.0271F, 0.1693F, 0, 0},
                             {0.1054F, 1.0F - 0.1398F, 0.6768F, 0, 0},
                             {0.1106F, 0.1669F, 1.0F - 0.8461F, 0, 0},
                             {0, 0, 0, 1, 0},
                             {0, 0, 0, 0, 1}}};
  expectNearlySameEffect(effectMatrix, tritan);
  expectSameEffect(displayRecord.matrix, effectMatrix);
}

// Expects the identity in all entries but the nine of colour and the three offsets.
void expectUntouched(float mark) {
  for (std::size_t row = 0; row < 5; ++row) {
    for (std::size_t column = row == 3 ? 0 : 3; column < 5; ++column) {
      EXPECT_EQ(effectMatrix[row][column], mark) << "[" << row << "][" << column << "]";
    }
  }
}

TEST_F(ApplyTransform, ReceivesNineEntriesAndThreeOffsetsFromEveryModeAndNothingElse) {
  // A value that no mode writes.
  constexpr float mark = 77.0F;
  customTransforms.push_back({"own", true, {}});
  for (std::int32_t mode = 0; mode <= 14; ++mode) {
    SCOPED_TRACE(mode);
    for (auto& row : effectMatrix) row.fill(mark);
    transformSettings.Selected = static_cast<Mode>(mode);
    applyTransform();
    expectUntouched(mark);
    for (const std::size_t row : {0U, 1U, 2U, 4U}) {
      for (std::size_t column = 0; column < 3; ++column) {
        EXPECT_NE(effectMatrix[row][column], mark) << "[" << row << "][" << column << "]";
      }
    }
  }
  for (auto& row : effectMatrix) row.fill(mark);
  transformOffApply();
  expectUntouched(mark);
}

TEST_F(ApplyTransform, KeepsItsAlphaRowAndColumnThroughAnySequenceOfApplications) {
  std::mt19937 engine(5);
  const auto pick = [&engine](std::int32_t low, std::int32_t high) {
    return std::uniform_int_distribution<std::int32_t>(low, high)(engine);
  };
  customTransforms = {{"own", true, {}}, {"fixed", false, {}}};
  customTransforms[1].rows = {{{0.5F, 2, 3, 4}, {5, 6, 7, 8}, {9, 10, 11, 12}}};
  for (int round = 0; round < 600; ++round) {
    TransformSettings& settings = transformSettings;
    settings.Selected = static_cast<Mode>(pick(0, 15));
    settings.severity = pick(0, 20) / 20.0;
    settings.Daltonize = pick(0, 1) == 1;
    settings.Inversion = pick(0, 1) == 1;
    settings.Option = static_cast<Algorithm>(pick(0, 5));
    settings.Swap = static_cast<ColourSwap>(pick(199, 204));
    settings.brightness = pick(-100, 100) / 100.0;
    settings.contrast = pick(0, 100) / 100.0;
    settings.saturation = pick(0, 100) / 100.0;
    settings.filterGreen = pick(0, 1);
    settings.customIndex = pick(-1, 3);
    if (pick(0, 9) == 0) {
      transformOffApply();
    } else {
      applyTransform();
    }
    SCOPED_TRACE("round " + std::to_string(round));
    for (std::size_t i = 0; i < 5; ++i) {
      ASSERT_EQ(effectMatrix[i][3], i == 3 ? 1.0F : 0.0F);
      ASSERT_EQ(effectMatrix[3][i], i == 3 ? 1.0F : 0.0F);
      ASSERT_EQ(effectMatrix[i][4], i == 4 ? 1.0F : 0.0F);
    }
  }
}

TEST_F(ApplyTransform, DropsTheOffsetsOfTheModeBefore) {
  transformSettings.Selected = Mode::Invert;
  applyTransform();
  EXPECT_EQ(effectMatrix[4][0], 1.0F);
  transformSettings.Selected = Mode::Deutan;
  applyTransform();
  for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(effectMatrix[4][i], 0.0F) << i;
}

TEST_F(MenuMarks, FollowTheAlgorithm) {
  struct Row {
    std::uint32_t option;
    int position;
  };
  transformSettings.Selected = Mode::Greyscale;
  for (const Row& row : {Row{0, 1}, Row{3, 2}, Row{4, 3}, Row{1, 4}, Row{2, 5}}) {
    SCOPED_TRACE(row.option);
    transformSettings.Option = static_cast<Algorithm>(row.option);
    EXPECT_EQ(callsOfApplication(),
              afterClearing({"alternative " + std::to_string(row.position) + " on", "main 12 on",
                             "title Greyscale", "matrix"}));
  }
}

TEST_F(MenuMarks, OptionThreeIsAtPositionTwo) {
  transformSettings.Option = Algorithm::Vienot1997Approximated;
  const std::vector<std::string> calls = callsOfApplication();
  EXPECT_TRUE(contains(calls, "alternative 2 on"));
  EXPECT_FALSE(contains(calls, "alternative 4 on"));
}

TEST_F(MenuMarks, LeaveAnUnknownAlgorithmUnmarked) {
  transformSettings.Selected = Mode::Greyscale;
  for (const std::uint32_t option : {5U, 6U, 300U, 0xFFFFFFFFU}) {
    SCOPED_TRACE(option);
    transformSettings.Option = static_cast<Algorithm>(option);
    EXPECT_EQ(callsOfApplication(), afterClearing({"main 12 on", "title Greyscale", "matrix"}));
  }
}

TEST_F(MenuMarks, FollowTheViewerOfEachType) {
  struct Row {
    bool daltonize, inversion;
    const char* viewer;
    const char* type;
    const char* title;
  };
  constexpr std::array<Row, 12> rows{{
      {false, false, "main 5 on", "main 1 on", "title  Simulation - Protanope 100% severity"},
      {true, false, "main 6 on", "main 1 on", "title  Daltonize - Protanope 100% severity"},
      {false, true, "main 7 on", "main 1 on", "title  Inverse Transform - Protanope 100% severity"},
      {true, true, "main 6 on", "main 1 on", "title  Inverse Transform - Protanope 100% severity"},
      {false, false, "main 5 on", "main 2 on", "title  Simulation - Deuteranope 100% severity"},
      {true, false, "main 6 on", "main 2 on", "title  Daltonize - Deuteranope 100% severity"},
      {false, true, "main 7 on", "main 2 on",
       "title  Inverse Transform - Deuteranope 100% severity"},
      {true, true, "main 6 on", "main 2 on",
       "title  Inverse Transform - Deuteranope 100% severity"},
      {false, false, "main 5 on", "main 3 on", "title  Simulation - Tritanope 100% severity"},
      {true, false, "main 6 on", "main 3 on", "title  Daltonize - Tritanope 100% severity"},
      {false, true, "main 7 on", "main 3 on", "title  Inverse Tranform - Tritanope 100% severity"},
      {true, true, "main 6 on", "main 3 on", "title  Inverse Tranform - Tritanope 100% severity"},
  }};
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const Row& row = rows.at(i);
    SCOPED_TRACE(std::string(row.viewer) + ", " + row.title);
    transformSettings.Selected = static_cast<Mode>(1 + i / 4);
    transformSettings.Daltonize = row.daltonize;
    transformSettings.Inversion = row.inversion;
    EXPECT_EQ(callsOfApplication(), afterClearing({"alternative 1 on", row.viewer, row.type,
                                                   row.title, "matrix", "refresh"}));
  }
}

TEST_F(MenuMarks, AreOtherColourEffectsOutsideTheDeficienciesWhateverTheViewer) {
  for (const bool flag : {false, true}) {
    transformSettings.Daltonize = flag;
    transformSettings.Inversion = flag;
    for (const std::int32_t mode : {-1, 0, 4, 5, 6, 7, 8, 9, 10, 12, 13, 14}) {
      SCOPED_TRACE(mode);
      transformSettings.Selected = static_cast<Mode>(mode);
      const std::vector<std::string> calls = callsOfApplication();
      ASSERT_GT(calls.size(), 16U);
      EXPECT_EQ(calls[15], "alternative 1 on");
      EXPECT_EQ(calls[16], "main 12 on");
      for (std::size_t i = 17; i < calls.size(); ++i) EXPECT_NE(calls[i].substr(0, 4), "main");
    }
  }
}

TEST_F(MenuMarks, SwapRedAndBlueHasAnItemOfItsOwnAndTheOtherSwapsHaveNot) {
  transformSettings.Selected = Mode::ColourSwap;
  struct Row {
    std::int32_t swap;
    const char* mark;
    const char* title;
  };
  for (const Row& row : {Row{200, "main 9 on", "title Swap 100% Red and Blue"},
                         Row{201, "main 12 on", "title Swap 100% Red and Green"},
                         Row{202, "main 12 on", "title Swap 100% Green and Blue"},
                         Row{203, "main 12 on", "title Swap Red and Blue"},
                         Row{204, "main 12 on", "title 100% severity"}}) {
    SCOPED_TRACE(row.swap);
    transformSettings.Swap = static_cast<ColourSwap>(row.swap);
    EXPECT_EQ(callsOfApplication(),
              afterClearing({"alternative 1 on", row.mark, row.title, "matrix"}));
  }
}

TEST_F(MenuMarks, NormalMarksNoType) {
  transformSettings.Selected = Mode::Normal;
  EXPECT_EQ(callsOfApplication(),
            afterClearing({"alternative 1 on", "main 12 on", "title Normal  100% severity",
                           "matrix", "refresh"}));
}

TEST_F(MenuMarks, DoNotMakeRoomForCustomTransforms) {
  customTransforms.resize(3);
  transformSettings.Selected = Mode::Tritan;
  EXPECT_EQ(callsOfApplication(),
            afterClearing({"alternative 1 on", "main 5 on", "main 3 on",
                           "title  Simulation - Tritanope 100% severity", "matrix", "refresh"}));
}

TEST_F(TransformOff, ShowsTheIdentityAndSaysSo) {
  transformSettings.Selected = Mode::Invert;
  applyTransform();
  displayRecord.calls.clear();
  transformOffApply();
  const std::vector<std::string> expected{
      "matrix", "title Transform off, press Tab to turn transform back on"};
  EXPECT_EQ(displayRecord.calls, expected);
  expectSameEffect(displayRecord.matrix, identityEffectMatrix);
  expectSameEffect(effectMatrix, identityEffectMatrix);
  EXPECT_TRUE(transformSettings.transformOff);
}

auto fieldsWithoutTransformOff(const TransformSettings& s) {
  return std::tuple(s.Selected, s.severity, s.Daltonize, s.Inversion, s.Option, s.filterRed,
                    s.filterGreen, s.filterBlue, s.filterName, s.Filter, s.Swap, s.brightness,
                    s.contrast, s.saturation, s.customIndex);
}

TEST_F(TransformOff, LeavesTheSettingsSoThatTheNextApplicationRestoresTheTransform) {
  for (std::int32_t mode = 0; mode <= 13; ++mode) {
    SCOPED_TRACE(mode);
    customTransforms = {{"own", true, {{{0.25F, 2, 3, 4}, {5, 6, 7, 8}, {9, 10, 11, 12}}}}};
    transformSettings = {};
    transformSettings.Selected = static_cast<Mode>(mode);
    transformSettings.severity = 0.6;
    transformSettings.Daltonize = true;
    transformSettings.brightness = -0.2;
    transformSettings.contrast = 0.4;
    transformSettings.saturation = 0.3;
    transformSettings.filterName = "Cyan";
    transformSettings.filterRed = 0.0;
    applyTransform();
    const EffectMatrix matrix = displayRecord.matrix;
    const std::string title = displayRecord.title;
    const auto settings = fieldsWithoutTransformOff(transformSettings);

    transformOffApply();
    EXPECT_EQ(fieldsWithoutTransformOff(transformSettings), settings);

    applyTransform();
    EXPECT_EQ(displayRecord.matrix, matrix);
    EXPECT_EQ(displayRecord.title, title);
    EXPECT_FALSE(transformSettings.transformOff);
  }
}

TEST_F(TransformOff, EndsBeforeTheViewsAreRefreshed) {
  transformOffApply();
  transformSettings.Selected = Mode::Protan;
  EXPECT_EQ(callsOfApplication().back(), "refresh");
}

TEST_F(ApplyTransform, WorksWithoutAProgramAroundTheEngine) {
  transformDisplay = recordsAtStart().display;
  transformSettings.Selected = Mode::Protan;
  applyTransform();
  EXPECT_FLOAT_EQ(effectMatrix[0][0], 0.12F);
  transformOffApply();
  expectSameEffect(effectMatrix, identityEffectMatrix);
}

}  // namespace
}  // namespace tintora
