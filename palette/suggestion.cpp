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

struct LightnessChange {
  Candidate candidate;
  Appearance look;
  std::optional<bool> isHarmless;  // found when it is first needed
};

// The changes of lightness of each colour, made when they are first needed. A colour of a large
// palette is in many findings.
using LightnessChanges = std::vector<std::vector<LightnessChange>>;

constexpr double mostLightness = 100.0;

// In larger palettes there is hardly a free place, and looking for it everywhere takes long.
constexpr std::size_t mostColoursForEveryHue = 32;

bool isDisplayable(const Colour& colour) {
  return std::ranges::all_of(colour,
                             [](double channel) { return channel >= 0.0 && channel <= 1.0; });
}

// Returns the colour of this lightness and hue with as much of the chroma as the display has.
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

std::vector<LightnessChange> makeLightnessChanges(const CheckedPalette& palette,
                                                  std::size_t changed) {
  const double step = palette.colours.size() <= mostColoursForEveryHue ? 0.125 : 0.5;
  const Lab original = palette.looks[changed].before.lab;
  std::vector<LightnessChange> changes;
  for (double lightness = 0.0; lightness <= mostLightness; lightness += step) {
    const Rgb8 to = roundColour(withinDisplay({lightness, original.a, original.b}));
    if (!changes.empty() && changes.back().candidate.to == to) continue;
    changes.push_back({candidateOf(palette, changed, to), appearanceOf(to, palette.viewers), {}});
  }
  return changes;
}

// Returns colours at equal distances over all that the display can show.
const std::vector<Rgb8>& coloursOfDisplay() {
  static const std::vector<Rgb8> colours = [] {
    constexpr double lightnessStep = 2.0;
    constexpr double chromaStep = 4.0;
    constexpr double mostChroma = 136.0;
    constexpr double hueStep = 6.0;
    constexpr double oneDegree = std::numbers::pi / 180.0;
    std::vector<Rgb8> found;
    for (double lightness = 0.0; lightness <= mostLightness; lightness += lightnessStep) {
      for (double hue = 0.0; hue < 360.0; hue += hueStep) {
        for (double chroma = 0.0; chroma <= mostChroma; chroma += chromaStep) {
          const Colour colour = fromLab(
              {lightness, chroma * std::cos(hue * oneDegree), chroma * std::sin(hue * oneDegree)});
          if (!isDisplayable(colour)) break;
          found.push_back(roundColour(colour));
        }
      }
    }
    return found;
  }();
  return colours;
}

// Returns true if the changed colour and this neighbour stay apart, as Suggestion says.
bool keepsApart(const CheckedPalette& palette, std::size_t changed, const Appearance& look,
                std::size_t neighbour) {
  const Appearance& was = palette.looks[changed];
  const Appearance& other = palette.looks[neighbour];
  const CheckLimits& limits = palette.limits;
  const auto isTold = [&](const Appearance& colour) {
    return differsAtLeast(colour.before.lab, other.before.lab, limits.apart);
  };
  // What is not told apart cannot be lost.
  if (!isTold(look)) return !isTold(was);
  for (std::size_t v = 0; v < look.after.size(); ++v) {
    const Lab& seen = other.after[v].lab;
    if (differsAtLeast(look.after[v].lab, seen, limits.lost)) continue;
    if (!isTold(was) || differsAtLeast(was.after[v].lab, seen, limits.lost)) return false;
  }
  return true;
}

// Returns true if the changed colour stays apart from every other one, as Suggestion says.
bool isHarmless(const CheckedPalette& palette, std::size_t changed, const Appearance& look) {
  for (std::size_t i = 0; i < palette.looks.size(); ++i) {
    if (i != changed && !keepsApart(palette, changed, look, i)) return false;
  }
  return true;
}

