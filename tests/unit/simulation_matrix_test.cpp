#include "spectral/simulation_matrix.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "algorithms.h"
#include "csv_table.h"
#include "display_recorder.h"
#include "matrix_expectations.h"
#include "reference_observer.h"

namespace tintora {
namespace {

// The terms of the photopigment template reach 1e7 and cancel. In double precision only eight
// digits would remain, too few for these limits. The opponent rows nearly cancel again.
constexpr double curveTolerance = 1e-10;
constexpr double coneTolerance = 1e-11;
constexpr double derivationTolerance = 1e-10;
constexpr double opponentTolerance = 1e-8;

ModelContext contextFor(CvdType type, double severity) {
  ModelContext context;
  initialiseModelContext(context);
  context.modelCvdType = type;
  context.modelSeverity = severity;
  return context;
}

ConeValues anomalousPeaks(CvdType type, double severity) {
  ConeValues peaks{420.7, 530.3, 558.9};
  if (type == CvdType::Protan) peaks.L += severity * (530.3 - 558.9);
  if (type == CvdType::Deutan) peaks.M += severity * (558.9 - 530.3);
  if (type == CvdType::Tritan) peaks.S += severity * (530.3 - 420.7);
  return peaks;
}

void expectCurveNear(const SpectralCurve& actual, const ReferenceCurve& expected) {
  for (std::size_t i = 0; i < actual.size(); ++i) {
    EXPECT_NEAR(actual[i], static_cast<double>(expected[i]), curveTolerance) << 360 + i << " nm";
  }
}

double rowSum(const Matrix3x3& m, std::size_t row) {
  return m[3 * row] + m[3 * row + 1] + m[3 * row + 2];
}

double determinant(const Matrix3x3& m) {
  return m[0] * (m[4] * m[8] - m[5] * m[7]) - m[1] * (m[3] * m[8] - m[5] * m[6]) +
         m[2] * (m[3] * m[7] - m[4] * m[6]);
}

TEST(SimulationAlgorithms, HaveTheirStoredNumbers) {
  EXPECT_EQ(static_cast<std::uint32_t>(SimulationAlgorithm::Judd1948), 0U);
  EXPECT_EQ(static_cast<std::uint32_t>(SimulationAlgorithm::Yang2008), 1U);
  EXPECT_EQ(static_cast<std::uint32_t>(SimulationAlgorithm::Machado2009), 2U);
  EXPECT_EQ(static_cast<std::uint32_t>(SimulationAlgorithm::Vienot1997Approximated), 3U);
  EXPECT_EQ(static_cast<std::uint32_t>(SimulationAlgorithm::Vienot1999), 4U);
}

TEST(Multiply3x3, IsTheSumOverRowsTimesColumns) {
  constexpr Matrix3x3 a{1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0, 8.0, 10.0};
  constexpr Matrix3x3 b{2.0, 0.0, -1.0, 1.0, 3.0, 5.0, -4.0, 6.0, 7.0};
  expectSameMatrix(multiply3x3(a, b), {-8.0, 24.0, 30.0, -11.0, 51.0, 63.0, -18.0, 84.0, 103.0});
  expectSameMatrix(multiply3x3(a, identity3x3), a);
  expectSameMatrix(multiply3x3(identity3x3, a), a);
}

TEST(Invert3x3, InvertsByCofactors) {
  // A unimodular matrix, so that its inverse is one of whole numbers.
  const Inverse3x3 inverse = invert3x3({2.0, 3.0, 1.0, 1.0, 2.0, 1.0, 1.0, 1.0, 1.0});
  EXPECT_TRUE(inverse.succeeded);
  expectSameMatrix(inverse.matrix, {1.0, -2.0, 1.0, 0.0, 1.0, -1.0, -1.0, 1.0, 1.0});
  const Inverse3x3 scaled = invert3x3({2.0, 0.0, 0.0, 0.0, 4.0, 0.0, 0.0, 0.0, -8.0});
  EXPECT_TRUE(scaled.succeeded);
  expectSameMatrix(scaled.matrix, {0.5, 0.0, 0.0, 0.0, 0.25, 0.0, 0.0, 0.0, -0.125});
}

TEST(Invert3x3, AgreesWithElimination) {
  std::mt19937 engine(20240611);
  std::uniform_real_distribution<double> entry(-2.0, 2.0);
  for (int round = 0; round < 200; ++round) {
    SCOPED_TRACE(round);
    Matrix3x3 m;
    ReferenceMatrix reference;
    for (std::size_t i = 0; i < 9; ++i) reference[i / 3][i % 3] = m[i] = entry(engine);
    if (std::abs(determinant(m)) < 0.01) continue;
    const Inverse3x3 inverse = invert3x3(m);
    EXPECT_TRUE(inverse.succeeded);
    expectMatrixNear(inverse.matrix, inDoubles(referenceInverse(reference)), 1e-10);
  }
}

TEST(Invert3x3, FailsOnTheFullProtanMatrixOfJudd) {
  EXPECT_FALSE(invert3x3({0.12, 0.88, 0.0, 0.12, 0.88, 0.0, 0.0, 0.0, 1.0}).succeeded);
}

TEST(Invert3x3, FailsOnlyWhenTheDeterminantIsExactlyZero) {
  EXPECT_FALSE(invert3x3({1.0, 2.0, 3.0, 2.0, 4.0, 6.0, 1.0, 1.0, 1.0}).succeeded);
  EXPECT_FALSE(invert3x3({}).succeeded);
  const Inverse3x3 tiny = invert3x3({1.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 1e-300});
  EXPECT_TRUE(tiny.succeeded);
  EXPECT_DOUBLE_EQ(tiny.matrix[8], 1e300);
}

TEST(MachadoTable, IsThePublishedOneInFull) {
  ModelContext context;
  initialiseModelContext(context);
  const std::vector<CsvRow> rows = readCsv("machado_2009.csv");
  ASSERT_EQ(rows.size(), 99U);
  const std::array<std::string, 3> types{"protan", "deutan", "tritan"};
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const CsvRow& row = rows[i];
    SCOPED_TRACE(row.at(0) + " " + row.at(1) + " row " + row.at(2));
    ASSERT_EQ(row.at(0), types.at(i / 33));
    ASSERT_EQ(std::stod(row.at(1)) * 10.0, static_cast<double>(i / 3 % 11));
    ASSERT_EQ(std::stoul(row.at(2)), i % 3);
    for (std::size_t column = 0; column < 3; ++column) {
      EXPECT_EQ(context.machadoTable[3 * i + column], csvNumber(row, 3 + column)) << column;
    }
  }
}

TEST(MachadoTable, PassesThroughItsAnchors) {
  ModelContext context;
  initialiseModelContext(context);
  for (std::size_t type = 0; type < 3; ++type) {
    for (std::size_t i = 0; i < 9; ++i) {
      EXPECT_EQ(context.machadoTable[99 * type + i], i % 4 == 0 ? 1.0 : 0.0) << type << " " << i;
    }
  }
  EXPECT_EQ(context.machadoTable[90], 0.152286);
  EXPECT_EQ(context.machadoTable[91], 1.052583);
  EXPECT_EQ(context.machadoTable[92], -0.204868);
  EXPECT_EQ(context.machadoTable[99 + 90], 0.367322);
  EXPECT_EQ(context.machadoTable[198 + 90], 1.255528);
}

using ModelContextTest = EngineTest;

TEST_F(ModelContextTest, HoldsAFullProtanJuddSimulationBeforeTheFirstComputation) {
  const ModelContext& context = recordsAtStart().model;
  EXPECT_EQ(context.modelCvdType, CvdType::Protan);
  EXPECT_EQ(context.modelSeverity, 1.0);
  EXPECT_EQ(context.Option, SimulationAlgorithm::Judd1948);
  EXPECT_FALSE(context.Inversion);
  EXPECT_FALSE(context.Daltonize);
  expectSameMatrix(context.uninvertedMatrix, {0.12, 0.88, 0.0, 0.12, 0.88, 0.0, 0.0, 0.0, 1.0});
}

TEST_F(ModelContextTest, ReceivesTheFilterOfBothObserversAtStartUp) {
  SpectralCurve filter;
  fillPrereceptoralFilter(filter);
  EXPECT_EQ(modelContext.normalObserver.prereceptoralFilter, filter);
  EXPECT_EQ(modelContext.anomalousObserver.prereceptoralFilter, filter);
}

TEST(IntegrateConeMatrix, DividesTheResponsesOfEachConeByTheirSum) {
  ConeModel model;
  SpectralCurve red{};
  SpectralCurve green{};
  SpectralCurve blue{};
  red[0] = 2.0;
  red[200] = 1.0;
  green[100] = 1.0;
  blue[400] = 4.0;
  // Red 2 + 2, green 3, blue 1.
  model.L[0] = 1.0;
  model.L[200] = 2.0;
  model.L[100] = 3.0;
  model.L[400] = 0.25;
  // Red 3, green 5, blue 8.
  model.M[200] = 3.0;
  model.M[100] = 5.0;
  model.M[400] = 2.0;
  // Red 1, green 0, blue 3.
  model.S[0] = 0.5;
  model.S[400] = 0.75;
  integrateConeMatrix(model, red, green, blue);
  const Matrix3x3 expected{0.5,    0.375,  0.125,  //
                           0.1875, 0.3125, 0.5,    //
                           0.25,   0.0,    0.75};
  expectSameMatrix(model.rgbToLms, expected);
  expectMatrixNear(multiply3x3(model.lmsToRgb, expected), identity3x3, 1e-15);
  expectSameMatrix(model.rgbToOpponent, {});
}

TEST(IntegrateConeMatrix, HasNoInverseWhenTwoConesAreEqual) {
  ConeModel model;
  model.lmsToRgb.fill(7.0);
  SpectralCurve red{};
  SpectralCurve green{};
  SpectralCurve blue{};
  red[1] = green[2] = blue[3] = 1.0;
  model.L[1] = model.M[1] = model.L[2] = model.M[2] = 0.5;
  model.S[3] = 1.0;
  integrateConeMatrix(model, red, green, blue);
  expectSameMatrix(model.rgbToLms, {0.5, 0.5, 0.0, 0.5, 0.5, 0.0, 0.0, 0.0, 1.0});
  expectSameMatrix(model.lmsToRgb, {});
}

TEST(IntegrateOpponentMatrix, TakesTheOpponentCurvesInTheirOrder) {
  ConeModel model;
  SpectralCurve red{};
  SpectralCurve green{};
  SpectralCurve blue{};
  red[1] = green[2] = blue[3] = 1.0;
  model.achromaticCurve[1] = 3.0;
  model.achromaticCurve[2] = 1.0;
  model.yellowBlueCurve[2] = 1.0;
  model.yellowBlueCurve[3] = -3.0;
  model.redGreenCurve[1] = 6.0;
  model.redGreenCurve[2] = -8.0;
  model.redGreenCurve[3] = 4.0;
  integrateOpponentMatrix(model, red, green, blue);
  const Matrix3x3 expected{0.75, 0.25, 0.0, 0.0, -0.5, 1.5, 3.0, -4.0, 2.0};
  expectSameMatrix(model.rgbToOpponent, expected);
  expectMatrixNear(multiply3x3(model.opponentToRgb, expected), identity3x3, 1e-14);
  expectSameMatrix(model.rgbToLms, {});
}

TEST(ComposeAnomalousMatrix, TakesTheAnomalousResponsesBackThroughTheNormalObserver) {
  ConeModel normal;
  ConeModel anomalous;
  normal.lmsToRgb = {1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0, 8.0, 10.0};
  normal.rgbToLms.fill(99.0);
  anomalous.rgbToLms = {2.0, 0.0, -1.0, 1.0, 3.0, 5.0, -4.0, 6.0, 7.0};
  anomalous.lmsToRgb.fill(99.0);
  composeAnomalousMatrix(normal, anomalous);
  expectSameMatrix(normal.simulationResult,
                   {-8.0, 24.0, 30.0, -11.0, 51.0, 63.0, -18.0, 84.0, 103.0});
}

TEST(SpectralDerivation, AgreesWithTheModelInExtendedPrecision) {
  for (const CvdType type : cvdTypes) {
    for (const double severity : {0.0, 0.05, 0.3, 0.5, 0.85, 0.95, 1.0}) {
      SCOPED_TRACE("type " + std::to_string(static_cast<std::uint32_t>(type)) + " severity " +
                   std::to_string(severity));
      ModelContext context = contextFor(type, severity);
      const Matrix3x3 derived = deriveSpectralMatrix(context);
      expectMatrixNear(derived, inDoubles(referenceSimulation(anomalousPeaks(type, severity))),
                       derivationTolerance);
      expectSameMatrix(context.normalObserver.simulationResult, derived);
    }
  }
}

TEST(SpectralDerivation, RebuildsBothObserversWithAllTheirMatrices) {
  ModelContext context = contextFor(CvdType::Tritan, 0.6);
  deriveSpectralMatrix(context);
  for (ConeModel* observer : {&context.normalObserver, &context.anomalousObserver}) {
    for (SpectralCurve* curve :
         {&observer->L, &observer->M, &observer->S, &observer->achromaticCurve,
          &observer->yellowBlueCurve, &observer->redGreenCurve}) {
      curve->fill(0.5);
    }
    for (Matrix3x3* matrix : {&observer->rgbToLms, &observer->lmsToRgb, &observer->rgbToOpponent,
                              &observer->opponentToRgb, &observer->simulationResult}) {
      matrix->fill(0.5);
    }
  }
  // Only the filter may be kept from the previous derivation.
  deriveSpectralMatrix(context);
  const auto expectObserver = [](const ConeModel& observer, const ConeValues& peaks) {
    EXPECT_EQ(observer.peakS, peaks.S);
    EXPECT_EQ(observer.peakM, peaks.M);
    EXPECT_EQ(observer.peakL, peaks.L);
    const ReferenceCurves cones = referenceCones(peaks, {0.35, 0.35, 0.35});
    expectCurveNear(observer.L, cones[0]);
    expectCurveNear(observer.M, cones[1]);
    expectCurveNear(observer.S, cones[2]);
    const ReferenceMatrix lms = referenceResponses(cones);
    const ReferenceMatrix opponent = referenceResponses(referenceOpponents(cones));
    expectMatrixNear(observer.rgbToLms, inDoubles(lms), coneTolerance);
    expectMatrixNear(observer.lmsToRgb, inDoubles(referenceInverse(lms)), derivationTolerance);
    expectMatrixNear(observer.rgbToOpponent, inDoubles(opponent), opponentTolerance);
    // Rows that nearly cancel make the inverse too sensitive to compare with the reference.
    expectMatrixNear(multiply3x3(observer.opponentToRgb, observer.rgbToOpponent), identity3x3,
                     1e-13);
  };
  expectObserver(context.normalObserver, {420.7, 530.3, 558.9});
  expectObserver(context.anomalousObserver, anomalousPeaks(CvdType::Tritan, 0.6));
}

TEST(SpectralDerivation, AtSeverityZeroIsTheIdentity) {
  for (const CvdType type : cvdTypes) {
    SCOPED_TRACE(static_cast<std::uint32_t>(type));
    ModelContext context = contextFor(type, 0.0);
    expectMatrixNear(deriveSpectralMatrix(context), identity3x3, 1e-13);
  }
}

TEST(SpectralDerivation, OfATypeThatMovesNoConeIsTheIdentity) {
  ModelContext context = contextFor(static_cast<CvdType>(4), 1.0);
  expectMatrixNear(deriveSpectralMatrix(context), identity3x3, 1e-13);
}

TEST(SpectralDerivation, AtFullSeverityHasTwoEqualConeRowsAndRankTwo) {
  struct Row {
    CvdType type;
    std::size_t first, second;
  };
  for (const Row& row :
       {Row{CvdType::Protan, 0, 1}, Row{CvdType::Deutan, 0, 1}, Row{CvdType::Tritan, 1, 2}}) {
    SCOPED_TRACE(static_cast<std::uint32_t>(row.type));
    ModelContext context = contextFor(row.type, 1.0);
    const Matrix3x3 simulation = deriveSpectralMatrix(context);
    const Matrix3x3& lms = context.anomalousObserver.rgbToLms;
    for (std::size_t column = 0; column < 3; ++column) {
      EXPECT_EQ(lms[3 * row.first + column], lms[3 * row.second + column]);
    }
    EXPECT_NEAR(determinant(simulation), 0.0, 1e-13);
    // Rank 2, not 1: some 2x2 minor is far from 0.
    EXPECT_GT(std::abs(simulation[4] * simulation[8] - simulation[5] * simulation[7]) +
                  std::abs(simulation[0] * simulation[8] - simulation[2] * simulation[6]),
              0.1);
  }
}

TEST(SpectralDerivation, EveryConeRowSumsToOneAndWhiteStaysWhite) {
  for (const CvdType type : cvdTypes) {
    for (const double severity : {0.0, 0.25, 0.6, 1.0}) {
      SCOPED_TRACE(severity);
      ModelContext context = contextFor(type, severity);
      const Matrix3x3 simulation = deriveSpectralMatrix(context);
      for (std::size_t row = 0; row < 3; ++row) {
        EXPECT_NEAR(rowSum(context.normalObserver.rgbToLms, row), 1.0, 1e-15);
        EXPECT_NEAR(rowSum(context.anomalousObserver.rgbToLms, row), 1.0, 1e-15);
        EXPECT_NEAR(rowSum(simulation, row), 1.0, 1e-12);
      }
    }
  }
}

}  // namespace
}  // namespace tintora
