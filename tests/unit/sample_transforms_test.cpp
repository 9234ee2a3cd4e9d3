// The sample file of custom transforms: each entry does what its name says.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <fstream>
#include <iterator>
#include <map>
#include <string>

#include "csv_table.h"
#include "engine/custom_transforms.h"

namespace tintora {
namespace {

using Colour = std::array<double, 3>;
using Matrix = std::array<std::array<double, 3>, 3>;

constexpr Colour black{0, 0, 0};
constexpr Colour white{1, 1, 1};
constexpr Colour grey{0.5, 0.5, 0.5};
constexpr std::array<Colour, 8> colours{{{1, 0, 0},
                                         {0, 1, 0},
                                         {0, 0, 1},
                                         {1, 1, 0},
                                         {0.2, 0.7, 0.9},
                                         {0.6, 0.1, 0.8},
                                         {0.9, 0.5, 0.3},
                                         {0.3, 0.3, 0.3}}};
constexpr Matrix identity{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};

// Four decimals in the file.
constexpr double fileTolerance = 1e-4;

std::string textOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

const CustomTransformFile& sampleFile() {
  static const CustomTransformFile file = parseCustomTransforms(textOf(TINTORA_SAMPLE_TRANSFORMS));
  return file;
}

const CustomTransform& sample(const std::string& name) {
  const auto& transforms = sampleFile().transforms;
  const auto found = std::ranges::find(transforms, name, &CustomTransform::name);
  static const CustomTransform none;
  if (found != transforms.end()) return *found;
  ADD_FAILURE() << "no entry " << name;
  return none;
}

Colour seen(const std::string& name, const Colour& colour) {
  const CustomTransform& entry = sample(name);
  Colour result{};
  for (std::size_t i = 0; i < 3; ++i) {
    result[i] = entry.rows[i][3];
    for (std::size_t j = 0; j < 3; ++j) result[i] += entry.rows[i][j] * colour[j];
  }
  return result;
}

// ITU-R BT.709.
double luminance(const Colour& colour) {
  return 0.2126 * colour[0] + 0.7152 * colour[1] + 0.0722 * colour[2];
}

void expectColour(const Colour& actual, const Colour& expected, double tolerance = fileTolerance) {
  for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(actual[i], expected[i], tolerance) << i;
}

Matrix product(const Matrix& a, const Matrix& b) {
  Matrix result{};
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) {
      for (std::size_t k = 0; k < 3; ++k) result[i][j] += a[i][k] * b[k][j];
    }
  }
  return result;
}

Matrix inverse(const Matrix& m) {
  Matrix result{};
  double determinant = 0;
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) {
      const auto at = [&m, i, j](std::size_t row, std::size_t column) {
        return m[(j + row) % 3][(i + column) % 3];
      };
      result[i][j] = at(1, 1) * at(2, 2) - at(1, 2) * at(2, 1);
    }
    determinant += m[0][i] * result[i][0];
  }
  for (auto& row : result) {
    for (double& entry : row) entry /= determinant;
  }
  return result;
}

// identity + redistribution * (identity - simulation)
Matrix correction(const Matrix& redistribution, const Matrix& simulation) {
  Matrix lost = identity;
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) lost[i][j] -= simulation[i][j];
  }
  Matrix result = product(redistribution, lost);
  for (std::size_t i = 0; i < 3; ++i) result[i][i] += 1;
  return result;
}

// The dichromat of Vienot, Brettel and Mollon 1999, with their matrix from RGB to LMS.
Matrix dichromat(const Matrix& projection) {
  constexpr Matrix toCones{
      {{17.8824, 43.5161, 4.11935}, {3.45565, 27.1554, 3.86714}, {0.0299566, 0.184309, 1.46709}}};
  return product(inverse(toCones), product(projection, toCones));
}

void expectRows(const CustomTransform& entry, const Matrix& expected) {
  EXPECT_TRUE(entry.adjustable);
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) {
      EXPECT_NEAR(entry.rows[i][j], expected[i][j], fileTolerance) << entry.name << i << j;
    }
    EXPECT_EQ(entry.rows[i][3], 0.0F);
  }
}

TEST(SampleTransforms, TheFileIsReadToItsEnd) {
  EXPECT_FALSE(sampleFile().malformed.has_value());
  EXPECT_GE(sampleFile().transforms.size(), 12U);
  std::map<std::string, int> names;
  for (const CustomTransform& entry : sampleFile().transforms) ++names[entry.name];
  for (const auto& [name, count] : names) EXPECT_EQ(count, 1) << name;
}

TEST(SampleTransforms, AchromatopsiaLeavesTheLuminance) {
  EXPECT_TRUE(sample("Achromatopsia (luminance only)").adjustable);
  for (const Colour& colour : colours) {
    const double light = luminance(colour);
    expectColour(seen("Achromatopsia (luminance only)", colour), {light, light, light});
  }
}

