#include "engine/colour_effects.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include "engine/effect_matrix.h"
#include "matrix_expectations.h"

namespace tintora {
namespace {

void expectSameEffectAsRows(const ColourEffect& effect,
                            const std::array<std::array<double, 4>, 3>& rows,
                            double tolerance = 0.0) {
  for (std::size_t row = 0; row < 3; ++row) {
    for (std::size_t column = 0; column < 3; ++column) {
      EXPECT_NEAR(effect.matrix[3 * row + column], rows[row][column], tolerance)
          << "row " << row << ", column " << column;
    }
    EXPECT_NEAR(effect.offset[row], rows[row][3], tolerance) << "offset " << row;
  }
}

// The rounding error of a few operations on values near 1.
constexpr double nearOneTolerance = 3e-16;

TEST(ColourEffect, LeavesTheScreenAsItIsByDefault) {
  expectSameEffectAsRows({}, {{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}}});
}

TEST(Greyscale, WeighsTheChannelsAlikeForEveryOutput) {
  expectSameEffectAsRows(
      greyscaleEffect(),
      {{{0.2989, 0.587, 0.114, 0}, {0.2989, 0.587, 0.114, 0}, {0.2989, 0.587, 0.114, 0}}});
}

TEST(Greyscale, WeightsAreTheirOwnFloats) {
  const ColourEffect effect = greyscaleEffect();
  for (std::size_t row = 0; row < 3; ++row) {
    EXPECT_EQ(static_cast<float>(effect.matrix[3 * row]), 0.2989F);
    EXPECT_EQ(static_cast<float>(effect.matrix[3 * row + 1]), 0.587F);
    EXPECT_EQ(static_cast<float>(effect.matrix[3 * row + 2]), 0.114F);
  }
}

TEST(Invert, ShowsOneMinusEveryChannel) {
  expectSameEffectAsRows(invertEffect(), {{{-1, 0, 0, 1}, {0, -1, 0, 1}, {0, 0, -1, 1}}});
}

TEST(Brightness, AddsItsValueToEveryChannel) {
  for (int percent = -100; percent <= 100; ++percent) {
    SCOPED_TRACE(percent);
    const double b = percent / 100.0;
    expectSameEffectAsRows(brightnessEffect(b), {{{1, 0, 0, b}, {0, 1, 0, b}, {0, 0, 1, b}}});
  }
}

TEST(Brightness, OfMinusOneAndOneAddsExactlyThatAndKeepsTheDiagonal) {
  expectSameEffectAsRows(brightnessEffect(-1.0), {{{1, 0, 0, -1}, {0, 1, 0, -1}, {0, 0, 1, -1}}});
  expectSameEffectAsRows(brightnessEffect(1.0), {{{1, 0, 0, 1}, {0, 1, 0, 1}, {0, 0, 1, 1}}});
}

TEST(Contrast, DrawsEveryChannelTowardsMidGrey) {
  for (int percent = 0; percent <= 100; ++percent) {
    SCOPED_TRACE(percent);
    const double c = percent / 100.0;
    const double o = 0.5 - c / 2.0;
    expectSameEffectAsRows(contrastEffect(c), {{{c, 0, 0, o}, {0, c, 0, o}, {0, 0, c, o}}},
                           nearOneTolerance);
  }
}

TEST(Contrast, OfZeroIsFlatGreyOneHalf) {
  expectSameEffectAsRows(contrastEffect(0.0), {{{0, 0, 0, 0.5}, {0, 0, 0, 0.5}, {0, 0, 0, 0.5}}});
}

TEST(Contrast, OfOneIsTheIdentity) {
  expectSameEffectAsRows(contrastEffect(1.0), {{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}}});
}

