// Comparing matrices entry by entry, so that a failure names the entry.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cstddef>

#include "engine/effect_matrix.h"
#include "spectral/matrix3x3.h"

namespace tintora {

inline void expectSameMatrix(const Matrix3x3& actual, const Matrix3x3& expected) {
  for (std::size_t i = 0; i < actual.size(); ++i) {
    EXPECT_EQ(actual[i], expected[i]) << "row " << i / 3 << ", column " << i % 3;
  }
}

inline void expectMatrixNear(const Matrix3x3& actual, const Matrix3x3& expected, double tolerance) {
  for (std::size_t i = 0; i < actual.size(); ++i) {
    EXPECT_NEAR(actual[i], expected[i], tolerance) << "row " << i / 3 << ", column " << i % 3;
  }
}

inline void expectSameEffect(const EffectMatrix& actual, const EffectMatrix& expected) {
  for (std::size_t input = 0; input < 5; ++input) {
    for (std::size_t output = 0; output < 5; ++output) {
      EXPECT_EQ(actual[input][output], expected[input][output])
          << "[" << input << "][" << output << "]";
    }
  }
}

// Compares to within the last bits of a float.
inline void expectNearlySameEffect(const EffectMatrix& actual, const EffectMatrix& expected) {
  for (std::size_t input = 0; input < 5; ++input) {
    for (std::size_t output = 0; output < 5; ++output) {
      EXPECT_FLOAT_EQ(actual[input][output], expected[input][output])
          << "[" << input << "][" << output << "]";
    }
  }
}

// The platform's layout of three formulas: for each output channel the coefficients of red, green
// and blue and an offset.
inline EffectMatrix effectOfRows(const std::array<std::array<double, 4>, 3>& rows) {
  const auto at = [&rows](std::size_t row, std::size_t column) {
    return static_cast<float>(rows[row][column]);
  };
  return {{
      {at(0, 0), at(1, 0), at(2, 0), 0.0F, 0.0F},
      {at(0, 1), at(1, 1), at(2, 1), 0.0F, 0.0F},
      {at(0, 2), at(1, 2), at(2, 2), 0.0F, 0.0F},
      {0.0F, 0.0F, 0.0F, 1.0F, 0.0F},
      {at(0, 3), at(1, 3), at(2, 3), 0.0F, 1.0F},
  }};
}

inline EffectMatrix effectOfMatrix(const Matrix3x3& m) {
  return effectOfRows(
      {{{m[0], m[1], m[2], 0.0}, {m[3], m[4], m[5], 0.0}, {m[6], m[7], m[8], 0.0}}});
}

}  // namespace tintora
