#include "palette/suggestion.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <utility>
#include <vector>

namespace tintora {

namespace {

struct Candidate {
  std::size_t changed;
  Rgb8 to;
  double change;
};

constexpr double mostLightness = 100.0;

// In larger palettes there is hardly a free place, and looking for it everywhere takes long.
constexpr std::size_t mostColoursForEveryHue = 32;

bool isDisplayable(const Colour& colour) {
  return std::ranges::all_of(colour,
                             [](double channel) { return channel >= 0.0 && channel <= 1.0; });
}

// The colour of this lightness and hue with as much of the chroma as the display has.
Colour withinDisplay(const Lab& lab) {
  if (const Colour colour = fromLab(lab); isDisplayable(colour)) return colour;
  constexpr int halvings = 20;
  double kept = 0.0;
  for (double step = 0.5; step > std::ldexp(1.0, -halvings); step /= 2.0) {
    const double share = kept + step;
    if (isDisplayable(fromLab({lab.lightness, share * lab.a, share * lab.b}))) kept = share;
  }
  return fromLab({lab.lightness, kept * lab.a, kept * lab.b});
}

Candidate candidateOf(const CheckedPalette& palette, std::size_t changed, Rgb8 to) {
  return {changed, to, ciede2000(palette.looks[changed].before.lab, toLab(toColour(to)))};
}

void addLightnessChanges(const CheckedPalette& palette, std::size_t changed,
                         std::vector<Candidate>& candidates) {
  const double step = palette.colours.size() <= mostColoursForEveryHue ? 0.125 : 0.5;
  const Lab original = palette.looks[changed].before.lab;
  for (double lightness = 0.0; lightness <= mostLightness; lightness += step) {
    const Rgb8 to = roundColour(withinDisplay({lightness, original.a, original.b}));
    candidates.push_back(candidateOf(palette, changed, to));
  }
}

// A grid over all that the display has.
const std::vector<Rgb8>& coloursOfDisplay() {
  static const std::vector<Rgb8> colours = [] {
    constexpr double lightnessStep = 2.0;
    constexpr double chromaStep = 4.0;
    constexpr double mostChroma = 136.0;
    constexpr double hueStep = 6.0;
    constexpr double degree = std::numbers::pi / 180.0;
    std::vector<Rgb8> found;
    for (double lightness = 0.0; lightness <= mostLightness; lightness += lightnessStep) {
      for (double hue = 0.0; hue < 360.0; hue += hueStep) {
        for (double chroma = 0.0; chroma <= mostChroma; chroma += chromaStep) {
          const Colour colour = fromLab(
              {lightness, chroma * std::cos(hue * degree), chroma * std::sin(hue * degree)});
          if (!isDisplayable(colour)) break;
          found.push_back(roundColour(colour));
        }
      }
    }
    return found;
  }();
  return colours;
}

// Whether the palette with the change keeps the promises of Suggestion, for all pairs but the one.
bool keepsTheOthers(const CheckedPalette& palette, std::size_t changed, std::size_t other,
                    const Appearance& look) {
  const Appearance& was = palette.looks[changed];
  for (std::size_t i = 0; i < palette.looks.size(); ++i) {
    if (i == changed || i == other) continue;
    const Appearance& neighbour = palette.looks[i];
    const double before = ciede2000(look.before.lab, neighbour.before.lab);
    const double wasBefore = ciede2000(was.before.lab, neighbour.before.lab);
    if (wasBefore >= palette.limits.apart && before < palette.limits.apart) return false;
    for (std::size_t v = 0; v < look.after.size(); ++v) {
      const double after = ciede2000(look.after[v].lab, neighbour.after[v].lab);
      if (!isLost(before, after, palette.limits)) continue;
      const double wasAfter = ciede2000(was.after[v].lab, neighbour.after[v].lab);
      if (!isLost(wasBefore, wasAfter, palette.limits)) return false;
    }
  }
  return true;
}

bool separates(const CheckedPair& pair, const CheckLimits& limits) {
  return pair.before.ciede2000 >= limits.apart && leastDifference(pair) >= limits.lost;
}

// The change as a suggestion, if it is one.
std::optional<Suggestion> verify(const CheckedPalette& palette, std::size_t first,
                                 std::size_t second, const Candidate& candidate) {
  const std::size_t other = candidate.changed == first ? second : first;
  const Appearance look = appearanceOf(candidate.to, palette.viewers);
  const Appearance& otherLook = palette.looks[other];
  CheckedPair pair = candidate.changed == first ? comparePair(first, second, look, otherLook)
                                                : comparePair(first, second, otherLook, look);
  if (!separates(pair, palette.limits)) return std::nullopt;
  if (!keepsTheOthers(palette, candidate.changed, other, look)) return std::nullopt;
  return Suggestion{candidate.changed, candidate.to, candidate.change, std::move(pair)};
}

std::optional<Suggestion> nearest(const CheckedPalette& palette, std::size_t first,
                                  std::size_t second, std::vector<Candidate> candidates) {
  std::ranges::stable_sort(candidates, {}, &Candidate::change);
  Rgb8 last{};
  for (const Candidate& candidate : candidates) {
    if (candidate.to == last && &candidate != &candidates.front()) continue;
    last = candidate.to;
    if (auto suggestion = verify(palette, first, second, candidate)) return suggestion;
  }
  return std::nullopt;
}

// Walks from a suggestion to nearer ones, a step of one channel at a time, until none is nearer.
Suggestion refine(const CheckedPalette& palette, std::size_t first, std::size_t second,
                  Suggestion suggestion) {
  constexpr std::array steps{-8, -4, -2, -1, 1, 2, 4, 8};
  for (bool moved = true; moved;) {
    moved = false;
    for (std::uint8_t Rgb8::*const channel : {&Rgb8::red, &Rgb8::green, &Rgb8::blue}) {
      for (const int step : steps) {
        const int value = suggestion.to.*channel + step;
        if (value < 0 || value > 255) continue;
        Rgb8 to = suggestion.to;
        to.*channel = static_cast<std::uint8_t>(value);
        const Candidate candidate = candidateOf(palette, suggestion.changed, to);
        if (candidate.change >= suggestion.change) continue;
        if (auto nearer = verify(palette, first, second, candidate)) {
          suggestion = *std::move(nearer);
          moved = true;
        }
      }
    }
  }
  return suggestion;
}

}  // namespace

std::optional<Suggestion> suggestChange(const CheckedPalette& palette, std::size_t first,
                                        std::size_t second) {
  std::vector<Candidate> candidates;
  for (const std::size_t changed : {first, second}) {
    addLightnessChanges(palette, changed, candidates);
  }
  if (auto suggestion = nearest(palette, first, second, std::move(candidates))) return suggestion;
  if (palette.colours.size() > mostColoursForEveryHue) return std::nullopt;

  candidates.clear();
  for (const std::size_t changed : {first, second}) {
    for (const Rgb8 to : coloursOfDisplay()) {
      candidates.push_back(candidateOf(palette, changed, to));
    }
  }
  auto suggestion = nearest(palette, first, second, std::move(candidates));
  if (!suggestion) return std::nullopt;
  return refine(palette, first, second, *std::move(suggestion));
}

}  // namespace tintora
