// Tests every mode from the settings to the display: its formula, its fields and its calls.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string>
#include <vector>

#include "algorithms.h"
#include "display_recorder.h"
#include "engine/cvd_transforms.h"
#include "engine/effect_matrix.h"
#include "matrix_expectations.h"

namespace tintora {
namespace {

using Mode = TransformMode;
using Algorithm = SimulationAlgorithm;
using Modes = EngineTest;
using NormalMode = EngineTest;
using UnknownModes = EngineTest;

// No two fields are equal, so that a mode that reads the wrong one is noticed.
void chooseDistinctSettings() {
  TransformSettings& settings = transformSettings;
  settings.severity = 0.6;
  settings.brightness = -0.25;
  settings.contrast = 0.75;
  settings.saturation = 0.125;
  settings.filterRed = 0.5;
  settings.filterGreen = 0.0;
  settings.filterBlue = 1.0;
  settings.filterName = "Odd";
}

// The settings of the model that only the deficiencies and "Normal" may set.
void setDistinctModel() {
  computeSimulationMatrix(CvdType::Tritan, 0.35, Algorithm::Vienot1999, false, false);
}

void expectDistinctModel() {
  EXPECT_EQ(modelContext.modelCvdType, CvdType::Tritan);
  EXPECT_EQ(modelContext.modelSeverity, 0.35);
  EXPECT_EQ(modelContext.Option, Algorithm::Vienot1999);
  EXPECT_FALSE(modelContext.Inversion);
  EXPECT_FALSE(modelContext.Daltonize);
}

// What an application tells the display after the 15 marks it clears and those of algorithm and
// viewer.
std::vector<std::string> callsAfterTheMarks() {
  std::vector<std::string> calls = callsOfApplication();
  calls.erase(calls.begin(), calls.begin() + std::min<std::ptrdiff_t>(17, std::ssize(calls)));
  return calls;
}

TEST_F(Modes, OfPlainEffectsShowTheirFormulaUnderTheirTitleAndLeaveTheModel) {
  chooseDistinctSettings();
  setDistinctModel();
  // Neither flag affects a plain effect.
  transformSettings.Daltonize = true;
  transformSettings.Inversion = true;
  const Matrix3x3 simulation = modelContext.simulationMatrix;
  struct Row {
    std::int32_t mode, swap;
    const char* title;
    std::array<std::array<double, 4>, 3> rows;
  };
  const std::array<Row, 12> rows{{
      {4, 200, "60% Odd Filter", {{{0.7, 0, 0, 0}, {0, 0.4, 0, 0}, {0, 0, 1, 0}}}},
      {5,
       200,
       "Greyscale",
       {{{0.2989, 0.587, 0.114, 0}, {0.2989, 0.587, 0.114, 0}, {0.2989, 0.587, 0.114, 0}}}},
      {6, 200, "Invert ", {{{-1, 0, 0, 1}, {0, -1, 0, 1}, {0, 0, -1, 1}}}},
      {7, 200, "Brightness -25%", {{{1, 0, 0, -0.25}, {0, 1, 0, -0.25}, {0, 0, 1, -0.25}}}},
      {9, 200, "Contrast 75%", {{{0.75, 0, 0, 0.125}, {0, 0.75, 0, 0.125}, {0, 0, 0.75, 0.125}}}},
      {10,
       200,
       "Saturation 12%",
       {{{0.2615375 + 0.125, 0.513625, 0.09975, 0},
         {0.2615375, 0.513625 + 0.125, 0.09975, 0},
         {0.2615375, 0.513625, 0.09975 + 0.125, 0}}}},
      {11, 200, "Swap 60% Red and Blue", {{{0.4, 0, 0.6, 0}, {0, 1, 0, 0}, {0.6, 0, 0.4, 0}}}},
      {11, 201, "Swap 60% Red and Green", {{{0.4, 0.6, 0, 0}, {0.6, 0.4, 0, 0}, {0, 0, 1, 0}}}},
      {11, 202, "Swap 60% Green and Blue", {{{1, 0, 0, 0}, {0, 0.4, 0.6, 0}, {0, 0.6, 0.4, 0}}}},
      {11, 203, "Swap Red and Blue", {{{0, 0, 1, 0}, {0, 1, 0, 0}, {1, 0, 0, 0}}}},
      {12,
       200,
       "Circadian Light Block, Brightness 60%",
       {{{0.64, 0, 0, 0}, {0, 0.416, 0, 0}, {0, 0, 0, 0}}}},
      {13, 200, "Red Filter", {{{0.5, 0, 0, 0}, {0, 0, 0, 0}, {0, 0, 1, 0}}}},
  }};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.title);
    transformSettings.Selected = static_cast<Mode>(row.mode);
    transformSettings.Swap = static_cast<ColourSwap>(row.swap);
    transformSettings.transformOff = true;
    const std::vector<std::string> expected{std::string("title ") + row.title, "matrix"};
    EXPECT_EQ(callsAfterTheMarks(), expected);
    expectNearlySameEffect(displayRecord.matrix, effectOfRows(row.rows));
    EXPECT_EQ(effectMatrix, displayRecord.matrix);
    EXPECT_FALSE(transformSettings.transformOff);
    expectDistinctModel();
    EXPECT_EQ(modelContext.simulationMatrix, simulation);
  }
}

