#include "spectral/spectral_tables.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <string>
#include <vector>

#include "csv_table.h"
#include "reference_observer.h"

namespace tintora {
namespace {

using FillCurve = void (*)(SpectralCurve&);

// The curve as its routine writes it over zeros.
SpectralCurve filled(FillCurve fill) {
  SpectralCurve curve{};
  fill(curve);
  return curve;
}

SpectralCurve filledOver(FillCurve fill, double before) {
  SpectralCurve curve;
  curve.fill(before);
  fill(curve);
  return curve;
}

std::size_t indexOf(int wavelength) {
  return static_cast<std::size_t>(wavelength - 360);
}

std::size_t indexOfLargest(const SpectralCurve& curve) {
  return static_cast<std::size_t>(std::ranges::max_element(curve) - curve.begin());
}

TEST(SpectralGrid, StandsAtEveryNanometreFrom360To760) {
  EXPECT_EQ(SpectralGrid::firstWavelength, 360);
  EXPECT_EQ(SpectralGrid::samples, 401U);
  EXPECT_EQ(SpectralCurve().size(), 401U);
  for (int nanometres = 360; nanometres <= 760; ++nanometres) {
    EXPECT_EQ(SpectralGrid::wavelength(indexOf(nanometres)), nanometres);
  }
}

TEST(ColourMatchingFunctions, AreThePublishedTabulationInFull) {
  const SpectralCurve x = filled(&fillCieXBar);
  const SpectralCurve y = filled(&fillCieYBar);
  const SpectralCurve z = filled(&fillCieZBar);
  const std::vector<CsvRow> rows = readCsv("cie_1931_2deg_1nm.csv");
  ASSERT_EQ(rows.size(), 401U);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    SCOPED_TRACE(rows[i].at(0) + " nm");
    ASSERT_EQ(csvNumber(rows[i], 0), 360.0 + static_cast<double>(i));
    EXPECT_EQ(x[i], csvNumber(rows[i], 1));
    EXPECT_EQ(y[i], csvNumber(rows[i], 2));
    EXPECT_EQ(z[i], csvNumber(rows[i], 3));
  }
}

TEST(ColourMatchingFunctions, ZBarIsZeroFrom650Nanometres) {
  const SpectralCurve z = filled(&fillCieZBar);
  EXPECT_GT(z[indexOf(649)], 0.0);
  for (std::size_t i = indexOf(650); i < z.size(); ++i) EXPECT_EQ(z[i], 0.0) << 360 + i << " nm";
}

TEST(ColourMatchingFunctions, ZBarWritesItsOwn290SamplesOnly) {
  const SpectralCurve z = filledOver(&fillCieZBar, -1.0);
  EXPECT_EQ(std::ranges::count(z, -1.0), 401 - 290);
  for (std::size_t i = 290; i < z.size(); ++i) EXPECT_EQ(z[i], -1.0) << 360 + i << " nm";
}

void expectPublishedDensity(FillCurve fill, const std::string& file, double head) {
  const SpectralCurve curve = filledOver(fill, -1.0);
  for (int nanometres = 360; nanometres <= 390; ++nanometres) {
    EXPECT_EQ(curve[indexOf(nanometres)], head) << nanometres << " nm";
  }
  int expectedWavelength = 390;
  for (const CsvRow& row : readCsv(file)) {
    SCOPED_TRACE(row.at(0) + " nm");
    ASSERT_EQ(std::stoi(row.at(0)), expectedWavelength++);
    EXPECT_EQ(curve[indexOf(std::stoi(row.at(0)))], csvNumber(row, 1));
  }
  EXPECT_EQ(expectedWavelength, 761);
}

TEST(LensDensity, IsThePublishedTabulationInFullBehindItsHead) {
  expectPublishedDensity(&fillLensDensity, "lens_density_1nm.csv", 2.5122);
}

TEST(MacularDensity, IsThePublishedTabulationInFullBehindItsHead) {
  expectPublishedDensity(&fillMacularDensity, "macular_density_1nm.csv", 0.04533);
}

TEST(LensDensity, IsZeroFrom660Nanometres) {
  const SpectralCurve lens = filledOver(&fillLensDensity, -1.0);
  EXPECT_EQ(lens[indexOf(659)], 0.0001);
  for (std::size_t i = indexOf(660); i < 401; ++i) EXPECT_EQ(lens[i], 0.0) << 360 + i << " nm";
}

TEST(MacularDensity, IsZeroFrom550Nanometres) {
  const SpectralCurve macular = filledOver(&fillMacularDensity, -1.0);
  EXPECT_EQ(macular[indexOf(549)], 0.00019);
  for (std::size_t i = indexOf(550); i < 401; ++i) EXPECT_EQ(macular[i], 0.0) << 360 + i << " nm";
}

struct Anchor {
  const char* name;
  FillCurve fill;
  int wavelength;
  double value;
  double rounding;  // half of the last place where the value is quoted shorter than published
};

TEST(SpectralTables, PassThroughTheirAnchors) {
  const std::array<Anchor, 28> anchors{{
      {"x-bar", &fillCieXBar, 360, 0.0001299, 0.0},
      {"x-bar", &fillCieXBar, 365, 0.0002321, 0.0},
      {"x-bar", &fillCieXBar, 380, 0.001368, 0.0},
      {"x-bar", &fillCieXBar, 599, 1.0629096, 0.0},
      {"x-bar", &fillCieXBar, 600, 1.0622, 0.0},
      {"x-bar", &fillCieXBar, 760, 0.000166151, 0.51e-9},
      {"y-bar", &fillCieYBar, 360, 3.917e-06, 0.0},
      {"y-bar", &fillCieYBar, 555, 1.0, 0.0},
      {"y-bar", &fillCieYBar, 760, 6e-05, 0.0},
      {"z-bar", &fillCieZBar, 360, 0.0006061, 0.0},
      {"z-bar", &fillCieZBar, 446, 1.7829682, 0.0},
      {"z-bar", &fillCieZBar, 649, 1.33e-06, 0.5e-8},
      {"lens", &fillLensDensity, 360, 2.5122, 0.0},
      {"lens", &fillLensDensity, 390, 2.5122, 0.0},
      {"lens", &fillLensDensity, 391, 2.4349, 0.0},
      {"lens", &fillLensDensity, 400, 1.7649, 0.0},
      {"lens", &fillLensDensity, 460, 0.2279, 0.0},
      {"lens", &fillLensDensity, 500, 0.1537, 0.0},
      {"lens", &fillLensDensity, 555, 0.0795, 0.0},
      {"lens", &fillLensDensity, 600, 0.02968, 0.0},
      {"lens", &fillLensDensity, 659, 0.0001, 0.0},
      {"macular", &fillMacularDensity, 390, 0.04533, 0.0},
      {"macular", &fillMacularDensity, 391, 0.04918, 0.0},
      {"macular", &fillMacularDensity, 400, 0.0868, 0.0},
      {"macular", &fillMacularDensity, 458, 0.35211, 0.0},
      {"macular", &fillMacularDensity, 460, 0.35, 0.0},
      {"macular", &fillMacularDensity, 500, 0.2093, 0.0},
      {"macular", &fillMacularDensity, 549, 0.00019, 0.0},
  }};
  for (const Anchor& anchor : anchors) {
    EXPECT_NEAR(filled(anchor.fill)[indexOf(anchor.wavelength)], anchor.value, anchor.rounding)
        << anchor.name << " at " << anchor.wavelength << " nm";
  }
}

TEST(SpectralTables, PeakWhereTheyArePublishedTo) {
  EXPECT_EQ(indexOfLargest(filled(&fillCieXBar)), indexOf(599));
  EXPECT_EQ(indexOfLargest(filled(&fillCieYBar)), indexOf(555));
  EXPECT_EQ(indexOfLargest(filled(&fillCieZBar)), indexOf(446));
  EXPECT_EQ(indexOfLargest(filled(&fillMacularDensity)), indexOf(458));
}

TEST(PrereceptoralFilter, IsTheTransmittanceOfBothDensities) {
  const SpectralCurve transmittance = filledOver(&fillPrereceptoralFilter, -1.0);
  const ReferenceCurve expected = referenceTransmittance();
  for (std::size_t i = 0; i < 401; ++i) {
    EXPECT_NEAR(transmittance[i], static_cast<double>(expected[i]),
                1e-15 * static_cast<double>(expected[i]))
        << 360 + i << " nm";
  }
}

TEST(PrereceptoralFilter, PassesEverythingFrom660Nanometres) {
  const SpectralCurve transmittance = filled(&fillPrereceptoralFilter);
  EXPECT_LT(transmittance[indexOf(659)], 1.0);
  for (std::size_t i = indexOf(660); i < 401; ++i) {
    EXPECT_EQ(transmittance[i], 1.0) << 360 + i << " nm";
  }
}

TEST(PrereceptoralFilter, PassesTenToTheMinus255753At360Nanometres) {
  EXPECT_NEAR(filled(&fillPrereceptoralFilter)[0], std::pow(10.0, -2.55753), 1e-17);
}

TEST(DisplayPrimaries, AreNarrowGaussianLines) {
  struct Row {
    const char* name;
    DisplayPrimary primary;
    double peak;
  };
  for (const Row& row : {Row{"red", redPrimary, 620.0}, Row{"green", greenPrimary, 549.0},
                         Row{"blue", bluePrimary, 469.0}}) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(row.primary.amplitude, 1.0);
    EXPECT_EQ(row.primary.peak, row.peak);
    EXPECT_EQ(row.primary.width, 10.0);

    const SpectralCurve spectrum = primarySpectrum(row.primary);
    const ReferenceCurve expected = referenceGaussian(1.0L, row.peak, 10.0L);
    for (std::size_t i = 0; i < 401; ++i) {
      EXPECT_NEAR(spectrum[i], static_cast<double>(expected[i]), 1e-15) << 360 + i << " nm";
    }
  }
}

