#include "palette/appearance.h"

namespace tintora {

namespace {

Look lookOf(const Colour& colour) {
  return {toLab(colour), relativeLuminance(colour)};
}

}  // namespace

Appearance appearanceOf(Rgb8 colour, std::span<const ColourTransform> viewers) {
  Appearance appearance{lookOf(toColour(colour)), {}};
  appearance.after.reserve(viewers.size());
  for (const ColourTransform& viewer : viewers) {
    appearance.after.push_back(lookOf(transformColour(viewer, toColour(colour))));
  }
  return appearance;
}

Difference differenceOf(const Look& first, const Look& second) {
  return {ciede2000(first.lab, second.lab), contrastRatio(first.luminance, second.luminance)};
}

bool isLost(double before, double after, const CheckLimits& limits) {
  return before >= limits.apart && after < limits.lost;
}

CheckedPair comparePair(std::size_t first, std::size_t second, const Appearance& firstLook,
                        const Appearance& secondLook) {
  CheckedPair pair{first, second, differenceOf(firstLook.before, secondLook.before), {}};
  pair.after.reserve(firstLook.after.size());
  for (std::size_t i = 0; i < firstLook.after.size(); ++i) {
    pair.after.push_back(differenceOf(firstLook.after[i], secondLook.after[i]));
  }
  return pair;
}

}  // namespace tintora