TEST(Saturation, MixesTheColourWithItsGrey) {
  for (int percent = 0; percent <= 100; ++percent) {
    SCOPED_TRACE(percent);
    const double s = percent / 100.0;
    const double r = 0.2989 - 0.2989 * s;
    const double g = 0.587 - 0.587 * s;
    const double b = 0.114 - 0.114 * s;
    expectSameEffectAsRows(saturationEffect(s),
                           {{{r + s, g, b, 0}, {r, g + s, b, 0}, {r, g, b + s, 0}}},
                           nearOneTolerance);
  }
}

TEST(Saturation, OfZeroIsExactlyTheGreyscale) {
  expectSameEffectAsRows(
      saturationEffect(0.0),
      {{{0.2989, 0.587, 0.114, 0}, {0.2989, 0.587, 0.114, 0}, {0.2989, 0.587, 0.114, 0}}});
}

TEST(Saturation, OfOneIsTheIdentity) {
  expectSameEffectAsRows(saturationEffect(1.0), {{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}}});
}

TEST(ColourFilters, AreThoseOfTheMenu) {
  struct Row {
    int command;
    std::string_view name;
    double red, green, blue;
  };
  constexpr std::array<Row, 7> rows{{
      {100, "Red", 1, 0, 0},
      {101, "Green", 0, 1, 0},
      {102, "Blue", 0, 0, 1},
      {103, "Yellow", 1, 1, 0},
      {104, "Magenta", 1, 0, 1},
      {105, "Cyan", 0, 1, 1},
      {106, "Red", 1, 0, 0},
  }};
  ASSERT_EQ(colourFilters.size(), 6U);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const Row& row = rows[i];
    SCOPED_TRACE(row.command);
    const ColourFilter& filter = i < 6 ? colourFilters[i] : fullRedFilter;
    EXPECT_EQ(filter.command, row.command);
    EXPECT_EQ(filter.name, row.name);

    TransformSettings settings;
    settings.Selected = TransformMode::Contrast;
    chooseColourFilter(settings, filter);
    EXPECT_EQ(settings.Filter, row.command);
    EXPECT_EQ(settings.filterName, row.name);
    EXPECT_EQ(settings.filterRed, row.red);
    EXPECT_EQ(settings.filterGreen, row.green);
    EXPECT_EQ(settings.filterBlue, row.blue);
    EXPECT_EQ(settings.Selected, TransformMode::Contrast);
  }
}

TEST(ColourFilter, DimsTheBlockedChannelsByItsStrength) {
  for (int percent = 0; percent <= 100; ++percent) {
    const double k = percent / 100.0;
    for (unsigned passed = 0; passed < 8; ++passed) {
      SCOPED_TRACE(std::to_string(percent) + "% of filter " + std::to_string(passed));
      const auto bit = [passed](unsigned place) {
        return (passed >> place & 1U) == 1U ? 1.0 : 0.0;
      };
      const std::array<double, 3> pass{bit(0), bit(1), bit(2)};
      const auto factor = [&](std::size_t i) { return pass[i] == 1.0 ? 1.0 : 1.0 - k; };
      expectSameEffectAsRows(filterEffect(pass, k),
                             {{{factor(0), 0, 0, 0}, {0, factor(1), 0, 0}, {0, 0, factor(2), 0}}});
    }
  }
}

TEST(ColourFilter, PassesPartOfAChannelForAFractionalFactor) {
  // 0.25 + 0.75 * 0.6, 0.5 + 0.5 * 0.6, 0.75 + 0.25 * 0.6
  expectSameEffectAsRows(filterEffect({0.25, 0.5, 0.75}, 0.4),
                         {{{0.7, 0, 0, 0}, {0, 0.8, 0, 0}, {0, 0, 0.9, 0}}}, nearOneTolerance);
}

TEST(ColourFilter, YellowAtFourTenthsScalesBlueBySixTenths) {
  TransformSettings settings;
  chooseColourFilter(settings, colourFilters[3]);
  expectSameEffectAsRows(
      filterEffect({settings.filterRed, settings.filterGreen, settings.filterBlue}, 0.4),
      {{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 0.6, 0}}});
}

