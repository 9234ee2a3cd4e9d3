#include "engine/colour_simulation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <random>
#include <string>

#include "algorithms.h"
#include "engine/brettel_1997.h"
#include "engine/cvd_transforms.h"
#include "engine/srgb.h"

namespace tintora {
namespace {

using Vector = std::array<double, 3>;

// Computes cone responses from linear R, G, B by the published numbers, independently of the
// engine.
Vector coneResponses(const Vector& rgb) {
  const double x = 0.409568 * rgb[0] + 0.355041 * rgb[1] + 0.179167 * rgb[2];
  const double y = 0.213389 * rgb[0] + 0.706743 * rgb[1] + 0.0798680 * rgb[2];
  const double z = 0.0186297 * rgb[0] + 0.114620 * rgb[1] + 0.912367 * rgb[2];
  return {0.15514 * x + 0.54312 * y - 0.03286 * z, -0.15514 * x + 0.45684 * y + 0.03286 * z,
          0.01608 * z};
}

double volume(const Vector& a, const Vector& b, const Vector& c) {
  return a[0] * (b[1] * c[2] - b[2] * c[1]) - a[1] * (b[0] * c[2] - b[2] * c[0]) +
         a[2] * (b[0] * c[1] - b[1] * c[0]);
}

Vector product(const Matrix3x3& m, const Vector& v) {
  return {m[0] * v[0] + m[1] * v[1] + m[2] * v[2], m[3] * v[0] + m[4] * v[1] + m[5] * v[2],
          m[6] * v[0] + m[7] * v[1] + m[8] * v[2]};
}

Vector onHalfPlane(const HalfPlanes& halfPlanes, const Vector& rgb) {
  const Vector& d = halfPlanes.division;
  const bool second = d[0] * rgb[0] + d[1] * rgb[1] + d[2] * rgb[2] < 0.0;
  return product(halfPlanes.projections[second ? 1 : 0], rgb);
}

Vector randomColour(std::mt19937& random) {
  std::uniform_real_distribution<double> channel(0.0, 1.0);
  return {channel(random), channel(random), channel(random)};
}

TEST(Srgb, TheTransferFunctionIsThatOfIec61966) {
  EXPECT_EQ(decodeSrgb(0.0), 0.0);
  EXPECT_EQ(decodeSrgb(1.0), 1.0);
  EXPECT_NEAR(decodeSrgb(0.5), 0.214041140482232, 1e-14);
  EXPECT_NEAR(decodeSrgb(0.04), 0.04 / 12.92, 1e-16);
  EXPECT_NEAR(decodeSrgb(0.05), std::exp(2.4 * std::log(0.105 / 1.055)), 1e-15);
  EXPECT_NEAR(encodeSrgb(0.18), 0.461356129500442, 1e-14);
  EXPECT_NEAR(encodeSrgb(0.003), 0.03876, 1e-15);
}

// The line and the curve miss each other by some 1e-8 where they meet.
TEST(Srgb, TheLineEndsAtThePublishedLimits) {
  constexpr double encoded = 0.04045;
  constexpr double linear = 0.0031308;
  EXPECT_EQ(decodeSrgb(encoded), encoded / 12.92);
  EXPECT_EQ(encodeSrgb(linear), linear * 12.92);
  const double above = encoded + 1e-9;
  EXPECT_NEAR(decodeSrgb(above), std::exp(2.4 * std::log((above + 0.055) / 1.055)), 1e-15);
  const double brighter = linear + 1e-9;
  EXPECT_NEAR(encodeSrgb(brighter), 1.055 * std::exp(std::log(brighter) / 2.4) - 0.055, 1e-15);
}

TEST(Srgb, EncodingUndoesDecodingForEveryStepOf16Bits) {
  for (int step = 0; step <= 65535; ++step) {
    const double value = step / 65535.0;
    ASSERT_NEAR(encodeSrgb(decodeSrgb(value)), value, 1e-7) << step;
  }
}

TEST(Brettel1997, KeepsTheTwoRemainingConesAndLandsOnTheHalfPlaneOfItsSide) {
  struct Case {
    CvdType type;
    std::size_t missing;
    std::array<Vector, 2> anchors;  // X, Y, Z as published
  };
  const std::array<Case, 3> cases{{
      {CvdType::Protan, 0, {{{0.13287, 0.11284, 0.94220}, {0.84394, 0.91558, 0.00197}}}},
      {CvdType::Deutan, 1, {{{0.13287, 0.11284, 0.94220}, {0.84394, 0.91558, 0.00197}}}},
      {CvdType::Tritan, 2, {{{0.05699, 0.16987, 0.58640}, {0.16161, 0.06100, 0.00001}}}},
  }};
  const Vector whiteCones = coneResponses({1.0, 1.0, 1.0});
  std::mt19937 random(1997);
  for (const auto& [type, missing, anchors] : cases) {
    Vector axis{};
    axis[missing] = 1.0;
    const HalfPlanes halfPlanes = simulateOnHalfPlanes(type, 1.0);
    std::array<int, 2> met{};
    for (int i = 0; i < 200; ++i) {
      const Vector colour = randomColour(random);
      const Vector before = coneResponses(colour);
      const Vector after = coneResponses(onHalfPlane(halfPlanes, colour));
      for (std::size_t cone = 0; cone < 3; ++cone) {
        if (cone == missing) continue;
        ASSERT_NEAR(after[cone], before[cone], 1e-12);
      }
      // Choose the anchor on the colour's side of the plane through white and the missing cone's
      // axis.
      std::size_t side = 2;
      for (std::size_t k = 0; k < 2; ++k) {
        const Vector& xyz = anchors[k];
        const Vector anchor{0.15514 * xyz[0] + 0.54312 * xyz[1] - 0.03286 * xyz[2],
                            -0.15514 * xyz[0] + 0.45684 * xyz[1] + 0.03286 * xyz[2],
                            0.01608 * xyz[2]};
        if (volume(whiteCones, axis, anchor) * volume(whiteCones, axis, before) <= 0.0) continue;
        side = k;
        ASSERT_NEAR(volume(whiteCones, anchor, after), 0.0, 1e-12)
            << "type " << static_cast<int>(type);
      }
      ASSERT_LT(side, 2U);
      ++met[side];
    }
    EXPECT_GT(met[0], 10);
    EXPECT_GT(met[1], 10);
  }
}

TEST(Brettel1997, LeavesGreysAlwaysAndColoursAtSeverityZero) {
  std::mt19937 random(1);
  for (const CvdType type : cvdTypes) {
    for (const double level : {0.0, 0.2, 0.5, 1.0}) {
      const ColourTransform simulation =
          makeSimulation({type, 1.0, SimulationAlgorithm::Brettel1997});
      for (const double shown : transformColour(simulation, {level, level, level})) {
        EXPECT_NEAR(shown, level, 1e-6);
      }
    }
    const ColourTransform none = makeSimulation({type, 0.0, SimulationAlgorithm::Brettel1997});
    const Vector colour = randomColour(random);
    const Colour shown = transformColour(none, colour);
    for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(shown[i], colour[i], 1e-7);
  }
}

TEST(Brettel1997, SeverityInterpolatesInLinearLight) {
  std::mt19937 random(2);
  for (const CvdType type : cvdTypes) {
    const HalfPlanes full = simulateOnHalfPlanes(type, 1.0);
    const HalfPlanes part = simulateOnHalfPlanes(type, 0.3);
    for (int i = 0; i < 50; ++i) {
      const Vector colour = randomColour(random);
      const Vector whole = onHalfPlane(full, colour);
      const Vector shown = onHalfPlane(part, colour);
      for (std::size_t k = 0; k < 3; ++k) {
        ASSERT_NEAR(shown[k], 0.7 * colour[k] + 0.3 * whole[k], 1e-12);
      }
    }
  }
}

TEST(ColourSimulation, MatrixAlgorithmsApplyTheModelsMatrixInEitherLight) {
  std::mt19937 random(3);
  for (const SimulationAlgorithm algorithm :
       {SimulationAlgorithm::Judd1948, SimulationAlgorithm::Yang2008,
        SimulationAlgorithm::Machado2009, SimulationAlgorithm::Vienot1997Approximated,
        SimulationAlgorithm::Vienot1999}) {
    for (const CvdType type : cvdTypes) {
      initialiseModelContext(modelContext);
      const Matrix3x3 matrix = computeSimulationMatrix(type, 0.6, algorithm, false, false);
      EXPECT_EQ(simulationMatrix(type, 0.6, algorithm), matrix);
      const Vector colour = randomColour(random);
      const Vector encoded = product(matrix, colour);
      const Vector linear =
          product(matrix, {decodeSrgb(colour[0]), decodeSrgb(colour[1]), decodeSrgb(colour[2])});
      const Colour shownEncoded =
          transformColour(makeSimulation({type, 0.6, algorithm, Light::Encoded}), colour);
      const Colour shownLinear =
          transformColour(makeSimulation({type, 0.6, algorithm, Light::Linear}), colour);
      for (std::size_t k = 0; k < 3; ++k) {
        EXPECT_NEAR(shownEncoded[k], std::clamp(encoded[k], 0.0, 1.0), 1e-14);
        EXPECT_NEAR(shownLinear[k], encodeSrgb(std::clamp(linear[k], 0.0, 1.0)), 1e-14);
      }
    }
  }
}

TEST(ColourSimulation, ComputingOneLeavesTheProgramsModelAlone) {
  modelContext = {};
  initialiseModelContext(modelContext);
  modelContext.simulationMatrix = {1, 2, 3, 4, 5, 6, 7, 8, 9};
  const Matrix3x3 before = modelContext.simulationMatrix;
  makeSimulation({CvdType::Tritan, 0.5, SimulationAlgorithm::Yang2008});
  EXPECT_EQ(modelContext.simulationMatrix, before);
  EXPECT_EQ(modelContext.modelCvdType, CvdType::Protan);
  modelContext = {};
}

TEST(ColourSimulation, TheInverseUndoesWhatASimulationBelowFullSeverityDoes) {
  // Colours well within the cube, so that nothing is clamped on the way.
  std::mt19937 random(4);
  for (const SimulationAlgorithm algorithm :
       {SimulationAlgorithm::Machado2009, SimulationAlgorithm::Brettel1997}) {
    for (const CvdType type : cvdTypes) {
      const ColourSimulation simulation{type, 0.4, algorithm, Light::Linear};
      for (int i = 0; i < 50; ++i) {
        Vector colour = randomColour(random);
        for (double& channel : colour) channel = 0.5 + 0.15 * channel;
        const Colour simulated = transformColour(makeSimulation(simulation), colour);
        const Colour back =
            transformColour(makeSimulation(simulation, SimulationUse::Invert), simulated);
        for (std::size_t k = 0; k < 3; ++k) ASSERT_NEAR(back[k], colour[k], 1e-6);
      }
    }
  }
}

TEST(ColourSimulation, DaltonizeAddsWhatIsLostOnEachHalfPlane) {
  const ColourSimulation simulation{CvdType::Deutan, 1.0, SimulationAlgorithm::Brettel1997};
  const HalfPlanes halfPlanes = simulateOnHalfPlanes(CvdType::Deutan, 1.0);
  const ColourTransform corrected = makeSimulation(simulation, SimulationUse::Daltonize);
  EXPECT_EQ(corrected.division, halfPlanes.division);
  for (std::size_t side = 0; side < 2; ++side) {
    EXPECT_EQ(corrected.effects[side].matrix, daltonize(halfPlanes.projections[side]));
  }
}

TEST(ColourTransform, AppliesOffsetsAndClampsWhatIsNoColour) {
  EffectMatrix matrix = identityEffectMatrix;
  matrix[0][0] = std::numeric_limits<float>::quiet_NaN();
  matrix[1][1] = -1.0F;
  matrix[4][1] = 1.0F;
  matrix[4][2] = 3.0F;
  const Colour shown = transformColour(makeColourTransform(matrix, Light::Encoded), {0.5, 0.25, 0});
  EXPECT_EQ(shown, (Colour{0.0, 0.75, 1.0}));
}

TEST(ColourTransform, MixesChannelsAsTheEffectMatrixLaysThemDown) {
  EffectMatrix matrix = identityEffectMatrix;
  matrix[2][0] = 0.5F;  // of blue, in red
  const Colour shown =
      transformColour(makeColourTransform(matrix, Light::Encoded), {0.25, 0.5, 0.75});
  EXPECT_EQ(shown, (Colour{0.625, 0.5, 0.75}));
}

}  // namespace
}  // namespace tintora
