#include "expected_effects.h"

#include <cmath>
#include <cstddef>
#include <utility>

namespace tintora::expected {

namespace {

constexpr Weights identity{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
constexpr std::array<double, 3> greyWeights{0.2989, 0.587, 0.114};

Weights product(const Weights& a, const Weights& b) {
  Weights result{};
  for (std::size_t row = 0; row < 3; ++row) {
    for (std::size_t column = 0; column < 3; ++column) {
      for (std::size_t k = 0; k < 3; ++k) result[row][column] += a[row][k] * b[k][column];
    }
  }
  return result;
}

Weights sum(const Weights& a, const Weights& b, double factor) {
  Weights result = a;
  for (std::size_t row = 0; row < 3; ++row) {
    for (std::size_t column = 0; column < 3; ++column) {
      result[row][column] += factor * b[row][column];
    }
  }
  return result;
}

}  // namespace

ColourEffect effectOf(const Weights& weights, const Offsets& offsets) {
  ColourEffect effect = identityEffect;
  for (std::size_t output = 0; output < 3; ++output) {
    for (std::size_t input = 0; input < 3; ++input) {
      effect[5 * input + output] = static_cast<float>(weights[output][input]);
    }
    effect[20 + output] = static_cast<float>(offsets[output]);
  }
  return effect;
}

Weights juddProtan(double k) {
  return {{{1 - 0.88 * k, 0.88 * k, 0}, {0.12 * k, 1 - 0.12 * k, 0}, {0, 0, 1}}};
}
Weights juddDeutan(double k) {
  return {{{1 - 0.72 * k, 0.72 * k, 0}, {0.28 * k, 1 - 0.28 * k, 0}, {0, 0, 1}}};
}
Weights juddTritan(double k) {
  return {{{1 - 0.216 * k, 0.1054 * k, 0.1106 * k},
           {-0.0271 * k, 1 - 0.1398 * k, 0.1669 * k},
           {0.1693 * k, 0.6768 * k, 1 - 0.8461 * k}}};
}

Weights machadoProtan() {
  return {{{0.152286, 1.052583, -0.204868},
           {0.114503, 0.786281, 0.099216},
           {-0.003882, -0.048116, 1.051998}}};
}

Weights vienot1997Protan() {
  return {{{0.222, 1.006, -0.228}, {0.191, 0.723, 0.086}, {-0.01, -0.019, 1.029}}};
}

// Goes to cone signals and back, with the long-wave signal computed from the other two.
Weights vienot1999Protan() {
  constexpr Weights toCones{
      {{17.8824, 43.5161, 4.11935}, {3.45565, 27.1554, 3.86714}, {0.0299566, 0.184309, 1.46709}}};
  constexpr Weights fromCones{{{0.0809444479, -0.130504409, 0.116721066},
                               {-0.0102485335, 0.0540193266, -0.113614708},
                               {-0.000365296938, -0.00412161469, 0.693511405}}};
  constexpr Weights projection{{{0, 2.02344, -2.52581}, {0, 1, 0}, {0, 0, 1}}};
  return product(fromCones, product(projection, toCones));
}

// Computed by tests/reference in exact arithmetic.
Weights yangDeutanAt60() {
  return {{{0.58262974, 0.19407052, 0.22329973},
           {0.19285864, 0.91032380, -0.10318245},
           {-0.00089610, 0.00041667, 1.00047946}}};
}

Weights daltonized(const Weights& simulation) {
  constexpr Weights spread{{{0, 0, 0}, {1.4, 2.0, 0}, {1.4, 0, 2.0}}};
  return sum(identity, product(spread, sum(identity, simulation, -1)), 1);
}

// By Cramer's rule.
Weights inverse(const Weights& m) {
  const auto minor = [&](std::size_t row, std::size_t column) {
    const auto at = [&](std::size_t i, std::size_t j) {
      return m[(row + i) % 3][(column + j) % 3];
    };
    return at(1, 1) * at(2, 2) - at(1, 2) * at(2, 1);
  };
  const double determinant = m[0][0] * minor(0, 0) + m[0][1] * minor(0, 1) + m[0][2] * minor(0, 2);
  Weights result{};
  for (std::size_t row = 0; row < 3; ++row) {
    for (std::size_t column = 0; column < 3; ++column) {
      result[row][column] = minor(column, row) / determinant;
    }
  }
  return result;
}

ColourEffect greyscale() {
  return effectOf({greyWeights, greyWeights, greyWeights});
}

ColourEffect inverted() {
  return effectOf({{{-1, 0, 0}, {0, -1, 0}, {0, 0, -1}}}, {1, 1, 1});
}

ColourEffect brightened(double brightness) {
  return effectOf(identity, {brightness, brightness, brightness});
}

ColourEffect withContrast(double c) {
  const double offset = (1 - c) / 2;
  return effectOf({{{c, 0, 0}, {0, c, 0}, {0, 0, c}}}, {offset, offset, offset});
}

ColourEffect withSaturation(double s) {
  const Weights grey{greyWeights, greyWeights, greyWeights};
  return effectOf(sum(sum({}, identity, s), grey, 1 - s));
}

ColourEffect filtered(const std::array<double, 3>& passed, double strength) {
  Weights weights{};
  for (std::size_t channel = 0; channel < 3; ++channel) {
    weights[channel][channel] = 1 - (1 - passed[channel]) * strength;
  }
  return effectOf(weights);
}

ColourEffect circadian(double brightness) {
  return effectOf(
      {{{0.1 + 0.9 * brightness, 0, 0}, {0, 0.065 + 0.585 * brightness, 0}, {0, 0, 0}}});
}

ColourEffect swapped(std::size_t one, std::size_t other, double strength) {
  Weights exchanged = identity;
  std::swap(exchanged[one], exchanged[other]);
  return effectOf(sum(sum({}, identity, 1 - strength), exchanged, strength));
}

testing::AssertionResult areEqual(const ColourEffect& actual, const ColourEffect& expected) {
  constexpr float tolerance = 1e-6F;
  for (std::size_t i = 0; i < actual.size(); ++i) {
    if (std::abs(actual[i] - expected[i]) <= tolerance) continue;
    return testing::AssertionFailure() << "row " << i / 5 << ", column " << i % 5 << " is "
                                       << actual[i] << " instead of " << expected[i];
  }
  return testing::AssertionSuccess();
}

}  // namespace tintora::expected