TEST(GaussianSpectrum, FollowsAmplitudePeakAndWidth) {
  struct Row {
    double amplitude, peak, width;
  };
  for (const Row& row : {Row{1.0, 560.0, 10.0}, Row{2.5, 500.0, 40.0}, Row{-0.5, 420.7, 3.25},
                         Row{1.0, 300.0, 80.0}, Row{3.0, 760.0, 1.0}}) {
    SCOPED_TRACE(row.peak);
    SpectralCurve curve;
    curve.fill(-1.0);
    gaussianSpectrum(curve, row.amplitude, row.peak, row.width);
    const ReferenceCurve expected = referenceGaussian(row.amplitude, row.peak, row.width);
    for (std::size_t i = 0; i < 401; ++i) {
      EXPECT_NEAR(curve[i], static_cast<double>(expected[i]), 1e-14) << 360 + i << " nm";
    }
  }
}

TEST(GaussianSpectrum, IsItsAmplitudeAtThePeakAndSymmetric) {
  SpectralCurve curve;
  gaussianSpectrum(curve, 0.75, 560.0, 25.0);
  EXPECT_EQ(curve[200], 0.75);
  EXPECT_NEAR(curve[225], 0.75 / std::sqrt(std::exp(1.0)), 1e-15);
  for (std::size_t i = 1; i <= 200; ++i) EXPECT_EQ(curve[200 - i], curve[200 + i]) << i;
}