TEST_F(Modes, GreyscaleStoresTheFloatsOfItsWeights) {
  transformSettings.Selected = Mode::Greyscale;
  applyTransform();
  for (std::size_t output = 0; output < 3; ++output) {
    EXPECT_EQ(effectMatrix[0][output], 0.2989F);
    EXPECT_EQ(effectMatrix[1][output], 0.587F);
    EXPECT_EQ(effectMatrix[2][output], 0.114F);
  }
}

TEST_F(Modes, OfDeficienciesShowTheSimulationOfTheirTypeSeverityAlgorithmAndViewer) {
  for (const Algorithm algorithm : algorithms) {
    for (const std::int32_t mode : {1, 2, 3}) {
      for (const int viewer : {0, 1, 2, 3}) {
        SCOPED_TRACE("algorithm " + std::to_string(static_cast<std::uint32_t>(algorithm)) +
                     " mode " + std::to_string(mode) + " viewer " + std::to_string(viewer));
        TransformSettings& settings = transformSettings;
        settings.Selected = static_cast<Mode>(mode);
        settings.severity = 0.85;
        settings.Option = algorithm;
        settings.Inversion = (viewer & 1) != 0;
        settings.Daltonize = (viewer & 2) != 0;
        const Matrix3x3 expected = computeSimulationMatrix(
            static_cast<CvdType>(mode), 0.85, algorithm, settings.Inversion, settings.Daltonize);
        setDistinctModel();
        applyTransform();
        expectSameEffect(displayRecord.matrix, effectOfMatrix(expected));
      }
    }
  }
}

TEST_F(Modes, OfDeficienciesRefreshTheViewsAfterTheModelAndTheDisplay) {
  struct Row {
    std::int32_t mode;
    const char* title;
  };
  for (const Row& row : {Row{1, "title  Daltonize - Protanomalous 60% severity"},
                         Row{2, "title  Daltonize - Deuteranomalous 60% severity"},
                         Row{3, "title  Daltonize - Tritanomalous 60% severity"}}) {
    SCOPED_TRACE(row.title);
    chooseDistinctSettings();
    setDistinctModel();
    transformSettings.Selected = static_cast<Mode>(row.mode);
    transformSettings.Daltonize = true;
    const std::vector<std::string> expected{"main " + std::to_string(row.mode) + " on", row.title,
                                            "matrix", "refresh"};
    EXPECT_EQ(callsAfterTheMarks(), expected);
    EXPECT_EQ(displayRecord.modelAtRefresh.modelCvdType, static_cast<CvdType>(row.mode));
    EXPECT_EQ(displayRecord.modelAtRefresh.modelSeverity, 0.6);
    expectSameEffect(displayRecord.matrix,
                     effectOfMatrix(displayRecord.modelAtRefresh.simulationMatrix));
  }
}

TEST_F(Modes, WithBothFlagsDaltonizeButSayInverseTransform) {
  transformSettings.Selected = Mode::Protan;
  transformSettings.severity = 0.5;
  transformSettings.Daltonize = true;
  transformSettings.Inversion = true;
  applyTransform();
  EXPECT_EQ(displayRecord.title, " Inverse Transform - Protanomalous 50% severity");
  // The error of the half protan matrix of Judd 1948 in red is (0.44, -0.44, 0), in green
  // (-0.06, 0.06, 0).
  expectNearlySameEffect(displayRecord.matrix,
                         effectOfRows({{{1, 0, 0, 0},
                                        {1.4 * 0.44 - 2 * 0.06, 1 - 1.4 * 0.44 + 2 * 0.06, 0, 0},
                                        {1.4 * 0.44, -1.4 * 0.44, 1, 0}}}));
}

TEST_F(Modes, WithAFailedInversionShowTheSimulationUnderTheInverseTitle) {
  transformSettings.Selected = Mode::Protan;
  transformSettings.Inversion = true;
  applyTransform();
  EXPECT_EQ(displayRecord.title, " Inverse Transform - Protanope 100% severity");
  expectNearlySameEffect(displayRecord.matrix,
                         effectOfRows({{{0.12, 0.88, 0, 0}, {0.12, 0.88, 0, 0}, {0, 0, 1, 0}}}));
}

