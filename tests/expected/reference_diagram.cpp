#include "reference_diagram.h"

#include <algorithm>
#include <cmath>

#include "csv_table.h"
#include "reference_observer.h"

namespace tintora {

namespace {

constexpr std::array<std::size_t, 24> labelled{460, 470, 475, 480, 485, 490, 495, 500,
                                               505, 510, 520, 530, 540, 550, 560, 570,
                                               580, 590, 600, 610, 620, 630, 650, 440};

using Tristimulus = std::array<long double, 3>;

// x-bar, y-bar and z-bar at each wavelength from 360 nm.
const std::vector<Tristimulus>& observer() {
  static const std::vector<Tristimulus> functions = [] {
    std::vector<Tristimulus> rows;
    for (const CsvRow& row : readCsv("cie_1931_2deg_1nm.csv")) {
      rows.push_back({std::stold(row.at(1)), std::stold(row.at(2)), std::stold(row.at(3))});
    }
    return rows;
  }();
  return functions;
}

ReferencePoint chromaticity(const Tristimulus& colour) {
  const long double sum = colour[0] + colour[1] + colour[2];
  return {colour[0] / sum, colour[1] / sum};
}

Tristimulus primary(long double peak) {
  const ReferenceCurve spectrum = referenceGaussian(1.0L, peak, 10.0L);
  Tristimulus sum{};
  for (std::size_t i = 0; i < spectrum.size(); ++i) {
    for (std::size_t j = 0; j < 3; ++j) sum[j] += spectrum[i] * observer().at(i)[j];
  }
  return sum;
}

const std::array<Tristimulus, 3>& primaries() {
  static const std::array<Tristimulus, 3> all{primary(620.0L), primary(549.0L), primary(469.0L)};
  return all;
}

ExpectedVertex grey(const ReferencePoint& place) {
  return {place.x, place.y, 0.0L, 180.0L, 180.0L, 180.0L};
}

ReferencePoint step(std::size_t nanometres) {
  const ReferencePoint from = referencePlace(referenceChromaticity(nanometres - 1));
  const ReferencePoint to = referencePlace(referenceChromaticity(nanometres));
  return {to.x - from.x, to.y - from.y};
}

// Returns the end of a tick mark: a quarter turn to the left of the direction of the locus.
ReferencePoint tick(std::size_t nanometres) {
  const ReferencePoint place = referencePlace(referenceChromaticity(nanometres));
  const auto [dx, dy] = step(nanometres);
  const long double left = std::atan2(dy, dx) + std::acos(0.0L);
  return {place.x + std::cos(left) / 40.0L, place.y + std::sin(left) / 40.0L};
}

}  // namespace

ReferencePoint referenceChromaticity(std::size_t nanometres) {
  return chromaticity(observer().at(nanometres - 360));
}

ReferencePoint referencePlace(const ReferencePoint& point) {
  return {4.0L * (point.x - 0.35L), 4.0L * (point.y - 0.45L)};
}

ExpectedVertices referenceLocus() {
  ExpectedVertices locus;
  for (std::size_t nanometres = 360; nanometres < 760; ++nanometres) {
    const ExpectedVertex here = grey(referencePlace(referenceChromaticity(nanometres)));
    locus.push_back(here);
    if (std::ranges::find(labelled, nanometres) == labelled.end()) continue;
    locus.push_back(grey(tick(nanometres)));
    locus.push_back(here);
  }
  return locus;
}

std::vector<ReferenceLabel> referenceLabels() {
  std::vector<ReferenceLabel> labels;
  for (const std::size_t nanometres : labelled) {
    labels.push_back({std::to_string(nanometres), tick(nanometres), step(nanometres).y > 0.0L});
  }
  return labels;
}

std::vector<ReferenceColour> referenceMeshColours() {
  std::vector<ReferenceColour> colours;
  for (int patch = 0; patch < 3; ++patch) {
    for (int number = 0; number < 400; ++number) {
      const int row = number / 20;
      const long double u = 255.0L * static_cast<long double>(row) / 19.0L;
      const long double v = 255.0L * static_cast<long double>(number % 20) / 19.0L;
      if (patch == 0) colours.push_back({255.0L, u, v});
      if (patch == 1) colours.push_back({u, 255.0L, v});
      if (patch == 2) colours.push_back({v, u, 255.0L});
    }
  }
  return colours;
}

// From one primary to the next, first the new component grows, then the old one fades.
std::vector<ReferenceColour> referenceEdgeColours() {
  constexpr std::array<std::array<std::size_t, 2>, 3> ends{{{2, 0}, {0, 1}, {1, 2}}};
  std::vector<ReferenceColour> colours;
  for (const auto& [from, to] : ends) {
    for (int k = 0; k < 40; ++k) {
      const long double share = static_cast<long double>(k) / 39.0L;
      ReferenceColour colour{};
      colour[to] = share < 0.5L ? 255.0L * share / (1.0L - share) : 255.0L;
      colour[from] = share < 0.5L ? 255.0L : 255.0L * (1.0L - share) / share;
      colours.push_back(colour);
    }
  }
  return colours;
}

ExpectedVertex referenceVertex(const ReferenceColour& colour) {
  Tristimulus sum{};
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) sum[j] += colour[i] / 255.0L * primaries()[i][j];
  }
  const auto [x, y] = referencePlace(chromaticity(sum));
  return {x, y, 0.0L, colour[0], colour[1], colour[2]};
}

ExpectedVertex referenceVertex(const ReferenceColour& colour, const Matrix3x3& matrix) {
  ReferenceColour seen{};
  for (std::size_t row = 0; row < 3; ++row) {
    for (std::size_t column = 0; column < 3; ++column) {
      seen[row] += static_cast<long double>(matrix[3 * row + column]) * colour[column];
    }
  }
  const long double brightness = *std::ranges::max_element(seen) / 255.0L;
  for (long double& component : seen) component = std::max(0.0L, component / brightness);
  return referenceVertex(seen);
}

}  // namespace tintora
