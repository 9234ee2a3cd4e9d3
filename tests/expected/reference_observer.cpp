#include "reference_observer.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <string>
#include <utility>

#include "csv_table.h"

namespace tintora {

namespace {

long double wavelength(std::size_t sample) {
  return 360.0L + static_cast<long double>(sample);
}

// Returns a density table that starts at 391 nm, with a constant before it.
ReferenceCurve referenceDensity(const std::string& file, long double head) {
  ReferenceCurve curve;
  curve.fill(head);
  for (const CsvRow& row : readCsv(file)) {
    const std::size_t nanometres = std::stoul(row.at(0));
    if (nanometres >= 391) curve.at(nanometres - 360) = std::stold(row.at(1));
  }
  return curve;
}

}  // namespace

ReferenceCurve referenceLensDensity() {
  return referenceDensity("lens_density_1nm.csv", 2.5122L);
}

ReferenceCurve referenceMacularDensity() {
  return referenceDensity("macular_density_1nm.csv", 0.04533L);
}

ReferenceCurve referenceTransmittance() {
  const ReferenceCurve lens = referenceLensDensity();
  const ReferenceCurve macular = referenceMacularDensity();
  ReferenceCurve curve;
  for (std::size_t i = 0; i < curve.size(); ++i) {
    curve[i] = 1.0L / (std::pow(10.0L, lens[i]) * std::pow(10.0L, macular[i]));
  }
  return curve;
}

ReferenceCurve referenceGaussian(long double amplitude, long double peak, long double width) {
  ReferenceCurve curve;
  for (std::size_t i = 0; i < curve.size(); ++i) {
    const long double deviations = (wavelength(i) - peak) / width;
    curve[i] = amplitude / std::sqrt(std::exp(deviations * deviations));
  }
  return curve;
}

ReferenceCurve referenceTemplate(long double peak) {
  constexpr std::array<long double, 8> coefficients{-188862.9708L, 90228.96671L, -2483.531554L,
                                                    -6675.007924L, 1813.525992L, -215.1778885L,
                                                    12.48755862L,  -0.289541501L};
  ReferenceCurve curve;
  for (std::size_t i = 0; i < curve.size(); ++i) {
    const long double x = std::log10(wavelength(i) * 558.0L / peak);
    long double exponent = 0.0L;
    for (std::size_t term = 0; term < coefficients.size(); ++term) {
      exponent += coefficients[term] * std::pow(x, 2.0L * static_cast<long double>(term));
    }
    curve[i] = std::pow(10.0L, exponent);
  }
  return curve;
}

ReferenceCurve referenceAbsorptance(const ReferenceCurve& absorbance, long double density) {
  ReferenceCurve curve;
  std::ranges::transform(absorbance, curve.begin(), [density](long double a) {
    return (1.0L - std::pow(10.0L, -density * a)) / (1.0L - std::pow(10.0L, -density));
  });
  return curve;
}

ReferenceCurve referenceCone(long double peak, long double density) {
  static const ReferenceCurve transmittance = referenceTransmittance();
  ReferenceCurve curve = referenceAbsorptance(referenceTemplate(peak), density);
  for (std::size_t i = 0; i < curve.size(); ++i) curve[i] *= transmittance[i];
  const long double largest = *std::ranges::max_element(curve);
  for (long double& sample : curve) sample /= largest;
  return curve;
}

ReferenceCurves referenceCones(const ConeValues& peaks, const ConeValues& densities) {
  return {referenceCone(peaks.L, densities.L), referenceCone(peaks.M, densities.M),
          referenceCone(peaks.S, densities.S)};
}

ReferenceCurves referenceOpponents(const ReferenceCurves& cones) {
  constexpr ReferenceMatrix weights{{
      {0.6L, 0.4L, 0.0L},
      {0.24L, 0.105L, -0.7L},
      {1.2L, -1.6L, 0.4L},
  }};
  ReferenceCurves opponents{};
  for (std::size_t curve = 0; curve < 3; ++curve) {
    for (std::size_t cone = 0; cone < 3; ++cone) {
      for (std::size_t i = 0; i < 401; ++i) {
        opponents[curve][i] += weights[curve][cone] * cones[cone][i];
      }
    }
  }
  return opponents;
}

ReferenceMatrix referenceResponses(const ReferenceCurves& curves) {
  const ReferenceCurves primaries{referenceGaussian(1.0L, 620.0L, 10.0L),
                                  referenceGaussian(1.0L, 549.0L, 10.0L),
                                  referenceGaussian(1.0L, 469.0L, 10.0L)};
  ReferenceMatrix matrix{};
  for (std::size_t row = 0; row < 3; ++row) {
    long double white = 0.0L;
    for (std::size_t column = 0; column < 3; ++column) {
      for (std::size_t i = 0; i < 401; ++i) {
        matrix[row][column] += curves[row][i] * primaries[column][i];
      }
      white += matrix[row][column];
    }
    for (long double& entry : matrix[row]) entry /= white;
  }
  return matrix;
}

ReferenceMatrix referenceProduct(const ReferenceMatrix& a, const ReferenceMatrix& b) {
  ReferenceMatrix product{};
  for (std::size_t k = 0; k < 3; ++k) {
    for (std::size_t row = 0; row < 3; ++row) {
      for (std::size_t column = 0; column < 3; ++column) {
        product[row][column] += a[row][k] * b[k][column];
      }
    }
  }
  return product;
}

ReferenceMatrix referenceInverse(ReferenceMatrix matrix) {
  ReferenceMatrix inverse{{{1.0L, 0.0L, 0.0L}, {0.0L, 1.0L, 0.0L}, {0.0L, 0.0L, 1.0L}}};
  for (std::size_t column = 0; column < 3; ++column) {
    std::size_t pivot = column;
    for (std::size_t row = column; row < 3; ++row) {
      if (std::abs(matrix[row][column]) > std::abs(matrix[pivot][column])) pivot = row;
    }
    std::swap(matrix[column], matrix[pivot]);
    std::swap(inverse[column], inverse[pivot]);
    const long double scale = matrix[column][column];
    for (std::size_t i = 0; i < 3; ++i) {
      matrix[column][i] /= scale;
      inverse[column][i] /= scale;
    }
    for (std::size_t row = 0; row < 3; ++row) {
      if (row == column) continue;
      const long double share = matrix[row][column];
      for (std::size_t i = 0; i < 3; ++i) {
        matrix[row][i] -= share * matrix[column][i];
        inverse[row][i] -= share * inverse[column][i];
      }
    }
  }
  return inverse;
}

ReferenceMatrix referenceSimulation(const ConeValues& anomalousPeaks) {
  constexpr ConeValues peaks{420.7, 530.3, 558.9};
  constexpr ConeValues densities{0.35, 0.35, 0.35};
  return referenceProduct(referenceInverse(referenceResponses(referenceCones(peaks, densities))),
                          referenceResponses(referenceCones(anomalousPeaks, densities)));
}

Matrix3x3 inDoubles(const ReferenceMatrix& matrix) {
  Matrix3x3 doubles;
  for (std::size_t i = 0; i < doubles.size(); ++i) {
    doubles[i] = static_cast<double>(matrix[i / 3][i % 3]);
  }
  return doubles;
}

}  // namespace tintora
