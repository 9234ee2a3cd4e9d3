// Which colours of a palette viewers with a colour vision deficiency cannot tell apart.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

#include "engine/colour_simulation.h"
#include "palette/palette.h"

namespace tintora {

// A pair is told apart if its CIEDE2000 difference is at least `apart`, and lost to a viewer if it
// is told apart and the viewer sees a difference below `lost`.
struct CheckLimits {
  double apart = 15.0;
  double lost = 8.0;
};

// How two colours differ.
struct Difference {
  double ciede2000 = 0.0;
  double contrast = 1.0;  // WCAG 2
};

struct CheckedPair {
  std::size_t first = 0, second = 0;  // places in the palette, first < second
  Difference before;
  std::vector<Difference> after;  // to each of the viewers
};

// A change of one colour of a pair that is a finding. With it the pair is told apart and lost to no
// viewer, every other pair that was told apart still is, and no viewer loses a pair that was not
// lost.
struct Suggestion {
  std::size_t changed = 0;  // a place in the palette
  Rgb8 to;
  double change = 0.0;  // CIEDE2000 from the colour as it was
  CheckedPair pair;     // as it becomes
};

struct Finding {
  std::size_t pair = 0;                  // a place among the pairs
  std::vector<std::size_t> lostTo;       // places among the viewers, at least one
  std::optional<Suggestion> suggestion;  // none if no such change was found
};

struct PaletteCheck {
  std::vector<CheckedPair> pairs;  // every two colours
  std::vector<Finding> findings;   // in the order of the pairs
};

// Checks every pair of a palette for each viewer.
PaletteCheck checkPalette(std::span<const Rgb8> palette, std::span<const ColourSimulation> viewers,
                          const CheckLimits& limits);

// Returns the smallest difference that a viewer sees in the pair; the one before if there are no
// viewers.
double leastDifference(const CheckedPair& pair);

}  // namespace tintora
