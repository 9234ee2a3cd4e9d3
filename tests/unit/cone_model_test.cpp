#include "spectral/cone_model.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "reference_observer.h"

namespace tintora {
namespace {

// The terms of the template's polynomial reach 1e7 and cancel. In double precision only eight
// digits would remain.
constexpr double templateTolerance = 1e-10;

void expectCurveNear(const SpectralCurve& actual, const ReferenceCurve& expected,
                     double tolerance) {
  for (std::size_t i = 0; i < actual.size(); ++i) {
    EXPECT_NEAR(actual[i], static_cast<double>(expected[i]), tolerance) << 360 + i << " nm";
  }
}

ConeModel modelWithFilter() {
  ConeModel model;
  fillPrereceptoralFilter(model.prereceptoralFilter);
  return model;
}

ConeModel observerWithPeaks(const ConeValues& peaks) {
  ConeModel model = modelWithFilter();
  buildConeModel(model, peaks.S, peaks.M, peaks.L, 0.35, 0.35, 0.35);
  return model;
}

double largest(const SpectralCurve& curve) {
  return *std::ranges::max_element(curve);
}

TEST(NormalObserver, HasThePublishedPeaksAndDensities) {
  EXPECT_EQ(normalPeaks.S, 420.7);
  EXPECT_EQ(normalPeaks.M, 530.3);
  EXPECT_EQ(normalPeaks.L, 558.9);
  EXPECT_EQ(normalDensities.S, 0.35);
  EXPECT_EQ(normalDensities.M, 0.35);
  EXPECT_EQ(normalDensities.L, 0.35);
}

TEST(CvdTypes, HaveTheirStoredNumbers) {
  EXPECT_EQ(static_cast<std::uint32_t>(CvdType::Protan), 1U);
  EXPECT_EQ(static_cast<std::uint32_t>(CvdType::Deutan), 2U);
  EXPECT_EQ(static_cast<std::uint32_t>(CvdType::Tritan), 3U);
}

TEST(PhotopigmentTemplate, IsThePublishedPolynomialOnALogWavelengthAxis) {
  for (const double peak : {420.7, 530.3, 558.0, 558.9, 475.5}) {
    SCOPED_TRACE(peak);
    SpectralCurve curve;
    photopigmentTemplate(curve, peak);
    expectCurveNear(curve, referenceTemplate(peak), templateTolerance);
  }
}

TEST(PhotopigmentTemplate, KeepsItsRelativeAccuracyWhereItIsSmall) {
  SpectralCurve curve;
  photopigmentTemplate(curve, 420.7);
  const ReferenceCurve expected = referenceTemplate(420.7);
  for (std::size_t i = 0; i < 401; ++i) {
    EXPECT_NEAR(curve[i] / static_cast<double>(expected[i]), 1.0, templateTolerance)
        << 360 + i << " nm";
  }
}

TEST(PhotopigmentTemplate, ShiftsAlongLogWavelengthWithoutChangingShape) {
  SpectralCurve atFourHundred;
  SpectralCurve atSixHundred;
  photopigmentTemplate(atFourHundred, 400.0);
  photopigmentTemplate(atSixHundred, 600.0);
  // 360, 362, ... nm of the one stand at 540, 543, ... nm of the other.
  for (std::size_t step = 0; 540 + 3 * step <= 760; ++step) {
    EXPECT_NEAR(atFourHundred[2 * step], atSixHundred[180 + 3 * step], templateTolerance) << step;
  }
}

TEST(PhotopigmentTemplate, IsLargestAtTheGridPointNearestThePeak) {
  struct Row {
    double peak;
    std::ptrdiff_t index;
  };
  for (const Row& row : {Row{420.7, 421 - 360}, Row{530.3, 530 - 360}, Row{558.9, 559 - 360}}) {
    SCOPED_TRACE(row.peak);
    SpectralCurve curve;
    photopigmentTemplate(curve, row.peak);
    EXPECT_EQ(std::ranges::max_element(curve) - curve.begin(), row.index);
    EXPECT_NEAR(largest(curve), 0.9973, 0.00005);
  }
}

TEST(OpticalDensity, TurnsAbsorbanceIntoAbsorptance) {
  for (const double density : {0.1, 0.35, 1.0, 2.0}) {
    SCOPED_TRACE(density);
    SpectralCurve curve;
    ReferenceCurve absorbance;
    for (std::size_t i = 0; i < 401; ++i) {
      absorbance[i] = static_cast<long double>(i) / 400.0L;
      curve[i] = static_cast<double>(absorbance[i]);
    }
    applyOpticalDensity(curve, density);
    expectCurveNear(curve, referenceAbsorptance(absorbance, density), 1e-14);
    EXPECT_EQ(curve.front(), 0.0);
    EXPECT_EQ(curve.back(), 1.0);
  }
}

TEST(OpticalDensity, OfZeroOrLessLeavesTheCurveAsTheAbsorbance) {
  for (const double density : {0.0, -0.0, -0.35}) {
    SCOPED_TRACE(density);
    SpectralCurve absorbance;
    photopigmentTemplate(absorbance, 530.3);
    SpectralCurve curve = absorbance;
    applyOpticalDensity(curve, density);
    EXPECT_EQ(curve, absorbance);
  }
}

TEST(OpticalDensity, BroadensTheCurveForTheSmallestPositiveDensities) {
  SpectralCurve curve;
  curve.fill(0.5);
  applyOpticalDensity(curve, 1e-3);
  EXPECT_GT(curve[0], 0.5);
  EXPECT_LT(curve[0], 0.5 + 1e-3);
}

TEST(BuildConeModel, GivesEachConeItsOwnPeakAndDensity) {
  ConeModel model = modelWithFilter();
  buildConeModel(model, 431.0, 522.5, 571.25, 0.2, 0.3, 0.45);
  expectCurveNear(model.S, referenceCone(431.0L, 0.2L), templateTolerance);
  expectCurveNear(model.M, referenceCone(522.5L, 0.3L), templateTolerance);
  expectCurveNear(model.L, referenceCone(571.25L, 0.45L), templateTolerance);
}

TEST(BuildConeModel, RecordsThePeaksInTheirOrder) {
  ConeModel model = modelWithFilter();
  buildConeModel(model, 431.0, 522.5, 571.25, 0.2, 0.3, 0.45);
  EXPECT_EQ(model.peakS, 431.0);
  EXPECT_EQ(model.peakM, 522.5);
  EXPECT_EQ(model.peakL, 571.25);
}

TEST(BuildConeModel, EndsEveryConeCurveWithAMaximumOfOne) {
  for (const double severity : {0.0, 0.3, 0.65, 1.0}) {
    for (const CvdType type : {CvdType::Protan, CvdType::Deutan, CvdType::Tritan}) {
      SCOPED_TRACE(severity);
      const ConeModel model = observerWithPeaks(shiftedPeak(type, severity));
      EXPECT_EQ(largest(model.L), 1.0);
      EXPECT_EQ(largest(model.M), 1.0);
      EXPECT_EQ(largest(model.S), 1.0);
    }
  }
}

TEST(BuildConeModel, MakesTheOpponentCurvesOfTheFinishedCones) {
  const ConeModel model = observerWithPeaks(normalPeaks);
  for (std::size_t i = 0; i < 401; ++i) {
    SCOPED_TRACE(360 + i);
    const long double L = model.L[i];
    const long double M = model.M[i];
    const long double S = model.S[i];
    EXPECT_NEAR(model.achromaticCurve[i], static_cast<double>((3.0L * L + 2.0L * M) / 5.0L), 1e-15);
    EXPECT_NEAR(model.yellowBlueCurve[i],
                static_cast<double>((240.0L * L + 105.0L * M - 700.0L * S) / 1000.0L), 1e-15);
    EXPECT_NEAR(model.redGreenCurve[i],
                static_cast<double>((6.0L * L - 8.0L * M + 2.0L * S) / 5.0L), 1e-15);
  }
}

TEST(BuildConeModel, KeepsThePrereceptoralFilterAndReplacesTheRest) {
  ConeModel model = modelWithFilter();
  const SpectralCurve filter = model.prereceptoralFilter;
  for (SpectralCurve* curve : {&model.L, &model.M, &model.S, &model.achromaticCurve,
                               &model.yellowBlueCurve, &model.redGreenCurve}) {
    curve->fill(std::numeric_limits<double>::quiet_NaN());
  }
  buildConeModel(model, 420.7, 530.3, 558.9, 0.35, 0.35, 0.35);
  EXPECT_EQ(model.prereceptoralFilter, filter);
  const ConeModel fresh = observerWithPeaks(normalPeaks);
  EXPECT_EQ(model.L, fresh.L);
  EXPECT_EQ(model.M, fresh.M);
  EXPECT_EQ(model.S, fresh.S);
  EXPECT_EQ(model.achromaticCurve, fresh.achromaticCurve);
  EXPECT_EQ(model.yellowBlueCurve, fresh.yellowBlueCurve);
  EXPECT_EQ(model.redGreenCurve, fresh.redGreenCurve);
}

TEST(ShiftedPeak, MovesOneConeLinearlyWithTheSeverity) {
  for (int percent = 0; percent <= 100; ++percent) {
    SCOPED_TRACE(percent);
    const double s = percent / 100.0;
    const ConeValues protan = shiftedPeak(CvdType::Protan, s);
    EXPECT_EQ(protan.L, 558.9 - s * 28.600000000000023);
    EXPECT_EQ(protan.M, 530.3);
    EXPECT_EQ(protan.S, 420.7);
    const ConeValues deutan = shiftedPeak(CvdType::Deutan, s);
    EXPECT_EQ(deutan.L, 558.9);
    EXPECT_EQ(deutan.M, 530.3 + s * 28.600000000000023);
    EXPECT_EQ(deutan.S, 420.7);
    const ConeValues tritan = shiftedPeak(CvdType::Tritan, s);
    EXPECT_EQ(tritan.L, 558.9);
    EXPECT_EQ(tritan.M, 530.3);
    EXPECT_EQ(tritan.S, 420.7 + s * 109.59999999999997);
  }
}

TEST(ShiftedPeak, StandsExactlyOnTheNeighbourAtFullSeverity) {
  EXPECT_EQ(shiftedPeak(CvdType::Protan, 1.0).L, 530.3);
  EXPECT_EQ(shiftedPeak(CvdType::Deutan, 1.0).M, 558.9);
  EXPECT_EQ(shiftedPeak(CvdType::Tritan, 1.0).S, 530.3);
}

TEST(ShiftedPeak, MovesAtMost572HundredthsForTheNormalVariation) {
  EXPECT_NEAR(558.9 - shiftedPeak(CvdType::Protan, 1.0 / 5.0).L, 5.72, 1e-12);
}

TEST(ShiftedPeak, MovesNoConeForAnyOtherType) {
  for (const std::uint32_t type : {0U, 4U, 0xFFFFFFFFU}) {
    const ConeValues peaks = shiftedPeak(static_cast<CvdType>(type), 0.7);
    EXPECT_EQ(peaks.S, 420.7) << type;
    EXPECT_EQ(peaks.M, 530.3) << type;
    EXPECT_EQ(peaks.L, 558.9) << type;
  }
}

TEST(AnomalousObserver, EqualsTheNormalOneAtSeverityZeroCurveForCurve) {
  const ConeModel normal = observerWithPeaks(normalPeaks);
  for (const CvdType type : {CvdType::Protan, CvdType::Deutan, CvdType::Tritan}) {
    SCOPED_TRACE(static_cast<std::uint32_t>(type));
    const ConeModel anomalous = observerWithPeaks(shiftedPeak(type, 0.0));
    EXPECT_EQ(anomalous.L, normal.L);
    EXPECT_EQ(anomalous.M, normal.M);
    EXPECT_EQ(anomalous.S, normal.S);
    EXPECT_EQ(anomalous.achromaticCurve, normal.achromaticCurve);
    EXPECT_EQ(anomalous.yellowBlueCurve, normal.yellowBlueCurve);
    EXPECT_EQ(anomalous.redGreenCurve, normal.redGreenCurve);
  }
}

TEST(AnomalousObserver, HasTwoIdenticalConesAtFullSeverity) {
  const ConeModel protan = observerWithPeaks(shiftedPeak(CvdType::Protan, 1.0));
  EXPECT_EQ(protan.L, protan.M);
  EXPECT_NE(protan.M, protan.S);
  const ConeModel deutan = observerWithPeaks(shiftedPeak(CvdType::Deutan, 1.0));
  EXPECT_EQ(deutan.L, deutan.M);
  EXPECT_NE(deutan.L, protan.L);
  const ConeModel tritan = observerWithPeaks(shiftedPeak(CvdType::Tritan, 1.0));
  EXPECT_EQ(tritan.S, tritan.M);
  EXPECT_NE(tritan.L, tritan.M);
}

}  // namespace
}  // namespace tintora