bool separates(const Appearance& first, const Appearance& second, const CheckLimits& limits) {
  if (!differsAtLeast(first.before.lab, second.before.lab, limits.apart)) return false;
  for (std::size_t v = 0; v < first.after.size(); ++v) {
    if (!differsAtLeast(first.after[v].lab, second.after[v].lab, limits.lost)) return false;
  }
  return true;
}

std::size_t otherOf(const ColourPair& pair, std::size_t changed) {
  return changed == pair.first ? pair.second : pair.first;
}

Suggestion suggestionOf(const CheckedPalette& palette, const ColourPair& pair,
                        const Candidate& candidate, const Appearance& look) {
  const Appearance& other = palette.looks[otherOf(pair, candidate.changed)];
  return {candidate.changed, candidate.to, candidate.change,
          comparePair(pair.first, pair.second, look, other)};
}

// Returns the change as a suggestion, if it is one.
std::optional<Suggestion> verify(const CheckedPalette& palette, const ColourPair& pair,
                                 const Candidate& candidate) {
  const std::size_t other = otherOf(pair, candidate.changed);
  const Appearance look = appearanceOf(candidate.to, palette.viewers);
  if (!separates(look, palette.looks[other], palette.limits)) return std::nullopt;
  if (!isHarmless(palette, candidate.changed, look)) return std::nullopt;
  return suggestionOf(palette, pair, candidate, look);
}

std::optional<Suggestion> changeLightness(const CheckedPalette& palette, const ColourPair& pair,
                                          LightnessChanges& known) {
  std::vector<LightnessChange*> changes;
  for (const std::size_t changed : {pair.first, pair.second}) {
    if (known[changed].empty()) known[changed] = makeLightnessChanges(palette, changed);
    for (LightnessChange& change : known[changed]) changes.push_back(&change);
  }
  std::ranges::stable_sort(changes, {},
                           [](const auto* change) { return change->candidate.change; });
  for (LightnessChange* const change : changes) {
    const Candidate& candidate = change->candidate;
    const std::size_t other = otherOf(pair, candidate.changed);
    if (!separates(change->look, palette.looks[other], palette.limits)) continue;
    if (!change->isHarmless) {
      change->isHarmless = isHarmless(palette, candidate.changed, change->look);
    }
    if (*change->isHarmless) return suggestionOf(palette, pair, candidate, change->look);
  }
  return std::nullopt;
}

// Walks from a suggestion to nearer ones, a step of one channel at a time, until none is nearer.
Suggestion refine(const CheckedPalette& palette, const ColourPair& pair, Suggestion suggestion) {
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
        if (auto nearer = verify(palette, pair, candidate)) {
          suggestion = *std::move(nearer);
          moved = true;
        }
      }
    }
  }
  return suggestion;
}

std::optional<Suggestion> changeHue(const CheckedPalette& palette, const ColourPair& pair) {
  std::vector<Candidate> candidates;
  for (const std::size_t changed : {pair.first, pair.second}) {
    for (const Rgb8 to : coloursOfDisplay()) {
      candidates.push_back(candidateOf(palette, changed, to));
    }
  }
  std::ranges::stable_sort(candidates, {}, &Candidate::change);
  for (const Candidate& candidate : candidates) {
    if (auto suggestion = verify(palette, pair, candidate)) {
      return refine(palette, pair, *std::move(suggestion));
    }
  }
  return std::nullopt;
}

}  // namespace

std::vector<std::optional<Suggestion>> suggestChanges(const CheckedPalette& palette,
                                                      std::span<const ColourPair> pairs) {
  LightnessChanges lightnessChanges(palette.colours.size());
  std::vector<std::optional<Suggestion>> suggestions;
  for (const ColourPair& pair : pairs) {
    suggestions.push_back(changeLightness(palette, pair, lightnessChanges));
    if (!suggestions.back() && palette.colours.size() <= mostColoursForEveryHue) {
      suggestions.back() = changeHue(palette, pair);
    }
  }
  return suggestions;
}

}  // namespace tintora
