#include "palette/palette_check.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include "palette/colour_difference.h"
#include "palette/palette_readers.h"

namespace tintora {
namespace {

std::vector<Rgb8> palette(const std::vector<std::string>& texts) {
  std::vector<Rgb8> colours;
  for (const std::string& text : texts) colours.push_back(parseColour(text).value());
  return colours;
}

std::vector<ColourSimulation> allViewers() {
  std::vector<ColourSimulation> viewers;
  for (const CvdType type : {CvdType::Protan, CvdType::Deutan, CvdType::Tritan}) {
    for (const double severity : {0.6, 1.0}) viewers.push_back({type, severity});
  }
  return viewers;
}

const std::vector<Rgb8> set1 = palette({"#e41a1c", "#377eb8", "#4daf4a", "#984ea3", "#ff7f00",
                                        "#ffff33", "#a65628", "#f781bf", "#999999"});

double differenceTo(const ColourSimulation& viewer, Rgb8 first, Rgb8 second) {
  const ColourTransform transform = makeSimulation(viewer);
  return ciede2000(toLab(transformColour(transform, toColour(first))),
                   toLab(transformColour(transform, toColour(second))));
}

TEST(PaletteCheck, ComparesEveryPairBeforeAndForEachViewer) {
  const std::vector<ColourSimulation> viewers = allViewers();
  const PaletteCheck check = checkPalette(set1, viewers, {});
  ASSERT_EQ(check.pairs.size(), set1.size() * (set1.size() - 1) / 2);
  std::size_t next = 0;
  for (std::size_t first = 0; first < set1.size(); ++first) {
    for (std::size_t second = first + 1; second < set1.size(); ++second) {
      const CheckedPair& pair = check.pairs[next++];
      EXPECT_EQ(pair.first, first);
      EXPECT_EQ(pair.second, second);
      EXPECT_EQ(pair.before.ciede2000,
                ciede2000(toLab(toColour(set1[first])), toLab(toColour(set1[second]))));
      ASSERT_EQ(pair.after.size(), viewers.size());
      for (std::size_t v = 0; v < viewers.size(); ++v) {
        EXPECT_EQ(pair.after[v].ciede2000, differenceTo(viewers[v], set1[first], set1[second]));
      }
    }
  }
}

TEST(PaletteCheck, TheLeastDifferenceIsThatOfTheViewerWhoSeesLeast) {
  CheckedPair pair;
  pair.before = {30.0, 5.0};
  EXPECT_EQ(leastDifference(pair), 30.0);
  pair.after = {{20.0, 1.0}, {9.0, 4.0}, {40.0, 2.0}};
  EXPECT_EQ(leastDifference(pair), 9.0);
}

// The findings again, straight from what a finding is.
TEST(PaletteCheck, FindsThePairsThatAreToldApartAndLost) {
  const PaletteCheck check = checkPalette(set1, allViewers(), {});
  std::vector<std::pair<std::size_t, std::vector<std::size_t>>> expected;
  for (std::size_t i = 0; i < check.pairs.size(); ++i) {
    std::vector<std::size_t> lostTo;
    for (std::size_t v = 0; v < 6; ++v) {
      if (check.pairs[i].before.ciede2000 >= 15.0 && check.pairs[i].after[v].ciede2000 < 8.0) {
        lostTo.push_back(v);
      }
    }
    if (!lostTo.empty()) expected.emplace_back(i, lostTo);
  }
  ASSERT_FALSE(expected.empty());
  ASSERT_EQ(check.findings.size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) {
    EXPECT_EQ(check.findings[i].pair, expected[i].first);
    EXPECT_EQ(check.findings[i].lostTo, expected[i].second);
  }
}

TEST(PaletteCheck, TheLimitsStandWhereTheyAreSaidToStand) {
  const auto colours = palette({"#d55e00", "#009e73"});
  const std::vector<ColourSimulation> viewers{{CvdType::Deutan, 1.0}};
  const CheckedPair pair = checkPalette(colours, viewers, {}).pairs.front();
  const double before = pair.before.ciede2000;
  const double after = pair.after.front().ciede2000;
  const double hair = 1e-9;
  const auto findings = [&](double apart, double lost) {
    return checkPalette(colours, viewers, {apart, lost}).findings.size();
  };
  EXPECT_EQ(findings(before, after + hair), 1U);
  EXPECT_EQ(findings(before + hair, after + hair), 0U);
  EXPECT_EQ(findings(before, after), 0U);
}

TEST(PaletteCheck, SeverityZeroLosesNothing) {
  const PaletteCheck check =
      checkPalette(set1, std::vector<ColourSimulation>{{CvdType::Deutan, 0.0}}, {});
  EXPECT_TRUE(check.findings.empty());
  for (const CheckedPair& pair : check.pairs) {
    EXPECT_NEAR(pair.after.front().ciede2000, pair.before.ciede2000, 1e-9);
    EXPECT_NEAR(pair.after.front().contrast, pair.before.contrast, 1e-9);
  }
}

// The promises of a suggestion, checked by checking the changed palette.
TEST(Suggestions, SeparateThePairAndLoseNoOther) {
  const std::vector<std::vector<Rgb8>> palettes{
      set1,
      palette({"#1f77b4", "#ff7f0e", "#2ca02c", "#d62728", "#9467bd", "#8c564b", "#e377c2",
               "#7f7f7f", "#bcbd22", "#17becf"}),
      palette({"red", "green"}), palette({"red", "lime", "blue", "magenta", "cyan", "yellow"})};
  const CheckLimits limits;
  std::size_t checked = 0;
  for (const std::vector<Rgb8>& colours : palettes) {
    const PaletteCheck was = checkPalette(colours, allViewers(), limits);
    for (const Finding& finding : was.findings) {
      if (!finding.suggestion) continue;
      ++checked;
      const Suggestion& suggestion = *finding.suggestion;
      const CheckedPair& pair = was.pairs[finding.pair];
      EXPECT_TRUE(suggestion.changed == pair.first || suggestion.changed == pair.second);
      EXPECT_EQ(suggestion.change, ciede2000(toLab(toColour(colours[suggestion.changed])),
                                             toLab(toColour(suggestion.to))));
      std::vector<Rgb8> changed = colours;
      changed[suggestion.changed] = suggestion.to;
      const PaletteCheck becomes = checkPalette(changed, allViewers(), limits);
      const CheckedPair& separated = becomes.pairs[finding.pair];
      EXPECT_GE(separated.before.ciede2000, limits.apart);
      EXPECT_GE(leastDifference(separated), limits.lost);
      EXPECT_EQ(leastDifference(suggestion.pair), leastDifference(separated));
      for (std::size_t i = 0; i < was.pairs.size(); ++i) {
        if (was.pairs[i].before.ciede2000 >= limits.apart) {
          EXPECT_GE(becomes.pairs[i].before.ciede2000, limits.apart);
        }
      }
      for (const Finding& left : becomes.findings) {
        const auto before = std::find_if(was.findings.begin(), was.findings.end(),
                                         [&](const Finding& f) { return f.pair == left.pair; });
        ASSERT_NE(before, was.findings.end());
        EXPECT_NE(left.pair, finding.pair);
        for (const std::size_t viewer : left.lostTo) {
          EXPECT_NE(std::find(before->lostTo.begin(), before->lostTo.end(), viewer),
                    before->lostTo.end());
        }
      }
    }
  }
  EXPECT_GE(checked, 10U);
}

// Every other lightness on the 8-bit scale that is nearer must fail; greys have no chroma to lose.
TEST(Suggestions, ChangeLightnessByNoMoreThanIsNeeded) {
  const auto colours = palette({"#ff4f80", "#808080"});
  const std::vector<ColourSimulation> viewers{{CvdType::Deutan, 1.0}};
  const CheckLimits limits;
  const PaletteCheck check = checkPalette(colours, viewers, limits);
  ASSERT_EQ(check.findings.size(), 1U);
  const Suggestion suggestion = check.findings.front().suggestion.value();
  const Lab original = toLab(toColour(colours[1]));
  for (int level = 0; level <= 255; ++level) {
    const auto channel = static_cast<std::uint8_t>(level);
    const Rgb8 grey{channel, channel, channel};
    if (ciede2000(original, toLab(toColour(grey))) >= suggestion.change - 1e-9) continue;
    EXPECT_FALSE(
        checkPalette(std::vector<Rgb8>{colours[0], grey}, viewers, limits).findings.empty())
        << level;
  }
}

// The pair has no free lightness between the greys, so the hue has to change; and no step of one
// channel towards the colour as it was may do as well.
TEST(Suggestions, ChangeTheHueIfNoLightnessIsFreeAndByNoMoreThanIsNeeded) {
  const auto colours = palette({"#777777", "#2e9877", "#000000", "#3b3b3b", "#b9b9b9", "#ffffff"});
  const std::vector<ColourSimulation> viewers{{CvdType::Deutan, 1.0}};
  const CheckLimits limits{20.0, 20.0};
  const PaletteCheck was = checkPalette(colours, viewers, limits);
  ASSERT_EQ(was.findings.size(), 1U);
  const Suggestion suggestion = was.findings.front().suggestion.value();
  ASSERT_EQ(suggestion.changed, 1U);
  const Lab from = toLab(toColour(colours[1]));
  const Lab to = toLab(toColour(suggestion.to));
  EXPECT_GT(std::abs(std::atan2(to.b, to.a) - std::atan2(from.b, from.a)), 0.3);

  const auto keepsAllApart = [&](Rgb8 colour) {
    std::vector<Rgb8> changed = colours;
    changed[1] = colour;
    const PaletteCheck becomes = checkPalette(changed, viewers, limits);
    if (!becomes.findings.empty()) return false;
    for (std::size_t i = 0; i < was.pairs.size(); ++i) {
      const bool wasApart = was.pairs[i].before.ciede2000 >= limits.apart;
      if (wasApart && becomes.pairs[i].before.ciede2000 < limits.apart) return false;
    }
    return true;
  };
  EXPECT_TRUE(keepsAllApart(suggestion.to));
  for (std::uint8_t Rgb8::*const channel : {&Rgb8::red, &Rgb8::green, &Rgb8::blue}) {
    for (const int step : {-8, -4, -2, -1, 1, 2, 4, 8}) {
      Rgb8 nearer = suggestion.to;
      nearer.*channel = static_cast<std::uint8_t>(nearer.*channel + step);
      if (ciede2000(from, toLab(toColour(nearer))) >= suggestion.change) continue;
      EXPECT_FALSE(keepsAllApart(nearer)) << step;
    }
  }
}

// Larger palettes have hardly a free place; there lightness alone is tried.
TEST(Suggestions, OfLargePalettesChangeLightnessAlone) {
  std::vector<Rgb8> colours = palette({"#ff4f80", "#808080"});
  for (int i = 0; i < 31; ++i) {
    // Almost black, so that they collide with no suggestion.
    const auto channel = static_cast<std::uint8_t>(i);
    colours.push_back({channel, channel, channel});
  }
  const std::vector<ColourSimulation> viewers{{CvdType::Deutan, 1.0}};
  const PaletteCheck check = checkPalette(colours, viewers, {});
  ASSERT_EQ(check.findings.size(), 1U);
  const Suggestion suggestion = check.findings.front().suggestion.value();
  const Lab from = toLab(toColour(colours[suggestion.changed]));
  const Lab to = toLab(toColour(suggestion.to));
  // The display may have less chroma at the new lightness; the hue is the same.
  EXPECT_NEAR(std::atan2(to.b, to.a), std::atan2(from.b, from.a), 0.02);
  EXPECT_LE(std::hypot(to.a, to.b), std::hypot(from.a, from.b) + 0.5);
  EXPECT_GE(leastDifference(suggestion.pair), 8.0);
}

TEST(Suggestions, AreMissingIfNothingHelps) {
  // No two colours differ by as much as this limit.
  const PaletteCheck check = checkPalette(palette({"red", "green"}), allViewers(), {15.0, 150.0});
  ASSERT_EQ(check.findings.size(), 1U);
  EXPECT_FALSE(check.findings.front().suggestion.has_value());
}

}  // namespace
}  // namespace tintora
