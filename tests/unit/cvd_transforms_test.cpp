#include "engine/cvd_transforms.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "algorithms.h"
#include "csv_table.h"
#include "display_recorder.h"
#include "matrix_expectations.h"
#include "reference_observer.h"

namespace tintora {
namespace {

using Algorithm = SimulationAlgorithm;
using CvdTransforms = EngineTest;

Matrix3x3 simulation(CvdType type, double severity, Algorithm algorithm) {
  return computeSimulationMatrix(type, severity, algorithm, false, false);
}

std::string trace(Algorithm algorithm, CvdType type, double severity) {
  return "algorithm " + std::to_string(static_cast<std::uint32_t>(algorithm)) + " type " +
         std::to_string(static_cast<std::uint32_t>(type)) + " severity " + std::to_string(severity);
}

// Every type at every whole percentage.
void forEveryTypeAndPercent(Algorithm algorithm,
                            const std::function<void(CvdType, double, const Matrix3x3&)>& expect) {
  for (const CvdType type : cvdTypes) {
    for (int percent = 0; percent <= 100; ++percent) {
      const double k = percent / 100.0;
      SCOPED_TRACE(trace(algorithm, type, k));
      expect(type, k, simulation(type, k, algorithm));
    }
  }
}

Matrix3x3 judd(CvdType type, double k) {
  switch (type) {
    case CvdType::Protan:
      return {1 - 0.88 * k, 0.88 * k, 0, 0.12 * k, 1 - 0.12 * k, 0, 0, 0, 1};
    case CvdType::Deutan:
      return {1 - 0.72 * k, 0.72 * k, 0, 0.28 * k, 1 - 0.28 * k, 0, 0, 0, 1};
    case CvdType::Tritan:
      break;
  }
  return {1 - 0.216 * k, 0.1054 * k, 0.1106 * k, -0.0271 * k,   1 - 0.1398 * k,
          0.1669 * k,    0.1693 * k, 0.6768 * k, 1 - 0.8461 * k};
}

TEST_F(CvdTransforms, JuddIsLinearInTheSeverity) {
  forEveryTypeAndPercent(Algorithm::Judd1948, [](CvdType type, double k, const Matrix3x3& m) {
    expectSameMatrix(m, judd(type, k));
  });
}

TEST_F(CvdTransforms, JuddProtanAtHalfSeverity) {
  expectSameMatrix(simulation(CvdType::Protan, 0.5, Algorithm::Judd1948),
                   {0.56, 0.44, 0.0, 0.06, 0.94, 0.0, 0.0, 0.0, 1.0});
}

// Between the unchanged colours and the dichromat's.
Matrix3x3 blended(const Matrix3x3& full, double k) {
  Matrix3x3 matrix;
  for (std::size_t i = 0; i < 9; ++i) {
    const long double unchanged = i % 4 == 0 ? 1.0L : 0.0L;
    matrix[i] = static_cast<double>(unchanged * (1.0L - k) + static_cast<long double>(full[i]) * k);
  }
  return matrix;
}

TEST_F(CvdTransforms, Vienot1997BlendsTheFullMatrixIn) {
  constexpr std::array<Matrix3x3, 3> full{{
      {0.222, 1.006, -0.228, 0.191, 0.723, 0.086, -0.01, -0.019, 1.029},
      {0.459, 0.711, -0.17, 0.334, 0.546, 0.12, -0.066, 0.053, 1.013},
      {0.999, 0.093, -0.092, -0.042, 0.883, 0.159, 0.3, 0.795, -0.095},
  }};
  forEveryTypeAndPercent(
      Algorithm::Vienot1997Approximated, [&full](CvdType type, double k, const Matrix3x3& m) {
        expectMatrixNear(m, blended(full[static_cast<std::size_t>(type) - 1], k), 3e-16);
      });
}

// The colour as the dichromat sees it: to cone signals, the missing one replaced, and back.
std::array<long double, 3> vienot1999Colour(CvdType type, long double r, long double g,
                                            long double b) {
  long double L = 17.8824L * r + 43.5161L * g + 4.11935L * b;
  long double M = 3.45565L * r + 27.1554L * g + 3.86714L * b;
  long double S = 0.0299566L * r + 0.184309L * g + 1.46709L * b;
  if (type == CvdType::Protan) L = 2.02344L * M - 2.52581L * S;
  if (type == CvdType::Deutan) M = 0.494207L * L + 1.24827L * S;
  if (type == CvdType::Tritan) S = -0.395913L * L + 0.801109L * M;
  return {0.0809444479L * L - 0.130504409L * M + 0.116721066L * S,
          -0.0102485335L * L + 0.0540193266L * M - 0.113614708L * S,
          -0.000365296938L * L - 0.00412161469L * M + 0.693511405L * S};
}

TEST_F(CvdTransforms, Vienot1999ReplacesTheMissingConesSignal) {
  forEveryTypeAndPercent(Algorithm::Vienot1999, [](CvdType type, double k, const Matrix3x3& m) {
    Matrix3x3 full;
    for (std::size_t channel = 0; channel < 3; ++channel) {
      const auto shown = vienot1999Colour(type, channel == 0 ? 1.0L : 0.0L,
                                          channel == 1 ? 1.0L : 0.0L, channel == 2 ? 1.0L : 0.0L);
      for (std::size_t row = 0; row < 3; ++row) {
        full[3 * row + channel] = static_cast<double>(shown[row]);
      }
    }
    expectMatrixNear(m, blended(full, k), 1e-14);
  });
}

// The published matrix for a severity of so many tenths.
Matrix3x3 machado(CvdType type, std::size_t tenths) {
  static const std::vector<CsvRow> rows = readCsv("machado_2009.csv");
  Matrix3x3 matrix;
  for (std::size_t i = 0; i < 9; ++i) {
    const std::size_t row = 33 * (static_cast<std::size_t>(type) - 1) + 3 * tenths + i / 3;
    matrix[i] = csvNumber(rows.at(row), 3 + i % 3);
  }
  return matrix;
}

TEST_F(CvdTransforms, MachadoInterpolatesBetweenThePublishedSeverities) {
  for (const CvdType type : cvdTypes) {
    for (std::size_t percent = 0; percent <= 100; ++percent) {
      const double k = static_cast<double>(percent) / 100.0;
      SCOPED_TRACE(trace(Algorithm::Machado2009, type, k));
      const Matrix3x3 lower = machado(type, percent / 10);
      const Matrix3x3 upper = machado(type, percent < 100 ? percent / 10 + 1 : 10);
      const double share = static_cast<double>(percent % 10) / 10.0;
      Matrix3x3 expected;
      for (std::size_t i = 0; i < 9; ++i) {
        expected[i] = lower[i] * (1.0 - share) + upper[i] * share;
      }
      expectMatrixNear(simulation(type, k, Algorithm::Machado2009), expected, 1e-15);
    }
  }
}

TEST_F(CvdTransforms, MachadoAt95PercentIsMidwayBetweenTheLastTwoTables) {
  for (const CvdType type : cvdTypes) {
    SCOPED_TRACE(static_cast<std::uint32_t>(type));
    const Matrix3x3 lower = machado(type, 9);
    const Matrix3x3 upper = machado(type, 10);
    Matrix3x3 expected;
    for (std::size_t i = 0; i < 9; ++i) expected[i] = (lower[i] + upper[i]) / 2.0;
    expectMatrixNear(simulation(type, 0.95, Algorithm::Machado2009), expected, 3e-16);
  }
}

TEST_F(CvdTransforms, MachadoAtFullSeverityAddsTheWholeLastDifference) {
  for (const CvdType type : cvdTypes) {
    SCOPED_TRACE(static_cast<std::uint32_t>(type));
    const Matrix3x3 lower = machado(type, 9);
    const Matrix3x3 upper = machado(type, 10);
    Matrix3x3 expected;
    for (std::size_t i = 0; i < 9; ++i) expected[i] = lower[i] + 1.0 * (upper[i] - lower[i]);
    const Matrix3x3 full = simulation(type, 1.0, Algorithm::Machado2009);
    expectSameMatrix(full, expected);
    expectMatrixNear(full, upper, 3e-16);
  }
}

TEST_F(CvdTransforms, MachadoReadsTheTableOfTheContext) {
  modelContext.machadoTable[99 + 9 * 5 + 4] = 42.0;
  EXPECT_EQ(simulation(CvdType::Deutan, 0.5, Algorithm::Machado2009)[4], 42.0);
}

TEST_F(CvdTransforms, YangIsTheSpectralSimulation) {
  for (const double k : {0.2, 0.75, 1.0}) {
    SCOPED_TRACE(k);
    expectMatrixNear(simulation(CvdType::Protan, k, Algorithm::Yang2008),
                     inDoubles(referenceSimulation({420.7, 530.3, 558.9 - 28.6 * k})), 1e-10);
    expectMatrixNear(simulation(CvdType::Deutan, k, Algorithm::Yang2008),
                     inDoubles(referenceSimulation({420.7, 530.3 + 28.6 * k, 558.9})), 1e-10);
    expectMatrixNear(simulation(CvdType::Tritan, k, Algorithm::Yang2008),
                     inDoubles(referenceSimulation({420.7 + 109.6 * k, 530.3, 558.9})), 1e-10);
  }
}

TEST_F(CvdTransforms, SeverityZeroIsTheIdentityForEveryAlgorithmAndType) {
  for (const Algorithm algorithm : algorithms) {
    // Only the spectral one goes through an inverse.
    const double tolerance = algorithm == Algorithm::Yang2008 ? 1e-13 : 0.0;
    for (const CvdType type : cvdTypes) {
      SCOPED_TRACE(trace(algorithm, type, 0.0));
      simulation(type, 1.0, algorithm);
      expectMatrixNear(simulation(type, 0.0, algorithm), identity3x3, tolerance);
      expectMatrixNear(computeSimulationMatrix(type, 0.0, algorithm, false, true), identity3x3,
                       4.0 * tolerance);
    }
  }
}

TEST_F(CvdTransforms, StoresTheInputsAndReturnsTheStoredResult) {
  struct Row {
    CvdType type;
    double severity;
    Algorithm algorithm;
    bool inversion, daltonize;
  };
  for (const Row& row : {Row{CvdType::Deutan, 0.35, Algorithm::Vienot1999, false, false},
                         Row{CvdType::Tritan, 0.6, Algorithm::Machado2009, true, false},
                         Row{CvdType::Protan, 0.85, Algorithm::Yang2008, false, true},
                         Row{CvdType::Deutan, 0.1, Algorithm::Judd1948, true, true}}) {
    SCOPED_TRACE(trace(row.algorithm, row.type, row.severity));
    const Matrix3x3 result = computeSimulationMatrix(row.type, row.severity, row.algorithm,
                                                     row.inversion, row.daltonize);
    EXPECT_EQ(modelContext.modelCvdType, row.type);
    EXPECT_EQ(modelContext.modelSeverity, row.severity);
    EXPECT_EQ(modelContext.Option, row.algorithm);
    EXPECT_EQ(modelContext.Inversion, row.inversion);
    EXPECT_EQ(modelContext.Daltonize, row.daltonize);
    expectSameMatrix(modelContext.simulationMatrix, result);
  }
}

TEST_F(CvdTransforms, KeepsThePlainSimulationAsTheUninvertedMatrix) {
  for (const Algorithm algorithm : algorithms) {
    for (const CvdType type : cvdTypes) {
      SCOPED_TRACE(trace(algorithm, type, 0.7));
      const Matrix3x3 plain = simulation(type, 0.7, algorithm);
      expectSameMatrix(modelContext.uninvertedMatrix, plain);
      for (const bool inversion : {false, true}) {
        for (const bool daltonized : {false, true}) {
          computeSimulationMatrix(type, 0.7, algorithm, inversion, daltonized);
          expectSameMatrix(modelContext.uninvertedMatrix, plain);
        }
      }
    }
  }
}

// The words of the correction: what is lost returns as green and blue.
Matrix3x3 daltonized(const Matrix3x3& s) {
  Matrix3x3 shown;
  for (std::size_t channel = 0; channel < 3; ++channel) {
    const std::array<long double, 3> screen{channel == 0 ? 1.0L : 0.0L, channel == 1 ? 1.0L : 0.0L,
                                            channel == 2 ? 1.0L : 0.0L};
    std::array<long double, 3> lost{};
    for (std::size_t row = 0; row < 3; ++row) {
      lost[row] = screen[row] - (s[3 * row] * screen[0] + s[3 * row + 1] * screen[1] +
                                 s[3 * row + 2] * screen[2]);
    }
    shown[channel] = static_cast<double>(screen[0]);
    shown[3 + channel] = static_cast<double>(screen[1] + 1.4L * lost[0] + 2.0L * lost[1]);
    shown[6 + channel] = static_cast<double>(screen[2] + 1.4L * lost[0] + 2.0L * lost[2]);
  }
  return shown;
}

TEST_F(CvdTransforms, DaltonizeReturnsTheLostColourAsGreenAndBlue) {
  constexpr Matrix3x3 any{0.2, 0.7, -0.3, 0.15, 0.6, 0.35, -0.05, 0.25, 0.9};
  expectMatrixNear(daltonize(any), daltonized(any), 1e-15);
  expectSameMatrix(daltonize(identity3x3), identity3x3);
  for (const Algorithm algorithm : algorithms) {
    for (const CvdType type : cvdTypes) {
      SCOPED_TRACE(trace(algorithm, type, 0.85));
      const Matrix3x3 expected = daltonized(simulation(type, 0.85, algorithm));
      expectMatrixNear(computeSimulationMatrix(type, 0.85, algorithm, false, true), expected,
                       1e-14);
    }
  }
}

TEST_F(CvdTransforms, DaltonizeOfFullJuddProtan) {
  expectMatrixNear(computeSimulationMatrix(CvdType::Protan, 1.0, Algorithm::Judd1948, false, true),
                   {1.0, 0.0, 0.0, 1.4 * 0.88 - 2.0 * 0.12, 1.0 - 1.4 * 0.88 + 2.0 * 0.12, 0.0,
                    1.4 * 0.88, -1.4 * 0.88, 1.0},
                   1e-15);
}

TEST_F(CvdTransforms, DaltonizeWinsOverInversion) {
  const Matrix3x3 both =
      computeSimulationMatrix(CvdType::Tritan, 0.6, Algorithm::Judd1948, true, true);
  expectMatrixNear(both, daltonized(judd(CvdType::Tritan, 0.6)), 1e-15);
}

TEST_F(CvdTransforms, InversionUndoesTheSimulation) {
  for (const Algorithm algorithm : algorithms) {
    for (const CvdType type : cvdTypes) {
      SCOPED_TRACE(trace(algorithm, type, 0.6));
      const Matrix3x3 inverse = computeSimulationMatrix(type, 0.6, algorithm, true, false);
      expectMatrixNear(multiply3x3(simulation(type, 0.6, algorithm), inverse), identity3x3, 1e-12);
    }
  }
}

TEST_F(CvdTransforms, InversionOfAnExactlySingularSimulationShowsTheSimulation) {
  for (const CvdType type : {CvdType::Protan, CvdType::Deutan}) {
    SCOPED_TRACE(static_cast<std::uint32_t>(type));
    simulation(CvdType::Tritan, 0.5, Algorithm::Machado2009);
    const Matrix3x3 shown = computeSimulationMatrix(type, 1.0, Algorithm::Judd1948, true, false);
    expectSameMatrix(shown, judd(type, 1.0));
    expectSameMatrix(modelContext.simulationMatrix, judd(type, 1.0));
    expectSameMatrix(modelContext.uninvertedMatrix, judd(type, 1.0));
  }
}

TEST_F(CvdTransforms, InversionOfANearlySingularSimulationIsShownAsItIs) {
  // Protan: the determinant is 1 - k, the first entry of the inverse (1 - 0.12 k) / (1 - k).
  const double k = 1.0 - 0x1p-30;
  const Matrix3x3 inverse =
      computeSimulationMatrix(CvdType::Protan, k, Algorithm::Judd1948, true, false);
  EXPECT_NEAR(inverse[0] / (0.88 * 0x1p30), 1.0, 1e-6);
  EXPECT_NEAR(inverse[1] / (-0.88 * 0x1p30), 1.0, 1e-6);
}

constexpr auto unknownAlgorithm = static_cast<Algorithm>(5);

TEST_F(CvdTransforms, AnUnknownAlgorithmKeepsThePreviousResult) {
  const Matrix3x3 before = simulation(CvdType::Tritan, 0.6, Algorithm::Judd1948);
  expectSameMatrix(simulation(CvdType::Protan, 0.9, unknownAlgorithm), before);
  expectSameMatrix(modelContext.uninvertedMatrix, before);
  EXPECT_EQ(modelContext.modelCvdType, CvdType::Protan);
  EXPECT_EQ(modelContext.modelSeverity, 0.9);
  EXPECT_EQ(modelContext.Option, unknownAlgorithm);
}

TEST_F(CvdTransforms, AnUnknownAlgorithmTakesThePreviousResultThroughTheLastSteps) {
  const Matrix3x3 once =
      computeSimulationMatrix(CvdType::Tritan, 0.6, Algorithm::Judd1948, false, true);
  const Matrix3x3 twice =
      computeSimulationMatrix(CvdType::Tritan, 0.6, unknownAlgorithm, false, true);
  expectMatrixNear(twice, daltonized(once), 1e-14);
  expectSameMatrix(modelContext.uninvertedMatrix, once);
}

TEST_F(CvdTransforms, AnUnknownTypeKeepsThePreviousResult) {
  const auto unknownType = static_cast<CvdType>(4);
  const Matrix3x3 before = simulation(CvdType::Tritan, 0.6, Algorithm::Judd1948);
  for (const Algorithm algorithm : algorithms) {
    if (algorithm == Algorithm::Yang2008) continue;
    SCOPED_TRACE(trace(algorithm, unknownType, 1.0));
    expectSameMatrix(simulation(unknownType, 1.0, algorithm), before);
  }
}

}  // namespace
}  // namespace tintora
