#include "seen_view.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <numbers>
#include <span>

namespace tintora::desktop_test {

namespace {

// The distance in pixels by which drawing may be off: a line is one pixel thick, and the graphics
// card rounds corners to fractions of a pixel.
constexpr double lineReach = 0.85;
constexpr double triangleReach = 0.08;
// Smaller differences in distance from the eye do not count.
constexpr double depthStep = 0.02;
// Levels by which a colour may differ because of rounding.
constexpr double roundingStep = 2.5;

struct SeenPoint {
  double x = 0;
  double y = 0;
  double depth = 0;
  Colour colour{};
};

struct SeenShape {
  std::vector<SeenPoint> points;
  double reach = 0;
  double perPixel = 0;   // the most by which the colour changes over one pixel
  double range = 0;      // the most by which the colour changes over the whole shape
  double tolerance = 0;  // levels by which one of its pixels may differ
};

SeenPoint seen(const SpacePoint& point, const Picture& picture) {
  const double depth = point.z + 5.5;
  const double perUnit = picture.height / 2.0 / std::tan(std::numbers::pi / 12.0) / depth;
  return {picture.width / 2.0 + point.x * perUnit, picture.height / 2.0 - point.y * perUnit, depth,
          point.colour};
}

double largestDifference(const Colour& a, const Colour& b) {
  double largest = 0;
  for (std::size_t i = 0; i < 3; ++i) largest = std::max(largest, std::abs(a[i] - b[i]));
  return largest;
}

// Returns twice the triangle's area, with a sign for its winding.
double windingOf(std::span<const SeenPoint> t) {
  return (t[1].x - t[0].x) * (t[2].y - t[0].y) - (t[2].x - t[0].x) * (t[1].y - t[0].y);
}

// Returns true if the triangle is seen edge-on. Then its pixels may have any of its colours.
bool isSliver(const SeenShape& shape) {
  if (shape.points.size() == 2) return false;
  double longest = 0;
  for (std::size_t i = 0; i < 3; ++i) {
    const SeenPoint& a = shape.points[i];
    const SeenPoint& b = shape.points[(i + 1) % 3];
    longest = std::max(longest, std::hypot(a.x - b.x, a.y - b.y));
  }
  return std::abs(windingOf(shape.points)) <= triangleReach * longest;
}

SeenShape seen(const Shape& shape, const Picture& picture) {
  SeenShape result;
  for (const SpacePoint& point : shape.points) result.points.push_back(seen(point, picture));
  result.reach = shape.points.size() == 2 ? lineReach : triangleReach;
  for (std::size_t i = 0; i < result.points.size(); ++i) {
    const SeenPoint& a = result.points[i];
    const SeenPoint& b = result.points[(i + 1) % result.points.size()];
    const double difference = largestDifference(a.colour, b.colour);
    result.range = std::max(result.range, difference);
    result.perPixel =
        std::max(result.perPixel, difference / std::max(1e-6, std::hypot(a.x - b.x, a.y - b.y)));
  }
  const double within =
      isSliver(result) ? result.range : std::min(result.range, result.perPixel * result.reach);
  result.tolerance = roundingStep + within;
  return result;
}

// Returns the weighted mean of points, with perspective taken into account.
SeenPoint mixed(std::span<const SeenPoint> points, std::span<const double> shares) {
  SeenPoint result;
  double nearness = 0;
  for (std::size_t i = 0; i < points.size(); ++i) {
    const double weight = shares[i] / points[i].depth;
    nearness += weight;
    result.x += shares[i] * points[i].x;
    result.y += shares[i] * points[i].y;
    for (std::size_t j = 0; j < 3; ++j) result.colour[j] += weight * points[i].colour[j];
  }
  for (double& component : result.colour) component /= nearness;
  result.depth = 1 / nearness;
  return result;
}

SeenPoint nearestOnLine(const SeenPoint& a, const SeenPoint& b, double x, double y) {
  const double dx = b.x - a.x;
  const double dy = b.y - a.y;
  const double length = dx * dx + dy * dy;
  const double share =
      length > 0 ? std::clamp(((x - a.x) * dx + (y - a.y) * dy) / length, 0.0, 1.0) : 0.0;
  const std::array<SeenPoint, 2> ends{a, b};
  const std::array<double, 2> shares{1 - share, share};
  return mixed(ends, shares);
}

// Returns the barycentric coordinates of a place in a triangle. A negative one means that the place
// is outside.
std::array<double, 3> sharesAt(std::span<const SeenPoint> t, double x, double y) {
  const double area = windingOf(t);
  if (std::abs(area) < 1e-6) return {-1, -1, -1};
  const double b = ((x - t[0].x) * (t[2].y - t[0].y) - (t[2].x - t[0].x) * (y - t[0].y)) / area;
  const double c = ((t[1].x - t[0].x) * (y - t[0].y) - (x - t[0].x) * (t[1].y - t[0].y)) / area;
  return {1 - b - c, b, c};
}

double distance(const SeenPoint& point, double x, double y) {
  return std::hypot(point.x - x, point.y - y);
}

struct Hit {
  SeenPoint point;
  double distance = 0;   // from the place to the shape
  bool certain = false;  // the shape covers the place even if it is off by its reach
};

Hit hit(const SeenShape& shape, double x, double y) {
  const auto& points = shape.points;
  SeenPoint best = nearestOnLine(points[0], points[1], x, y);
  if (points.size() == 2) return {best, distance(best, x, y)};
  for (std::size_t i = 1; i < 3; ++i) {
    const SeenPoint other = nearestOnLine(points[i], points[(i + 1) % 3], x, y);
    if (distance(other, x, y) < distance(best, x, y)) best = other;
  }
  const std::array<double, 3> shares = sharesAt(points, x, y);
  if (std::ranges::min(shares) < 0) return {best, distance(best, x, y)};
  return {mixed(points, shares), 0, distance(best, x, y) > shape.reach};
}

struct Candidate {
  Colour colour{};
  double depth = 0;
  double tolerance = 0;
  std::size_t shape = 0;
};

// What a pixel may show.
struct Expected {
  std::vector<Candidate> candidates;
  double nearestCertain = std::numeric_limits<double>::infinity();
};

class Expectation {
 public:
  Expectation(const Picture& picture, const Shapes& shapes)
      : width_(picture.width), height_(picture.height) {
    pixels_.resize(picture.pixels.size());
    for (const Shape& shape : shapes) shapes_.push_back(seen(shape, picture));
    for (std::size_t i = 0; i < shapes_.size(); ++i) cover(i);
  }

