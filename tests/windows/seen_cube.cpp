#include "seen_cube.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <numbers>

namespace tintora::windows_test {

namespace {

using Point = std::array<double, 3>;
using Parts = std::array<double, 3>;  // red, green and blue, 0 to 1

constexpr double eyeDistance = 5.5;
constexpr double shrunk = 4.0 / 5.5;

double radians(double degrees) {
  return degrees * std::numbers::pi / 180.0;
}

// Returns the place of a colour: red grows to the left, green upwards and blue away from the eye.
Point placeOf(const Parts& parts) {
  return {1 - 2 * parts[0], 2 * parts[1] - 1, 2 * parts[2] - 1};
}

Parts partsOf(const Point& place) {
  return {(1 - place[0]) / 2, (place[1] + 1) / 2, (place[2] + 1) / 2};
}

Parts transformedParts(const Parts& parts, const expected::Weights& weights) {
  Parts result{};
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) result[i] += weights[i][j] * parts[j];
  }
  return result;
}

// Rotates a point from one axis towards another.
void turn(Point& point, std::size_t from, std::size_t to, double degrees) {
  const double sine = std::sin(radians(degrees));
  const double cosine = std::cos(radians(degrees));
  const double along = point[from];
  const double across = point[to];
  point[from] = along * cosine - across * sine;
  point[to] = along * sine + across * cosine;
}

// Applies the turns in order. The front of the cube faces -z, so moving it to the right turns z
// towards -x.
Point turned(Point point, const std::vector<Turn>& turns) {
  for (const Turn& each : turns) {
    turn(point, 2, 1, each.down);
    turn(point, 2, 0, -each.right);
    turn(point, 1, 0, each.clockwise);
  }
  return point;
}

struct CubePoint {
  double x = 0.0;
  double y = 0.0;
};

CubePoint seen(const Point& point, const Picture& picture) {
  const double scale = picture.height / 2.0 / std::tan(radians(15.0));
  const double distance = shrunk * point[2] + eyeDistance;
  return {picture.width / 2.0 + scale * shrunk * point[0] / distance,
          picture.height / 2.0 - scale * shrunk * point[1] / distance};
}

Point between(const Point& a, const Point& b, double share) {
  Point point{};
  for (std::size_t i = 0; i < 3; ++i) point[i] = a[i] + (b[i] - a[i]) * share;
  return point;
}

// The edges of the frame and the grey axis, as pairs of corners. The bits of a corner's number are
// red, green and blue.
constexpr std::array<std::array<int, 2>, 13> edges{{{0, 1},
                                                    {0, 2},
                                                    {0, 4},
                                                    {1, 3},
                                                    {1, 5},
                                                    {2, 3},
                                                    {2, 6},
                                                    {3, 7},
                                                    {4, 5},
                                                    {4, 6},
                                                    {5, 7},
                                                    {6, 7},
                                                    {0, 7}}};

Parts cornerParts(int corner) {
  return {(corner & 1) != 0 ? 1.0 : 0.0, (corner & 2) != 0 ? 1.0 : 0.0,
          (corner & 4) != 0 ? 1.0 : 0.0};
}

double distanceToSegment(const CubePoint& point, const CubePoint& a, const CubePoint& b) {
  const double dx = b.x - a.x;
  const double dy = b.y - a.y;
  const double share =
      std::clamp(((point.x - a.x) * dx + (point.y - a.y) * dy) / (dx * dx + dy * dy), 0.0, 1.0);
  return std::hypot(point.x - a.x - share * dx, point.y - a.y - share * dy);
}

bool isNearFrame(const CubePoint& point, const Picture& picture, const CubeForm& form) {
  return std::ranges::any_of(edges, [&](const std::array<int, 2>& edge) {
    const auto end = [&](int corner) {
      return seen(turned(placeOf(cornerParts(corner)), form.turns), picture);
    };
    return distanceToSegment(point, end(edge[0]), end(edge[1])) < 3.0;
  });
}

// A side of the cube: one component fixed, the two others free.
struct Side {
  std::size_t fixed;
  double value;
};

Parts onSide(const Side& side, double u, double v) {
  Parts parts{};
  parts[side.fixed] = side.value;
  parts[(side.fixed + 1) % 3] = u;
  parts[(side.fixed + 2) % 3] = v;
  return parts;
}