TEST(ColourSwaps, MixTwoChannelsByTheirStrength) {
  for (int percent = 0; percent <= 100; ++percent) {
    SCOPED_TRACE(percent);
    const double k = percent / 100.0;
    const double m = 1.0 - k;
    expectSameEffectAsRows(swapEffect(ColourSwap::RedBlue, k),
                           {{{m, 0, k, 0}, {0, 1, 0, 0}, {k, 0, m, 0}}});
    expectSameEffectAsRows(swapEffect(ColourSwap::RedGreen, k),
                           {{{m, k, 0, 0}, {k, m, 0, 0}, {0, 0, 1, 0}}});
    expectSameEffectAsRows(swapEffect(ColourSwap::GreenBlue, k),
                           {{{1, 0, 0, 0}, {0, m, k, 0}, {0, k, m, 0}}});
    expectSameEffectAsRows(swapEffect(ColourSwap::RedBlueInFull, k),
                           {{{0, 0, 1, 0}, {0, 1, 0, 0}, {1, 0, 0, 0}}});
  }
}

TEST(ColourSwaps, AverageTheirChannelsAtHalfStrength) {
  expectSameEffectAsRows(swapEffect(ColourSwap::GreenBlue, 0.5),
                         {{{1, 0, 0, 0}, {0, 0.5, 0.5, 0}, {0, 0.5, 0.5, 0}}});
}

TEST(ColourSwaps, RedAndBlueAtFullStrengthChangePlaces) {
  const ColourEffect inFull = swapEffect(ColourSwap::RedBlueInFull, 0.3);
  const ColourEffect atFullStrength = swapEffect(ColourSwap::RedBlue, 1.0);
  EXPECT_EQ(atFullStrength.matrix, inFull.matrix);
  EXPECT_EQ(atFullStrength.offset, inFull.offset);
}

TEST(CircadianLightBlock, RemovesBlueAndDimsTheRest) {
  for (int percent = 0; percent <= 100; ++percent) {
    SCOPED_TRACE(percent);
    const long double k = percent / 100.0L;
    const auto red = static_cast<double>((1.0L - k) * 0.1L + k);
    const auto green = static_cast<double>((1.0L - k) * 0.065L + k * 0.65L);
    expectSameEffectAsRows(circadianEffect(percent / 100.0),
                           {{{red, 0, 0, 0}, {0, green, 0, 0}, {0, 0, 0, 0}}}, nearOneTolerance);
  }
}

TEST(CircadianLightBlock, AtZeroIsADimRedAmber) {
  expectSameEffectAsRows(circadianEffect(0.0), {{{0.1, 0, 0, 0}, {0, 0.065, 0, 0}, {0, 0, 0, 0}}});
}

TEST(CircadianLightBlock, AtOnePassesRedAnd65PercentOfGreen) {
  expectSameEffectAsRows(circadianEffect(1.0), {{{1, 0, 0, 0}, {0, 0.65, 0, 0}, {0, 0, 0, 0}}},
                         nearOneTolerance);
}

TEST(ColourEffects, AreNotClampedOutsideTheirRanges) {
  expectSameEffectAsRows(contrastEffect(3.0), {{{3, 0, 0, -1}, {0, 3, 0, -1}, {0, 0, 3, -1}}});
  expectSameEffectAsRows(brightnessEffect(-2.5),
                         {{{1, 0, 0, -2.5}, {0, 1, 0, -2.5}, {0, 0, 1, -2.5}}});
  expectSameEffectAsRows(swapEffect(ColourSwap::RedGreen, 2.0),
                         {{{-1, 2, 0, 0}, {2, -1, 0, 0}, {0, 0, 1, 0}}});
  expectSameEffectAsRows(filterEffect({1, 0, 0}, 2.0),
                         {{{1, 0, 0, 0}, {0, -1, 0, 0}, {0, 0, -1, 0}}});
}

}  // namespace
}  // namespace tintora
