#include "palette/colour_difference.h"

#include <gtest/gtest.h>

#include <cmath>
#include <utility>
#include <vector>

#include "palette/palette.h"

namespace tintora {
namespace {

struct PublishedPair {
  Lab first, second;
  double difference;
};

// Sharma, Wu & Dalal 2005, table 1.
constexpr PublishedPair publishedPairs[] = {
    {{50.0000, 2.6772, -79.7751}, {50.0000, 0.0000, -82.7485}, 2.0425},
    {{50.0000, 3.1571, -77.2803}, {50.0000, 0.0000, -82.7485}, 2.8615},
    {{50.0000, 2.8361, -74.0200}, {50.0000, 0.0000, -82.7485}, 3.4412},
    {{50.0000, -1.3802, -84.2814}, {50.0000, 0.0000, -82.7485}, 1.0000},
    {{50.0000, -1.1848, -84.8006}, {50.0000, 0.0000, -82.7485}, 1.0000},
    {{50.0000, -0.9009, -85.5211}, {50.0000, 0.0000, -82.7485}, 1.0000},
    {{50.0000, 0.0000, 0.0000}, {50.0000, -1.0000, 2.0000}, 2.3669},
    {{50.0000, -1.0000, 2.0000}, {50.0000, 0.0000, 0.0000}, 2.3669},
    {{50.0000, 2.4900, -0.0010}, {50.0000, -2.4900, 0.0009}, 7.1792},
    {{50.0000, 2.4900, -0.0010}, {50.0000, -2.4900, 0.0010}, 7.1792},
    {{50.0000, 2.4900, -0.0010}, {50.0000, -2.4900, 0.0011}, 7.2195},
    {{50.0000, 2.4900, -0.0010}, {50.0000, -2.4900, 0.0012}, 7.2195},
    {{50.0000, -0.0010, 2.4900}, {50.0000, 0.0009, -2.4900}, 4.8045},
    {{50.0000, -0.0010, 2.4900}, {50.0000, 0.0010, -2.4900}, 4.8045},
    {{50.0000, -0.0010, 2.4900}, {50.0000, 0.0011, -2.4900}, 4.7461},
    {{50.0000, 2.5000, 0.0000}, {50.0000, 0.0000, -2.5000}, 4.3065},
    {{50.0000, 2.5000, 0.0000}, {73.0000, 25.0000, -18.0000}, 27.1492},
    {{50.0000, 2.5000, 0.0000}, {61.0000, -5.0000, 29.0000}, 22.8977},
    {{50.0000, 2.5000, 0.0000}, {56.0000, -27.0000, -3.0000}, 31.9030},
    {{50.0000, 2.5000, 0.0000}, {58.0000, 24.0000, 15.0000}, 19.4535},
    {{50.0000, 2.5000, 0.0000}, {50.0000, 3.1736, 0.5854}, 1.0000},
    {{50.0000, 2.5000, 0.0000}, {50.0000, 3.2972, 0.0000}, 1.0000},
    {{50.0000, 2.5000, 0.0000}, {50.0000, 1.8634, 0.5757}, 1.0000},
    {{50.0000, 2.5000, 0.0000}, {50.0000, 3.2592, 0.3350}, 1.0000},
    {{60.2574, -34.0099, 36.2677}, {60.4626, -34.1751, 39.4387}, 1.2644},
    {{63.0109, -31.0961, -5.8663}, {62.8187, -29.7946, -4.0864}, 1.2630},
    {{61.2901, 3.7196, -5.3901}, {61.4292, 2.2480, -4.9620}, 1.8731},
    {{35.0831, -44.1164, 3.7933}, {35.0232, -40.0716, 1.5901}, 1.8645},
    {{22.7233, 20.0904, -46.6940}, {23.0331, 14.9730, -42.5619}, 2.0373},
    {{36.4612, 47.8580, 18.3852}, {36.2715, 50.5065, 21.2231}, 1.4146},
    {{90.8027, -2.0831, 1.4410}, {91.1528, -1.6435, 0.0447}, 1.4441},
    {{90.9257, -0.5406, -0.9208}, {88.6381, -0.8985, -0.7239}, 1.5381},
    {{6.7747, -0.2908, -2.4247}, {5.8714, -0.0985, -2.2286}, 0.6377},
    {{2.0776, 0.0795, -1.1350}, {0.9033, -0.0636, -0.5514}, 0.9082},
};

TEST(ColourDifference, IsThatOfAllPublishedPairsInBothDirections) {
  ASSERT_EQ(std::size(publishedPairs), 34U);
  constexpr double halfOfLastDecimal = 0.00005000001;
  for (std::size_t i = 0; i < std::size(publishedPairs); ++i) {
    const auto& [first, second, difference] = publishedPairs[i];
    EXPECT_NEAR(ciede2000(first, second), difference, halfOfLastDecimal) << "pair " << i + 1;
    EXPECT_NEAR(ciede2000(second, first), difference, halfOfLastDecimal) << "pair " << i + 1;
  }
}

TEST(ColourDifference, IsZeroForTheSameColour) {
  for (const PublishedPair& pair : publishedPairs)
    EXPECT_EQ(ciede2000(pair.first, pair.first), 0.0);
}

// Every pair of greys tries the short cut through lightness, colours also what the other terms add.
TEST(ColourDifference, IsComparedWithALimitAsItIsComputed) {
  std::vector<Lab> colours;
  for (double lightness = 0.0; lightness <= 100.0; lightness += 2.5) {
    for (const auto& [a, b] : {std::pair{0.0, 0.0}, {60.0, -60.0}, {-5.0, -100.0}}) {
      colours.push_back({lightness, a, b});
    }
  }
  for (const Lab& first : colours) {
    for (const Lab& second : colours) {
      const double difference = ciede2000(first, second);
      EXPECT_TRUE(differsAtLeast(first, second, difference));
      EXPECT_FALSE(differsAtLeast(first, second, difference + 1e-9));
    }
  }
}

TEST(Lab, OfGreysHasNoChromaAndTheLightnessOfTheirLuminance) {
  for (int value = 0; value <= 255; ++value) {
    const auto channel = static_cast<std::uint8_t>(value);
    const Colour grey = toColour({channel, channel, channel});
    const Lab lab = toLab(grey);
    EXPECT_NEAR(lab.a, 0.0, 1e-11);
    EXPECT_NEAR(lab.b, 0.0, 1e-11);
    const double y = relativeLuminance(grey);
    const double expected = y > 216.0 / 24389.0 ? 116.0 * std::cbrt(y) - 16.0 : 24389.0 / 27.0 * y;
    EXPECT_NEAR(lab.lightness, expected, 1e-10);
  }
}

// Computed by hand from the standard's matrix: X, Y, Z of red are its first column.
TEST(Lab, OfThePrimariesFollowsFromTheirTristimulusValues) {
  const Colour primaries[] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
  const double xyz[][3] = {
      {0.4124, 0.2126, 0.0193}, {0.3576, 0.7152, 0.1192}, {0.1805, 0.0722, 0.9505}};
  for (int i = 0; i < 3; ++i) {
    const Lab lab = toLab(primaries[i]);
    const double x = std::cbrt(xyz[i][0] / 0.9505);
    const double y = std::cbrt(xyz[i][1]);
    const double z = std::cbrt(xyz[i][2] / 1.089);
    EXPECT_NEAR(lab.lightness, 116.0 * y - 16.0, 1e-9);
    EXPECT_NEAR(lab.a, 500.0 * (x - y), 1e-9);
    EXPECT_NEAR(lab.b, 200.0 * (y - z), 1e-9);
  }
}

TEST(Lab, LeadsBackToTheSameColour) {
  for (int red = 0; red <= 255; red += 15) {
    for (int green = 0; green <= 255; green += 15) {
      for (int blue = 0; blue <= 255; blue += 15) {
        const Rgb8 rgb{static_cast<std::uint8_t>(red), static_cast<std::uint8_t>(green),
                       static_cast<std::uint8_t>(blue)};
        const Colour colour = toColour(rgb);
        const Colour back = fromLab(toLab(colour));
        for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(back[i], colour[i], 1e-9) << hexText(rgb);
        EXPECT_EQ(roundColour(back), rgb);
      }
    }
  }
}

// Ratios that the accessibility community quotes.
TEST(Contrast, IsThatOfWellKnownPairs) {
  const auto ratio = [](Rgb8 first, Rgb8 second) {
    return contrastRatio(relativeLuminance(toColour(first)), relativeLuminance(toColour(second)));
  };
  const Rgb8 white{255, 255, 255};
  EXPECT_NEAR(ratio({0, 0, 0}, white), 21.0, 1e-12);
  EXPECT_NEAR(ratio(white, {0, 0, 0}), 21.0, 1e-12);
  EXPECT_NEAR(ratio({0x76, 0x76, 0x76}, white), 4.54, 0.005);
  EXPECT_NEAR(ratio({0x77, 0x77, 0x77}, white), 4.48, 0.005);
  EXPECT_NEAR(ratio({255, 0, 0}, white), 4.00, 0.005);
  EXPECT_NEAR(ratio({0, 0, 255}, white), 8.59, 0.005);
  EXPECT_EQ(ratio({9, 200, 31}, {9, 200, 31}), 1.0);
}

}  // namespace
}  // namespace tintora
