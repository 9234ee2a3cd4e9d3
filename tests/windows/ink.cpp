#include "ink.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <vector>

namespace tintora::windows_test {

namespace {

// Returns how far a colour differs from the background.
double weightOf(const Colour& colour) {
  int sum = 0;
  for (std::size_t channel = 0; channel < 3; ++channel) {
    sum += std::abs(colour[channel] - background[channel]);
  }
  return sum / 255.0;
}

std::vector<double> weightsOf(const Picture& picture) {
  std::vector<double> weights;
  for (const Colour& colour : picture.pixels) weights.push_back(weightOf(colour));
  return weights;
}

// Returns the sum of products over the overlap of two pictures, the second one moved.
double product(const Picture& size, const std::vector<double>& a, const std::vector<double>& b,
               int right, int down) {
  double sum = 0.0;
  for (int y = std::max(0, -down); y < std::min(size.height, size.height - down); ++y) {
    for (int x = std::max(0, -right); x < std::min(size.width, size.width - right); ++x) {
      sum += a[static_cast<std::size_t>(y * size.width + x)] *
             b[static_cast<std::size_t>((y + down) * size.width + x + right)];
    }
  }
  return sum;
}

}  // namespace

Ink inkOf(const Picture& picture, const Bounds& part) {
  Ink ink{.bounds = {part.right, part.bottom, part.left, part.top}};
  for (int y = part.top; y < part.bottom; ++y) {
    for (int x = part.left; x < part.right; ++x) {
      const double weight = weightOf(picture.at(x, y));
      if (weight == 0.0) continue;
      Bounds& bounds = ink.bounds;
      bounds = {std::min<LONG>(bounds.left, x), std::min<LONG>(bounds.top, y),
                std::max<LONG>(bounds.right, x + 1), std::max<LONG>(bounds.bottom, y + 1)};
      ink.amount += weight;
      ink.x += weight * x;
      ink.y += weight * y;
    }
  }
  if (ink.amount == 0.0) return {};
  ink.x /= ink.amount;
  ink.y /= ink.amount;
  return ink;
}

Ink inkOf(const Picture& picture) {
  return inkOf(picture, {0, 0, picture.width, picture.height});
}

Likeness likenessOf(const Picture& picture, const Picture& other) {
  constexpr int reach = 3;
  const std::vector<double> a = weightsOf(picture);
  const std::vector<double> b = weightsOf(other);
  const double whole = std::sqrt(product(picture, a, a, 0, 0) * product(picture, b, b, 0, 0));
  Likeness best;
  for (int y = -reach; y <= reach; ++y) {
    for (int x = -reach; x <= reach; ++x) {
      const double correlation = product(picture, a, b, x, y) / whole;
      if (correlation > best.correlation) best = {x, y, correlation};
    }
  }
  return best;
}

Picture part(const Picture& picture, const Bounds& bounds) {
  Picture cut{bounds.width(), bounds.height(), {}};
  for (int y = bounds.top; y < bounds.bottom; ++y) {
    for (int x = bounds.left; x < bounds.right; ++x) cut.pixels.push_back(picture.at(x, y));
  }
  return cut;
}

}  // namespace tintora::windows_test