  bool allows(int x, int y, const Colour& colour) const {
    const Expected& expected = pixels_[index(x, y)];
    if (std::isinf(expected.nearestCertain) &&
        largestDifference(colour, colourOf(viewBackground)) == 0) {
      return true;
    }
    return std::ranges::any_of(expected.candidates, [&](const Candidate& candidate) {
      return candidate.depth < expected.nearestCertain + depthStep &&
             largestDifference(candidate.colour, colour) <= candidate.tolerance;
    });
  }

  // Returns true if nothing can hide the line at a place.
  bool mustShow(std::size_t line, const SeenPoint& place) const {
    bool shown = true;
    visitAround(place, [&](int x, int y) {
      for (const Candidate& other : pixels_[index(x, y)].candidates) {
        if (other.depth < place.depth - depthStep) shown = false;
        // Its neighbours continue a line, and the same colour hides nothing.
        if (other.shape > line && other.depth < place.depth + depthStep &&
            largestDifference(other.colour, place.colour) > roundingStep) {
          shown = false;
        }
      }
    });
    return shown;
  }

  template <typename Visit>
  void visitAround(const SeenPoint& place, Visit visit) const {
    const int middleX = static_cast<int>(std::lround(place.x));
    const int middleY = static_cast<int>(std::lround(place.y));
    for (int y = std::max(0, middleY - 1); y <= std::min(height_ - 1, middleY + 1); ++y) {
      for (int x = std::max(0, middleX - 1); x <= std::min(width_ - 1, middleX + 1); ++x)
        visit(x, y);
    }
  }

  const std::vector<SeenShape>& shapes() const { return shapes_; }

 private:
  std::size_t index(int x, int y) const {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) +
           static_cast<std::size_t>(x);
  }