// Returns the colour that the device shows at a place of a side. The device mixes the colours of
// the corners, each within its range, on either half of the side. On the sides without red or green
// the halves meet between the corners (0, 0) and (1, 1), on the others between (1, 0) and (0, 1).
Parts colourOnSide(const Side& side, double u, double v, const expected::Weights& weights) {
  const auto corner = [&](double cornerU, double cornerV) {
    Parts parts = transformedParts(onSide(side, cornerU, cornerV), weights);
    for (double& part : parts) part = std::clamp(part, 0.0, 1.0);
    return parts;
  };
  const bool straight = side.fixed < 2 && side.value < 0.5;
  const std::array<double, 4> straightShares{1 - std::max(u, v), std::max(u - v, 0.0),
                                             std::max(v - u, 0.0), std::min(u, v)};
  const double beyond = std::max(u + v - 1, 0.0);
  const std::array<double, 4> crossShares{std::max(1 - u - v, 0.0), u - beyond, v - beyond, beyond};
  const auto& shares = straight ? straightShares : crossShares;
  const std::array<Parts, 4> corners{corner(0, 0), corner(1, 0), corner(0, 1), corner(1, 1)};
  Parts mixed{};
  for (std::size_t i = 0; i < corners.size(); ++i) {
    for (std::size_t part = 0; part < 3; ++part) mixed[part] += shares[i] * corners[i][part];
  }
  return mixed;
}

// Returns twice the side's area on the screen, with the sign of its winding.
double windingOf(const Side& side, const Picture& picture, const CubeForm& form) {
  const auto corner = [&](double u, double v) {
    return seen(turned(placeOf(transformedParts(onSide(side, u, v), form.weights)), form.turns),
                picture);
  };
  const CubePoint a = corner(0, 0);
  const CubePoint b = corner(1, 0);
  const CubePoint c = corner(0, 1);
  const double area = (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
  return side.value < 0.5 ? area : -area;
}

int differenceFrom(const Colour& colour, const Parts& parts) {
  int largest = 0;
  for (std::size_t channel = 0; channel < 3; ++channel) {
    const auto expected = static_cast<int>(std::lround(255 * std::clamp(parts[channel], 0.0, 1.0)));
    largest = std::max(largest, std::abs(colour[channel] - expected));
  }
  return largest;
}

std::string text(const Colour& colour) {
  std::string result;
  for (const std::uint8_t part : colour) result += std::to_string(part) + " ";
  return result;
}

}  // namespace

testing::AssertionResult showsSolidCube(const Picture& picture, const CubeForm& form) {
  constexpr int steps = 24;
  constexpr int tolerance = 8;  // allows for a pixel's width on a side of a hundred pixels
  constexpr double leastArea = 4000.0;
  int checked = 0;
  for (std::size_t fixed = 0; fixed < 3; ++fixed) {
    for (const double value : {0.0, 1.0}) {
      const Side side{fixed, value};
      // Skip sides that face away, by their winding. No transform turns the cube inside out.
      if (windingOf(side, picture, form) < leastArea) continue;
      for (int i = 1; i < steps; ++i) {
        for (int j = 1; j < steps; ++j) {
          const double u = static_cast<double>(i) / steps;
          const double v = static_cast<double>(j) / steps;
          const Point point = placeOf(transformedParts(onSide(side, u, v), form.weights));
          const Parts parts = colourOnSide(side, u, v, form.weights);
          const CubePoint place = seen(turned(point, form.turns), picture);
          if (isNearFrame(place, picture, form)) continue;
          const auto x = static_cast<int>(std::lround(place.x));
          const auto y = static_cast<int>(std::lround(place.y));
          if (x < 0 || x >= picture.width || y < 0 || y >= picture.height) continue;
          ++checked;
          if (differenceFrom(picture.at(x, y), parts) <= tolerance) continue;
          return testing::AssertionFailure()
                 << "at " << x << "," << y << " is " << text(picture.at(x, y)) << "instead of "
                 << 255 * parts[0] << " " << 255 * parts[1] << " " << 255 * parts[2];
        }
      }
    }
  }
  if (checked < 50) return testing::AssertionFailure() << "only " << checked << " places checked";
  return testing::AssertionSuccess() << checked << " places";
}

testing::AssertionResult showsFrame(const Picture& picture, const CubeForm& form) {
  constexpr int steps = 20;
  constexpr int tolerance = 16;  // a line may be off by a pixel, and a pixel shorter
  int checked = 0;
  for (const auto& [first, second] : edges) {
    for (int i = 1; i < steps; ++i) {
      const Point point = between(placeOf(cornerParts(first)), placeOf(cornerParts(second)),
                                  static_cast<double>(i) / steps);
      const CubePoint place = seen(turned(point, form.turns), picture);
      const auto x = static_cast<int>(std::lround(place.x));
      const auto y = static_cast<int>(std::lround(place.y));
      int nearest = 255;
      for (int row = y - 1; row <= y + 1; ++row) {
        for (int column = x - 1; column <= x + 1; ++column) {
          nearest = std::min(nearest, differenceFrom(picture.at(column, row), partsOf(point)));
        }
      }
      if (nearest <= tolerance) ++checked;
    }
  }
  constexpr int places = 13 * (steps - 1);
  // The flattened cube may hide parts of the frame.
  if (checked < places * 3 / 4) {
    return testing::AssertionFailure() << "only " << checked << " of " << places << " places match";
  }
  return testing::AssertionSuccess() << checked << " of " << places << " places";
}

}  // namespace tintora::windows_test
