// The geometry of the views, computed independently.
#include <cmath>
#include <cstddef>
#include <numbers>
#include <utility>

#include "reference_diagram.h"
#include "reference_observer.h"
#include "seen_view.h"

namespace tintora::desktop_test {

namespace {

using Parts = std::array<double, 3>;  // of red, green and blue, 0 to 1

constexpr double scale = 4.0 / 5.5;  // of all points, before an eye at a distance of 5.5
constexpr double whole = 255.0;

double radians(double degrees) {
  return degrees * std::numbers::pi / 180.0;
}

// Returns the point of a colour: red grows to the left, green upwards and blue away from the eye.
// The components of a vertex are whole numbers.
SpacePoint pointOf(const Parts& parts) {
  SpacePoint point{1 - 2 * parts[0], 2 * parts[1] - 1, 2 * parts[2] - 1};
  for (std::size_t i = 0; i < 3; ++i) {
    // Keeps whole numbers that rounding has made slightly smaller.
    point.colour[i] = std::floor(whole * std::min(std::max(parts[i], 0.0), 1.0) + 1e-9);
  }
  return point;
}

Parts transformed(const Parts& parts, const Weights& weights) {
  Parts result{};
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) result[i] += weights[i][j] * parts[j];
  }
  return result;
}

// Turns a point by a drag in both directions at once: first about the vertical axis, then about the
// horizontal one, both in their positions before the drag.
void turn(SpacePoint& point, const Turn& by) {
  const auto rotate = [](double& from, double& to, double degrees) {
    const double along = from;
    const double across = to;
    from = along * std::cos(radians(degrees)) - across * std::sin(radians(degrees));
    to = along * std::sin(radians(degrees)) + across * std::cos(radians(degrees));
  };
  rotate(point.y, point.x, by.clockwise);
  rotate(point.z, point.y, by.down);
  rotate(point.z, point.x, -by.right);
}

Parts corner(std::size_t number) {
  return {(number & 1) != 0 ? 1.0 : 0.0, (number & 2) != 0 ? 1.0 : 0.0,
          (number & 4) != 0 ? 1.0 : 0.0};
}

// The triangles that form the cube's sides, by the numbers of corners. The bits of a number are
// red, green and blue.
constexpr std::array<std::array<std::size_t, 3>, 12> cubeTriangles{{
    {1, 3, 2},
    {1, 2, 0},
    {5, 6, 7},
    {5, 4, 6},
    {5, 7, 3},
    {5, 3, 1},
    {0, 2, 6},
    {0, 6, 4},
    {3, 7, 6},
    {3, 6, 2},
    {5, 1, 0},
    {5, 0, 4},
}};

// Returns the twelve edges, and the axis from black to white.
std::vector<std::pair<std::size_t, std::size_t>> frameLines() {
  std::vector<std::pair<std::size_t, std::size_t>> lines;
  for (std::size_t from = 0; from < 8; ++from) {
    for (const std::size_t bit : {1U, 2U, 4U}) {
      if ((from & bit) == 0) lines.emplace_back(from, from | bit);
    }
  }
  lines.emplace_back(0, 7);
  return lines;
}

SpacePoint pointOf(const ExpectedVertex& vertex) {
  const auto component = [](long double value) {
    return static_cast<double>(std::floor(value + 1e-9L));
  };
  return {static_cast<double>(vertex.x),
          static_cast<double>(vertex.y),
          static_cast<double>(vertex.z),
          {component(vertex.red), component(vertex.green), component(vertex.blue)}};
}

// Applies the scale at which everything is drawn.
void shrink(SpacePoint& point) {
  point.x *= scale;
  point.y *= scale;
  point.z *= scale;
}

void addStrip(Shapes& shapes, const std::vector<SpacePoint>& points) {
  for (std::size_t i = 1; i < points.size(); ++i) {
    Shape line{{points[i - 1], points[i]}};
    for (SpacePoint& point : line.points) shrink(point);
    shapes.push_back(line);
  }
}

Matrix3x3 inRows(const Weights& weights) {
  Matrix3x3 matrix{};
  for (std::size_t i = 0; i < 9; ++i) matrix[i] = weights[i / 3][i % 3];
  return matrix;
}

void addGamut(Shapes& shapes, const Weights& weights) {
  std::vector<SpacePoint> grid;
  for (const ReferenceColour& colour : referenceMeshColours()) {
    grid.push_back(pointOf(referenceVertex(colour, inRows(weights))));
    shrink(grid.back());
  }
  constexpr std::size_t side = 20;
  constexpr std::size_t patch = side * side;
  for (std::size_t i = 0; i < grid.size(); ++i) {
    const std::size_t row = i % patch / side;
    const std::size_t column = i % side;
    if (row + 1 == side || column + 1 == side) continue;
    shapes.push_back({{grid[i], grid[i + 1], grid[i + side]}});
    shapes.push_back({{grid[i + 1], grid[i + side + 1], grid[i + side]}});
  }
}

}  // namespace

Shapes cubeShapes(const Weights& weights, const Turns& turns) {
  Shapes shapes;
  const auto place = [&](const Parts& parts) {
    SpacePoint point = pointOf(parts);
    shrink(point);
    for (const Turn& each : turns) turn(point, each);
    return point;
  };
  for (const auto& triangle : cubeTriangles) {
    Shape shape;
    for (const std::size_t number : triangle) {
      shape.points.push_back(place(transformed(corner(number), weights)));
    }
    shapes.push_back(shape);
  }
  for (const auto& [from, to] : frameLines()) {
    shapes.push_back({{place(corner(from)), place(corner(to))}});
  }
  return shapes;
}

Shapes diagramShapes(const Weights& weights) {
  Shapes shapes;
  std::vector<SpacePoint> locus;
  for (const ExpectedVertex& vertex : referenceLocus()) locus.push_back(pointOf(vertex));
  addStrip(shapes, locus);
  std::vector<SpacePoint> primaries;
  std::vector<SpacePoint> outline;
  for (const ReferenceColour& colour : referenceEdgeColours()) {
    primaries.push_back(pointOf(referenceVertex(colour)));
    outline.push_back(pointOf(referenceVertex(colour, inRows(weights))));
  }
  addStrip(shapes, primaries);
  addGamut(shapes, weights);
  addStrip(shapes, outline);
  return shapes;
}

Shapes curveShapes(double peakS, double peakM, double peakL) {
  struct Curve {
    double peak;
    Colour colour;
  };
  Shapes shapes;
  // In drawing order.
  for (const auto& [peak, colour] :
       {Curve{peakS, {0, 0, whole}}, Curve{peakL, {whole, 0, 0}}, Curve{peakM, {0, whole, 0}}}) {
    const ReferenceCurve curve = referenceCone(peak, 0.35L);
    std::vector<SpacePoint> points;
    for (int i = 0; i < 400; ++i) {
      const auto value = static_cast<double>(curve.at(static_cast<std::size_t>(i)));
      points.push_back({i / 100.0 - 2.0, 2.0 * value - 0.8, 0, colour});
    }
    addStrip(shapes, points);
  }
  return shapes;
}

Place seenAt(double x, double y, int width, int height) {
  const double perUnit = height / 2.0 / (5.5 * std::tan(radians(15.0)));
  return {width / 2.0 + x * scale * perUnit, height / 2.0 - y * scale * perUnit};
}

}  // namespace tintora::desktop_test