TEST(SpectralDot, SumsTheProductsOfAll401SamplesUnweighted) {
  SpectralCurve ones;
  ones.fill(1.0);
  SpectralCurve numbers;
  for (std::size_t i = 0; i < 401; ++i) numbers[i] = static_cast<double>(i + 1);
  EXPECT_EQ(spectralDot(ones, ones), 401.0);
  EXPECT_EQ(spectralDot(ones, numbers), 401.0 * 402.0 / 2.0);
  EXPECT_EQ(spectralDot(numbers, numbers), 401.0 * 402.0 * 803.0 / 6.0);
}

TEST(SpectralDot, CountsTheEndSamplesInFull) {
  SpectralCurve ends{};
  ends.front() = 3.0;
  ends.back() = 5.0;
  EXPECT_EQ(spectralDot(ends, ends), 9.0 + 25.0);
}

TEST(MultiplyAndNormalise, DividesTheProductByItsLargestSample) {
  SpectralCurve curve;
  SpectralCurve filter;
  for (std::size_t i = 0; i < 401; ++i) {
    curve[i] = static_cast<double>(i) - 100.0;
    filter[i] = 500.0 - static_cast<double>(i);
  }
  // The product is largest halfway between its zeros at 100 and 500.
  const double largest = 200.0 * 200.0;
  multiplyAndNormalise(curve, filter);
  for (std::size_t i = 0; i < 401; ++i) {
    const auto n = static_cast<double>(i);
    EXPECT_EQ(curve[i], (n - 100.0) * (500.0 - n) / largest) << i;
  }
}

TEST(MultiplyAndNormalise, FindsTheLargestSampleAtEitherEnd) {
  SpectralCurve ones;
  ones.fill(1.0);
  for (const std::size_t end : {0U, 400U}) {
    SpectralCurve curve;
    curve.fill(0.5);
    curve[end] = 4.0;
    multiplyAndNormalise(curve, ones);
    EXPECT_EQ(curve[end], 1.0);
    EXPECT_EQ(curve[200], 0.125);
  }
}

TEST(MultiplyAndNormalise, LeavesAnAllZeroProductAllZero) {
  SpectralCurve curve;
  curve.fill(0.5);
  multiplyAndNormalise(curve, SpectralCurve{});
  for (const double sample : curve) EXPECT_EQ(sample, 0.0);
}

TEST(MultiplyAndNormalise, LeavesAProductWithoutPositiveSamplesUnnormalised) {
  SpectralCurve curve;
  curve.fill(-2.0);
  SpectralCurve filter;
  filter.fill(0.25);
  filter[7] = 0.5;
  multiplyAndNormalise(curve, filter);
  EXPECT_EQ(curve[7], -1.0);
  EXPECT_EQ(curve[8], -0.5);
}

}  // namespace
}  // namespace tintora
