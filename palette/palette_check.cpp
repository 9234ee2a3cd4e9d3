#include "palette/palette_check.h"

#include <algorithm>

#include "palette/appearance.h"
#include "palette/suggestion.h"

namespace tintora {

namespace {

std::vector<std::size_t> viewersThatLose(const CheckedPair& pair, const CheckLimits& limits) {
  std::vector<std::size_t> viewers;
  for (std::size_t i = 0; i < pair.after.size(); ++i) {
    if (isLost(pair.before.ciede2000, pair.after[i].ciede2000, limits)) viewers.push_back(i);
  }
  return viewers;
}

}  // namespace

double leastDifference(const CheckedPair& pair) {
  double least = pair.before.ciede2000;
  if (!pair.after.empty()) {
    least = std::ranges::min(pair.after, {}, &Difference::ciede2000).ciede2000;
  }
  return least;
}

PaletteCheck checkPalette(std::span<const Rgb8> palette, std::span<const ColourSimulation> viewers,
                          const CheckLimits& limits) {
  std::vector<ColourTransform> transforms;
  for (const ColourSimulation& viewer : viewers) transforms.push_back(makeSimulation(viewer));
  std::vector<Appearance> looks;
  for (const Rgb8 colour : palette) looks.push_back(appearanceOf(colour, transforms));

  PaletteCheck check;
  for (std::size_t first = 0; first < looks.size(); ++first) {
    for (std::size_t second = first + 1; second < looks.size(); ++second) {
      check.pairs.push_back(comparePair(first, second, looks[first], looks[second]));
    }
  }
  for (std::size_t i = 0; i < check.pairs.size(); ++i) {
    std::vector<std::size_t> lostTo = viewersThatLose(check.pairs[i], limits);
    if (!lostTo.empty()) check.findings.push_back({i, std::move(lostTo), std::nullopt});
  }
  std::vector<ColourPair> lostPairs;
  for (const Finding& finding : check.findings) {
    const CheckedPair& pair = check.pairs[finding.pair];
    lostPairs.push_back({pair.first, pair.second});
  }
  auto suggestions = suggestChanges({palette, looks, transforms, limits}, lostPairs);
  for (std::size_t i = 0; i < suggestions.size(); ++i) {
    check.findings[i].suggestion = std::move(suggestions[i]);
  }
  return check;
}

}  // namespace tintora
