// Tests applying custom transforms.
#include "engine/custom_transforms.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "display_recorder.h"
#include "engine/colour_effects.h"
#include "matrix_expectations.h"

namespace tintora {
namespace {

using CustomTransforms = EngineTest;

CustomTransform entryNamed(const char* name, bool adjustable) {
  // Exact in binary, so that every blend at an exact strength is exact too.
  return {name, adjustable, {{{0.5F, -2, 3, 4}, {5, -6.25F, 7, 8}, {9, 10, 11, -12}}}};
}

constexpr std::array<std::array<double, 4>, 3> entryRows{
    {{0.5, -2, 3, 4}, {5, -6.25, 7, 8}, {9, 10, 11, -12}}};

void chooseCustom(std::int32_t index) {
  transformSettings.Selected = TransformMode::Custom;
  transformSettings.customIndex = index;
}

std::vector<std::string> callsOf(std::uint32_t index) {
  displayRecord.calls.clear();
  applyCustomTransform(index);
  return displayRecord.calls;
}

TEST_F(CustomTransforms, ThereAreNoneAtStart) {
  EXPECT_TRUE(recordsAtStart().custom.empty());
}

TEST_F(CustomTransforms, WithoutEntriesNothingHappensAtAll) {
  storeColourEffect({{2, 3, 4, 5, 6, 7, 8, 9, 10}, {11, 12, 13}});
  const EffectMatrix before = effectMatrix;
  for (const bool off : {true, false}) {
    transformSettings.transformOff = off;
    transformSettings.customIndex = 7;
    EXPECT_TRUE(callsOf(7).empty());
    EXPECT_EQ(transformSettings.customIndex, 7);
    EXPECT_EQ(transformSettings.transformOff, off);
    EXPECT_EQ(effectMatrix, before);
  }
}

TEST_F(CustomTransforms, WithoutEntriesAnApplicationOnlySetsTheMarks) {
  chooseCustom(0);
  transformSettings.transformOff = true;
  const std::vector<std::string> calls = callsOfApplication();
  ASSERT_EQ(calls.size(), 17U);
  EXPECT_EQ(calls[15], "alternative 1 on");
  EXPECT_EQ(calls[16], "main 12 on");
  EXPECT_TRUE(transformSettings.transformOff);
}

TEST_F(CustomTransforms, AnApplicationAppliesTheEntryOfTheSettingsAfterTheMarks) {
  customTransforms = {entryNamed("zero", false), entryNamed("one", false)};
  customTransforms[1].rows[0][0] = 0.25F;
  chooseCustom(1);
  const std::vector<std::string> calls = callsOfApplication();
  ASSERT_EQ(calls.size(), 19U);
  EXPECT_EQ(calls[0], "main 1 off");
  EXPECT_EQ(calls[15], "alternative 1 on");
  EXPECT_EQ(calls[16], "main 12 on");
  EXPECT_EQ(calls[17], "title one");
  EXPECT_EQ(calls[18], "matrix");
  EXPECT_EQ(displayRecord.matrix[0][0], 0.25F);
  EXPECT_EQ(transformSettings.customIndex, 1);
}

TEST_F(CustomTransforms, AFixedEntryIsTitledOnceAndShownAsInTheFileAtAnySeverity) {
  customTransforms = {entryNamed("fixed", false)};
  for (const double severity : {0.0, 0.6, 1.0}) {
    SCOPED_TRACE(severity);
    transformSettings.severity = severity;
    transformSettings.transformOff = true;
    const std::vector<std::string> expected{"title fixed", "matrix"};
    EXPECT_EQ(callsOf(0), expected);
    expectSameEffect(displayRecord.matrix, effectOfRows(entryRows));
    EXPECT_FALSE(transformSettings.transformOff);
  }
}

TEST_F(CustomTransforms, AnAdjustableEntryIsTitledTwiceTheSecondTimeWithItsStrength) {
  customTransforms = {entryNamed("Deutan correction", true)};
  transformSettings.severity = 0.6;
  transformSettings.transformOff = true;
  const std::vector<std::string> expected{"title Deutan correction", "matrix",
                                          "title Deutan correction   60% (mouse-wheel adjusts %)"};
  EXPECT_EQ(callsOf(0), expected);
  EXPECT_FALSE(transformSettings.transformOff);
}

TEST_F(CustomTransforms, AnAdjustableEntrysTitleCarriesEveryPercentage) {
  customTransforms = {entryNamed("own", true)};
  for (int percent = 0; percent <= 100; ++percent) {
    transformSettings.severity = percent / 100.0;
    applyCustomTransform(0);
    EXPECT_EQ(displayRecord.title,
              "own   " + std::to_string(percent) + "% (mouse-wheel adjusts %)");
  }
}

TEST_F(CustomTransforms, AnAdjustableEntryIsBlendedWithTheIdentity) {
  customTransforms = {entryNamed("own", true)};
  for (int percent = 0; percent <= 100; percent += 5) {
    SCOPED_TRACE(percent);
    const double k = percent / 100.0;
    transformSettings.severity = k;
    applyCustomTransform(0);
    std::array<std::array<double, 4>, 3> rows{};
    for (std::size_t row = 0; row < 3; ++row) {
      for (std::size_t column = 0; column < 4; ++column) {
        rows[row][column] = entryRows[row][column] * k + (row == column ? 1.0 - k : 0.0);
      }
    }
    expectNearlySameEffect(displayRecord.matrix, effectOfRows(rows));
  }
}

TEST_F(CustomTransforms, AnAdjustableEntryAtHalfAndFullStrengthIsExact) {
  customTransforms = {entryNamed("own", true)};
  transformSettings.severity = 0.5;
  applyCustomTransform(0);
  expectSameEffect(displayRecord.matrix,
                   effectOfRows({{{0.75, -1, 1.5, 2}, {2.5, -2.625, 3.5, 4}, {4.5, 5, 6, -6}}}));
  transformSettings.severity = 1.0;
  applyCustomTransform(0);
  expectSameEffect(displayRecord.matrix, effectOfRows(entryRows));
}

// identity + (value - identity) * strength loses a value that is tiny beside 1. Other forms of the
// same blend would keep it.
TEST_F(CustomTransforms, AnEntryIsBlendedByTheChangeItMakesToTheIdentity) {
  constexpr double full = 1.0;
  constexpr float tiny = 1e-30F;
  customTransforms = {entryNamed("own", true)};
  for (std::size_t row = 0; row < 3; ++row) customTransforms[0].rows[row].fill(tiny);
  transformSettings.severity = full;
  applyCustomTransform(0);
  for (std::size_t output = 0; output < 3; ++output) {
    for (std::size_t input = 0; input < 3; ++input) {
      EXPECT_EQ(displayRecord.matrix[input][output], input == output ? 0.0F : tiny);
    }
    EXPECT_EQ(displayRecord.matrix[4][output], tiny);
  }
}

TEST_F(CustomTransforms, AnAdjustableEntryAtZeroIsTheIdentityWhateverTheFileSays) {
  CustomTransform wild = entryNamed("wild", true);
  wild.rows[0] = {std::numeric_limits<float>::infinity(), -std::numeric_limits<float>::infinity(),
                  std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity()};
  customTransforms = {entryNamed("own", true), wild};
  transformSettings.severity = 0.0;
  for (const std::uint32_t index : {0U, 1U}) {
    SCOPED_TRACE(index);
    effectMatrix[0] = {9.0F, 9.0F, 9.0F, 0.0F, 0.0F};
    effectMatrix[4] = {9.0F, 9.0F, 9.0F, 0.0F, 1.0F};
    applyCustomTransform(index);
    expectSameEffect(displayRecord.matrix, identityEffectMatrix);
  }
}

TEST_F(CustomTransforms, AnIndexBeyondTheEntriesFallsBackToTheFirst) {
  customTransforms = {entryNamed("zero", false), entryNamed("one", false)};
  for (const std::int32_t index : {2, 3, 100, 0x7FFFFFFF, -1}) {
    SCOPED_TRACE(index);
    chooseCustom(index);
    applyTransform();
    EXPECT_EQ(displayRecord.title, "zero");
    EXPECT_EQ(transformSettings.customIndex, 0);
  }
}

TEST_F(CustomTransforms, ApplyingAnEntryChoosesItButNotTheMode) {
  customTransforms = {entryNamed("zero", false), entryNamed("one", false),
                      entryNamed("two", false)};
  transformSettings.Selected = TransformMode::Tritan;
  for (const std::uint32_t index : {1U, 2U, 0U, 3U}) {
    SCOPED_TRACE(index);
    applyCustomTransform(index);
    EXPECT_EQ(transformSettings.customIndex, index == 3 ? 0 : static_cast<std::int32_t>(index));
    EXPECT_EQ(displayRecord.title, customTransforms[index == 3 ? 0 : index].name);
  }
  EXPECT_EQ(transformSettings.Selected, TransformMode::Tritan);
}

TEST_F(CustomTransforms, LeaveTheModelAndTheViewsAlone) {
  customTransforms = {entryNamed("own", true)};
  chooseCustom(0);
  const ModelContext before = modelContext;
  for (const std::string& call : callsOfApplication()) EXPECT_EQ(call.find("refresh"), call.npos);
  EXPECT_EQ(modelContext.simulationMatrix, before.simulationMatrix);
  EXPECT_EQ(modelContext.modelCvdType, before.modelCvdType);
  EXPECT_EQ(modelContext.modelSeverity, before.modelSeverity);
}

}  // namespace
}  // namespace tintora