TEST(SampleTransforms, DaltonizeMovesTheLostRedAndGreenAsPublishedIn2005) {
  constexpr Matrix redistribution{{{0, 0, 0}, {0.7, 1, 0}, {0.7, 0, 1}}};
  expectRows(
      sample("Daltonize protan (Fidaner, Lin and Ozguven 2005)"),
      correction(redistribution, dichromat({{{0, 2.02344, -2.52581}, {0, 1, 0}, {0, 0, 1}}})));
  expectRows(
      sample("Daltonize deutan (Fidaner, Lin and Ozguven 2005)"),
      correction(redistribution, dichromat({{{1, 0, 0}, {0.494207, 0, 1.24827}, {0, 0, 1}}})));
}

// The last three lines of the published table: tritan at full severity.
Matrix publishedTritanopia() {
  Matrix rows{};
  for (const CsvRow& row : readCsv("machado_2009.csv")) {
    if (row.at(0) != "tritan" || row.at(1) != "1.0") continue;
    for (std::size_t i = 0; i < 3; ++i) rows.at(std::stoul(row.at(2)))[i] = csvNumber(row, 3 + i);
  }
  return rows;
}

TEST(SampleTransforms, DaltonizeTritanMovesTheLostBlueIntoRedAndGreen) {
  expectRows(sample("Daltonize tritan (lost blue into red and green)"),
             correction({{{1, 0, 0.7}, {0, 1, 0.7}, {0, 0, 0}}}, publishedTritanopia()));
}

TEST(SampleTransforms, RedGreenDifferenceIsGreyWhereTheTwoAreEqual) {
  constexpr auto name = "Red-green difference as brightness";
  expectColour(seen(name, white), grey);
  expectColour(seen(name, {0.2, 0.2, 0.9}), grey);
  expectColour(seen(name, {1, 0, 0}), white);
  expectColour(seen(name, {0, 1, 1}), black);
}

TEST(SampleTransforms, ASingleChannelIsShownAsGrey) {
  constexpr std::array names{"Red channel only", "Green channel only", "Blue channel only"};
  for (std::size_t channel = 0; channel < names.size(); ++channel) {
    for (const Colour& colour : colours) {
      const double share = colour[channel];
      expectColour(seen(names[channel], colour), {share, share, share});
    }
  }
}

TEST(SampleTransforms, NightVisionIsTheLuminanceInRedLight) {
  for (const Colour& colour : colours) {
    expectColour(seen("Night vision (red only)", colour), {luminance(colour), 0, 0});
  }
}

TEST(SampleTransforms, WarmLightReducesBlueMostAndKeepsRed) {
  const Colour paper = seen("Warm evening light", white);
  EXPECT_EQ(paper[0], 1.0);
  EXPECT_LT(paper[1], paper[0]);
  EXPECT_LT(paper[2], paper[1]);
  expectColour(seen("Warm evening light", black), black);
}

// The sepia of the W3C's Filter Effects Module.
TEST(SampleTransforms, SepiaIsTheOneOfWebPages) {
  expectRows(sample("Sepia"),
             {{{0.393, 0.769, 0.189}, {0.349, 0.686, 0.168}, {0.272, 0.534, 0.131}}});
}

TEST(SampleTransforms, HighContrastDoublesTheDistanceFromMiddleGrey) {
  for (const Colour& colour : colours) {
    const Colour result = seen("High contrast", colour);
    for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(result[i] - 0.5, 2 * (colour[i] - 0.5), 1e-6);
  }
}

TEST(SampleTransforms, ADarkPageExchangesLightAndDarkAndKeepsTheHue) {
  constexpr auto name = "Dark page, hues kept";
  expectColour(seen(name, white), black);
  expectColour(seen(name, black), white);
  for (const Colour& colour : colours) {
    const Colour result = seen(name, colour);
    EXPECT_NEAR(luminance(result), 1 - luminance(colour), 0.002);
    // The hue is the direction from grey in the plane of equal sums.
    const auto hue = [](const Colour& c) {
      return std::array{c[0] - (c[1] + c[2]) / 2, (c[1] - c[2]) * std::sqrt(3.0) / 2};
    };
    const auto before = hue(colour);
    const auto after = hue(result);
    const double sizes = std::hypot(before[0], before[1]) * std::hypot(after[0], after[1]);
    if (sizes < 1e-6) continue;
    EXPECT_GT((before[0] * after[0] + before[1] * after[1]) / sizes, 0.8);
    expectColour(seen(name, result), colour, 0.005);
  }
}

TEST(SampleTransforms, DimmerLeavesTwoFifthsOfEveryChannel) {
  for (const Colour& colour : colours) {
    expectColour(seen("Dimmer screen", colour), {0.4 * colour[0], 0.4 * colour[1], 0.4 * colour[2]},
                 1e-6);
  }
}

}  // namespace
}  // namespace tintora
