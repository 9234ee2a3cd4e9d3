#include "engine/transform_settings.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>

#include "display_recorder.h"

namespace tintora {
namespace {

using Mode = TransformMode;
using Settings = EngineTest;

std::string percentText(int percent) {
  return std::to_string(percent) + "%";
}

TEST_F(Settings, StartWithTheirDefaults) {
  const TransformSettings& settings = recordsAtStart().settings;
  EXPECT_EQ(settings.Selected, Mode::Deutan);
  EXPECT_EQ(settings.severity, 1.0);
  EXPECT_FALSE(settings.Daltonize);
  EXPECT_FALSE(settings.Inversion);
  EXPECT_EQ(settings.Option, SimulationAlgorithm::Judd1948);
  EXPECT_EQ(settings.filterRed, 1.0);
  EXPECT_EQ(settings.filterGreen, 1.0);
  EXPECT_EQ(settings.filterBlue, 1.0);
  EXPECT_EQ(settings.filterName, "None");
  EXPECT_EQ(settings.Filter, 100);
  EXPECT_EQ(settings.Swap, ColourSwap::RedBlue);
  EXPECT_EQ(settings.brightness, 0.0);
  EXPECT_EQ(settings.contrast, 1.0);
  EXPECT_EQ(settings.saturation, 1.0);
  EXPECT_EQ(settings.customIndex, 0);
  EXPECT_FALSE(settings.transformOff);
}

TEST(TransformModes, HaveTheirStoredNumbers) {
  constexpr std::array<Mode, 14> modes{
      Mode::Custom,
      Mode::Protan,
      Mode::Deutan,
      Mode::Tritan,
      Mode::ColourFilter,
      Mode::Greyscale,
      Mode::Invert,
      Mode::Brightness,
      Mode::Normal,
      Mode::Contrast,
      Mode::Saturation,
      Mode::ColourSwap,
      Mode::CircadianLightBlock,
      Mode::RedFilter,
  };
  for (std::int32_t number = 0; number < 14; ++number) {
    EXPECT_EQ(static_cast<std::int32_t>(modes.at(static_cast<std::size_t>(number))), number);
  }
}

TEST(TransformModes, OfDeficienciesAreOneToThreeAndNormalIsASimulationToo) {
  for (std::int32_t number = -1; number <= 14; ++number) {
    const Mode mode = static_cast<Mode>(number);
    const bool deficiency = number == 1 || number == 2 || number == 3;
    EXPECT_EQ(isDeficiency(mode), deficiency) << number;
    EXPECT_EQ(isSimulation(mode), deficiency || number == 8) << number;
  }
}

TEST(ColourSwapValues, AreTheirMenuCommands) {
  EXPECT_EQ(static_cast<std::int32_t>(ColourSwap::RedBlue), 200);
  EXPECT_EQ(static_cast<std::int32_t>(ColourSwap::RedGreen), 201);
  EXPECT_EQ(static_cast<std::int32_t>(ColourSwap::GreenBlue), 202);
  EXPECT_EQ(static_cast<std::int32_t>(ColourSwap::RedBlueInFull), 203);
}

TEST(WholePercent, IsExactForEveryHundredth) {
  for (int percent = -100; percent <= 100; ++percent) {
    EXPECT_EQ(wholePercent(percent / 100.0), percent);
    EXPECT_EQ(wholePercent(percent * 0.01), percent);
  }
}

TEST(WholePercent, SurvivesRepeatedSteps) {
  for (const int step : {1, 5}) {
    double up = 0.0;
    double down = 1.0;
    double negative = 0.0;
    for (int percent = 0; percent <= 100; percent += step) {
      SCOPED_TRACE(percent);
      EXPECT_EQ(wholePercent(up), percent);
      EXPECT_EQ(wholePercent(down), 100 - percent);
      EXPECT_EQ(wholePercent(negative), -percent);
      up += step / 100.0;
      down -= step / 100.0;
      negative -= step / 100.0;
    }
  }
}

TEST(WholePercent, CutsTowardsZeroWithAThousandthToSpare) {
  EXPECT_EQ(wholePercent(0.299), 29);
  EXPECT_EQ(wholePercent(0.29998), 29);
  EXPECT_EQ(wholePercent(0.2999899), 29);
  EXPECT_EQ(wholePercent(0.2999901), 30);
  EXPECT_EQ(wholePercent(0.299995), 30);
  EXPECT_EQ(wholePercent(0.009), 0);
  EXPECT_EQ(wholePercent(-0.299), -29);
  EXPECT_EQ(wholePercent(-0.29998), -29);
  EXPECT_EQ(wholePercent(-0.2999899), -29);
  EXPECT_EQ(wholePercent(-0.2999901), -30);
  EXPECT_EQ(wholePercent(-0.299995), -30);
  EXPECT_EQ(wholePercent(-0.009), 0);
}

struct TypeWords {
  Mode mode;
  const char* inversePrefix;
  const char* dichromat;
  const char* anomalous;
};

constexpr std::array<TypeWords, 3> typeWords{{
    {Mode::Protan, " Inverse Transform -", " Protanope ", " Protanomalous "},
    {Mode::Deutan, " Inverse Transform -", " Deuteranope ", " Deuteranomalous "},
    {Mode::Tritan, " Inverse Tranform -", " Tritanope ", " Tritanomalous "},
}};

TransformSettings cvdSettings(Mode mode, double severity) {
  TransformSettings settings;
  settings.Selected = mode;
  settings.severity = severity;
  return settings;
}

TEST(Titles, OfDeficienciesJoinPrefixTypeWordAndSeverity) {
  for (const TypeWords& words : typeWords) {
    for (int percent = 0; percent <= 100; percent += 5) {
      SCOPED_TRACE(words.anomalous + percentText(percent));
      const std::string type = percent == 100 ? words.dichromat : words.anomalous;
      const std::string end = type + percentText(percent) + " severity";
      TransformSettings settings = cvdSettings(words.mode, percent / 100.0);
      EXPECT_EQ(transformTitle(settings), " Simulation -" + end);
      settings.Daltonize = true;
      EXPECT_EQ(transformTitle(settings), " Daltonize -" + end);
      settings.Inversion = true;
      EXPECT_EQ(transformTitle(settings), words.inversePrefix + end);
      settings.Daltonize = false;
      EXPECT_EQ(transformTitle(settings), words.inversePrefix + end);
    }
  }
}

TEST(Titles, FullSeverityUsesTheDichromatWord) {
  EXPECT_EQ(transformTitle(cvdSettings(Mode::Protan, 1.0)),
            " Simulation - Protanope 100% severity");
  EXPECT_EQ(transformTitle(cvdSettings(Mode::Deutan, 1.0)),
            " Simulation - Deuteranope 100% severity");
  EXPECT_EQ(transformTitle(cvdSettings(Mode::Tritan, 1.0)),
            " Simulation - Tritanope 100% severity");
}

TEST(Titles, NinetyFivePercentUsesTheAnomalousWord) {
  EXPECT_EQ(transformTitle(cvdSettings(Mode::Protan, 0.95)),
            " Simulation - Protanomalous 95% severity");
  EXPECT_EQ(transformTitle(cvdSettings(Mode::Deutan, 0.95)),
            " Simulation - Deuteranomalous 95% severity");
  EXPECT_EQ(transformTitle(cvdSettings(Mode::Tritan, 0.95)),
            " Simulation - Tritanomalous 95% severity");
}

TEST(Titles, SeverityZeroUsesTheAnomalousWord) {
  EXPECT_EQ(transformTitle(cvdSettings(Mode::Protan, 0.0)),
            " Simulation - Protanomalous 0% severity");
  EXPECT_EQ(transformTitle(cvdSettings(Mode::Deutan, 0.0)),
            " Simulation - Deuteranomalous 0% severity");
  EXPECT_EQ(transformTitle(cvdSettings(Mode::Tritan, 0.0)),
            " Simulation - Tritanomalous 0% severity");
}

TEST(Titles, JustBelowFullSeverityIsStillAnomalous) {
  EXPECT_EQ(transformTitle(cvdSettings(Mode::Deutan, 0.999999)),
            " Simulation - Deuteranomalous 100% severity");
  EXPECT_EQ(transformTitle(cvdSettings(Mode::Protan, std::nextafter(1.0, 0.0))),
            " Simulation - Protanomalous 100% severity");
}

TEST(Titles, OfEveryOtherModeNameTheirOwnField) {
  TransformSettings settings;
  settings.severity = 0.6;
  settings.brightness = 0.25;
  settings.contrast = 0.7;
  settings.saturation = 0.35;
  settings.filterName = "Magenta";
  // Neither flag affects other modes than the deficiencies.
  settings.Daltonize = true;
  settings.Inversion = true;
  struct Row {
    Mode mode;
    const char* title;
  };
  for (const Row& row : {
           Row{Mode::ColourFilter, "60% Magenta Filter"},
           Row{Mode::Greyscale, "Greyscale"},
           Row{Mode::Invert, "Invert "},
           Row{Mode::Brightness, "Brightness +25%"},
           Row{Mode::Normal, "Normal  60% severity"},
           Row{Mode::Contrast, "Contrast 70%"},
           Row{Mode::Saturation, "Saturation 35%"},
           Row{Mode::ColourSwap, "Swap 60% Red and Blue"},
           Row{Mode::CircadianLightBlock, "Circadian Light Block, Brightness 60%"},
           Row{Mode::RedFilter, "Red Filter"},
           Row{static_cast<Mode>(14), "60% severity"},
           Row{static_cast<Mode>(-1), "60% severity"},
       }) {
    SCOPED_TRACE(row.title);
    settings.Selected = row.mode;
    EXPECT_EQ(transformTitle(settings), row.title);
  }
}

TEST(Titles, OfFiltersCarryEveryColourWord) {
  TransformSettings settings;
  settings.Selected = Mode::ColourFilter;
  settings.severity = 0.6;
  for (const char* name : {"Red", "Green", "Blue", "Yellow", "Magenta", "Cyan", "None"}) {
    settings.filterName = name;
    EXPECT_EQ(transformTitle(settings), std::string("60% ") + name + " Filter");
  }
}

TEST(Titles, OfBrightnessCarryTheSign) {
  struct Row {
    double brightness;
    const char* title;
  };
  for (const Row& row : {
           Row{0.25, "Brightness +25%"},
           Row{-0.10, "Brightness -10%"},
           Row{1.0, "Brightness +100%"},
           Row{-1.0, "Brightness -100%"},
           Row{0.29, "Brightness +29%"},
           Row{-0.29, "Brightness -29%"},
           Row{-0.01, "Brightness -1%"},
           // The remainder of ten steps up and ten down must show neither "+" nor "-".
           Row{-1e-17, "Brightness 0%"},
       }) {
    TransformSettings settings;
    settings.Selected = Mode::Brightness;
    settings.brightness = row.brightness;
    EXPECT_EQ(transformTitle(settings), row.title);
  }
}

TEST(Titles, BrightnessZeroIsPlusZeroAndMinusFiveIsMinusFive) {
  TransformSettings settings;
  settings.Selected = Mode::Brightness;
  settings.brightness = 0.0;
  EXPECT_EQ(transformTitle(settings), "Brightness +0%");
  settings.brightness = -0.05;
  EXPECT_EQ(transformTitle(settings), "Brightness -5%");
}

TEST(Titles, OfSwapsNameTheirChannels) {
  struct Row {
    std::int32_t swap;
    const char* title;
  };
  for (const Row& row : {
           Row{200, "Swap 60% Red and Blue"},
           Row{201, "Swap 60% Red and Green"},
           Row{202, "Swap 60% Green and Blue"},
           Row{203, "Swap Red and Blue"},
           Row{199, "60% severity"},
           Row{204, "60% severity"},
           Row{0, "60% severity"},
       }) {
    SCOPED_TRACE(row.swap);
    TransformSettings settings;
    settings.Selected = Mode::ColourSwap;
    settings.severity = 0.6;
    settings.Swap = static_cast<ColourSwap>(row.swap);
    EXPECT_EQ(transformTitle(settings), row.title);
  }
}

TEST(Titles, AFullSwapOfRedAndBlueStillCarriesThePercentage) {
  TransformSettings settings;
  settings.Selected = Mode::ColourSwap;
  settings.severity = 1.0;
  EXPECT_EQ(transformTitle(settings), "Swap 100% Red and Blue");
}

}  // namespace
}  // namespace tintora