  void cover(std::size_t number) {
    const SeenShape& shape = shapes_[number];
    const auto [left, right] = std::ranges::minmax(shape.points, {}, &SeenPoint::x);
    const auto [top, bottom] = std::ranges::minmax(shape.points, {}, &SeenPoint::y);
    const auto first = [](double from) { return std::max(0, static_cast<int>(std::floor(from))); };
    for (int y = first(top.y - 1); y <= std::min(height_ - 1.0, bottom.y + 1); ++y) {
      for (int x = first(left.x - 1); x <= std::min(width_ - 1.0, right.x + 1); ++x) {
        const Hit there = hit(shape, x, y);
        if (there.distance > shape.reach) continue;
        Expected& expected = pixels_[index(x, y)];
        expected.candidates.push_back(
            {there.point.colour, there.point.depth, shape.tolerance, number});
        if (there.certain) {
          expected.nearestCertain = std::min(expected.nearestCertain, there.point.depth);
        }
      }
    }
  }

  int width_;
  int height_;
  std::vector<SeenShape> shapes_;
  std::vector<Expected> pixels_;
};

bool isWithin(const std::vector<Area>& areas, int x, int y) {
  return std::ranges::any_of(areas, [&](const Area& area) { return area.contains(x, y); });
}

std::string inWords(const Colour& colour) {
  char text[40];
  std::snprintf(text, sizeof text, "(%.0f, %.0f, %.0f)", colour[0], colour[1], colour[2]);
  return text;
}

testing::AssertionResult allPixelsFit(const Picture& picture, const Expectation& expectation,
                                      const std::vector<Area>& texts) {
  int wrong = 0;
  std::string first;
  for (int y = 0; y < picture.height; ++y) {
    for (int x = 0; x < picture.width; ++x) {
      const Colour colour = colourOf(picture.at(x, y));
      if (isWithin(texts, x, y) || expectation.allows(x, y, colour)) continue;
      if (wrong++ < 5) {
        first += " " + inWords(colour) + " at " + std::to_string(x) + "," + std::to_string(y);
      }
    }
  }
  if (wrong == 0) return testing::AssertionSuccess();
  return testing::AssertionFailure() << wrong << " pixels are wrong:" << first;
}

testing::AssertionResult allLinesAreThere(const Picture& picture, const Expectation& expectation,
                                          const std::vector<Area>& texts) {
  int asked = 0;
  int missing = 0;
  std::string first;
  const auto& shapes = expectation.shapes();
  for (std::size_t i = 0; i < shapes.size(); ++i) {
    if (shapes[i].points.size() != 2) continue;
    const SeenPoint& a = shapes[i].points[0];
    const SeenPoint& b = shapes[i].points[1];
    const int steps = static_cast<int>(std::ceil(std::hypot(a.x - b.x, a.y - b.y)));
    // Skips the ends of a line, whose last pixel may belong to another one.
    for (int step = 1; step < steps; ++step) {
      const double share = static_cast<double>(step) / steps;
      const SeenPoint place =
          nearestOnLine(a, b, a.x + (b.x - a.x) * share, a.y + (b.y - a.y) * share);
      const int x = static_cast<int>(std::lround(place.x));
      const int y = static_cast<int>(std::lround(place.y));
      if (x < 0 || y < 0 || x >= picture.width || y >= picture.height || isWithin(texts, x, y) ||
          !expectation.mustShow(i, place)) {
        continue;
      }
      ++asked;
      bool found = false;
      expectation.visitAround(place, [&](int px, int py) {
        found |= largestDifference(colourOf(picture.at(px, py)), place.colour) <=
                 shapes[i].tolerance + shapes[i].perPixel;
      });
      if (!found && missing++ < 5) {
        first += " " + inWords(place.colour) + " at " + std::to_string(x) + "," + std::to_string(y);
      }
    }
  }
  if (missing == 0 && asked > 0) return testing::AssertionSuccess();
  return testing::AssertionFailure()
         << missing << " of " << asked << " places of lines are missing:" << first;
}

}  // namespace

testing::AssertionResult shows(const Picture& picture, const Shapes& shapes,
                               const std::vector<Area>& texts) {
  if (picture.pixels.empty()) return testing::AssertionFailure() << "There is no picture.";
  const Expectation expectation(picture, shapes);
  const testing::AssertionResult pixels = allPixelsFit(picture, expectation, texts);
  return pixels ? allLinesAreThere(picture, expectation, texts) : pixels;
}

}  // namespace tintora::desktop_test