TEST_F(NormalMode, IsProtanAtAFifthOfTheSeverityUnderEveryAlgorithmAndFlag) {
  for (const Algorithm algorithm : algorithms) {
    for (const int viewer : {0, 1, 2, 3}) {
      SCOPED_TRACE("algorithm " + std::to_string(static_cast<std::uint32_t>(algorithm)) +
                   " viewer " + std::to_string(viewer));
      TransformSettings& settings = transformSettings;
      settings.Selected = Mode::Normal;
      settings.severity = 1.0;
      settings.Option = algorithm;
      settings.Inversion = (viewer & 1) != 0;
      settings.Daltonize = (viewer & 2) != 0;
      const Matrix3x3 expected = computeSimulationMatrix(CvdType::Protan, 0.2, algorithm,
                                                         settings.Inversion, settings.Daltonize);
      setDistinctModel();
      const std::vector<std::string> calls{"title Normal  100% severity", "matrix", "refresh"};
      EXPECT_EQ(callsAfterTheMarks(), calls);
      expectSameEffect(displayRecord.matrix, effectOfMatrix(expected));
      EXPECT_EQ(modelContext.modelCvdType, CvdType::Protan);
      EXPECT_EQ(modelContext.modelSeverity, 0.2);
    }
  }
}

TEST_F(NormalMode, TitlesTheWholeSeverity) {
  transformSettings.Selected = Mode::Normal;
  transformSettings.severity = 0.6;
  applyTransform();
  EXPECT_EQ(displayRecord.title, "Normal  60% severity");
  EXPECT_EQ(modelContext.modelSeverity, 0.6 / 5.0);
}

void expectTheModelsLastMatrix() {
  const Matrix3x3 last =
      computeSimulationMatrix(CvdType::Tritan, 0.35, Algorithm::Vienot1999, false, true);
  const Matrix3x3 uninverted = modelContext.uninvertedMatrix;
  transformSettings.severity = 0.6;
  transformSettings.Daltonize = true;
  effectMatrix[4] = {5.0F, 5.0F, 5.0F, 0.0F, 1.0F};
  transformSettings.transformOff = true;
  const std::vector<std::string> calls{"title 60% severity", "matrix"};
  EXPECT_EQ(callsAfterTheMarks(), calls);
  expectSameEffect(displayRecord.matrix, effectOfMatrix(last));
  EXPECT_FALSE(transformSettings.transformOff);
  EXPECT_EQ(modelContext.modelCvdType, CvdType::Tritan);
  EXPECT_EQ(modelContext.modelSeverity, 0.35);
  EXPECT_EQ(modelContext.Option, Algorithm::Vienot1999);
  expectSameMatrix(modelContext.simulationMatrix, last);
  expectSameMatrix(modelContext.uninvertedMatrix, uninverted);
}

TEST_F(UnknownModes, ShowTheModelsLastMatrixUnderTheSeverityAlone) {
  for (const std::int32_t mode : {14, 15, 99, 0x7FFFFFFF, -1}) {
    SCOPED_TRACE(mode);
    transformSettings.Selected = static_cast<Mode>(mode);
    expectTheModelsLastMatrix();
  }
}

TEST_F(UnknownModes, AndUnknownSwapsFallThroughAlike) {
  transformSettings.Selected = Mode::ColourSwap;
  for (const std::int32_t swap : {199, 204, 0, -1}) {
    SCOPED_TRACE(swap);
    transformSettings.Swap = static_cast<ColourSwap>(swap);
    expectTheModelsLastMatrix();
  }
}

TEST_F(UnknownModes, BeforeTheFirstSimulationShowTheInitialOne) {
  transformSettings.Selected = static_cast<Mode>(14);
  applyTransform();
  expectSameEffect(displayRecord.matrix, effectOfMatrix(modelContext.uninvertedMatrix));
}

TEST_F(UnknownModes, KeepTheMatrixOfAnUnknownAlgorithmToo) {
  transformSettings.Selected = Mode::Tritan;
  transformSettings.severity = 0.6;
  applyTransform();
  const EffectMatrix before = effectMatrix;
  transformSettings.Selected = Mode::Protan;
  transformSettings.Option = static_cast<Algorithm>(5);
  const std::vector<std::string> calls = callsOfApplication();
  EXPECT_EQ(effectMatrix, before);
  EXPECT_EQ(displayRecord.title, " Simulation - Protanomalous 60% severity");
  EXPECT_EQ(calls.back(), "refresh");
}

}  // namespace
}  // namespace tintora
