#include "palette/main_colours.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

namespace tintora {
namespace {

using Pixels = std::vector<std::uint8_t>;

void add(Pixels& pixels, Rgb8 rgb, std::size_t count, std::uint8_t alpha = 255) {
  for (std::size_t i = 0; i < count; ++i) {
    pixels.insert(pixels.end(), {rgb.blue, rgb.green, rgb.red, alpha});
  }
}

std::vector<std::string> namesOf(const std::vector<MainColour>& colours) {
  std::vector<std::string> names;
  for (const MainColour& colour : colours) names.push_back(hexText(colour.rgb));
  return names;
}

using Names = std::vector<std::string>;

TEST(MainColours, OfFlatColoursAreThoseColoursByTheirShare) {
  Pixels pixels;
  add(pixels, {255, 255, 255}, 9000);
  add(pixels, {213, 94, 0}, 600);
  add(pixels, {0, 114, 178}, 300);
  add(pixels, {0, 158, 115}, 100);
  const std::vector<MainColour> colours = mainColours(pixels, 8);
  EXPECT_EQ(namesOf(colours), (Names{"#ffffff", "#d55e00", "#0072b2", "#009e73"}));
  EXPECT_DOUBLE_EQ(colours[0].share, 0.9);
  EXPECT_DOUBLE_EQ(colours[1].share, 0.06);
  EXPECT_DOUBLE_EQ(colours[3].share, 0.01);
}

TEST(MainColours, AreColoursOfThePictureDespiteNoise) {
  std::mt19937 random(1);
  Pixels pixels;
  for (const Rgb8 rgb : {Rgb8{200, 40, 40}, Rgb8{40, 40, 200}, Rgb8{240, 240, 230}}) {
    add(pixels, rgb, 500);
    for (int i = 0; i < 1000; ++i) {
      const auto near = [&](std::uint8_t channel) {
        return static_cast<std::uint8_t>(channel + static_cast<int>(random() % 15) - 7);
      };
      add(pixels, {near(rgb.red), near(rgb.green), near(rgb.blue)}, 1);
    }
  }
  const std::vector<MainColour> colours = mainColours(pixels, 3);
  Names names = namesOf(colours);
  std::sort(names.begin(), names.end());
  EXPECT_EQ(names, (Names{"#2828c8", "#c82828", "#f0f0e6"}));
  for (const MainColour& colour : colours) EXPECT_NEAR(colour.share, 1.0 / 3.0, 0.02);
}

TEST(MainColours, IncludeTheColourOfAThinLine) {
  Pixels pixels;
  add(pixels, {255, 255, 255}, 996000);
  for (int grey = 0; grey < 255; ++grey) {
    const auto channel = static_cast<std::uint8_t>(grey);
    add(pixels, {channel, channel, channel}, 10);
  }
  add(pixels, {44, 160, 44}, 1500);
  const Names names = namesOf(mainColours(pixels, 8));
  EXPECT_NE(std::find(names.begin(), names.end(), "#2ca02c"), names.end());
}

// With lightnesses of about 0, 45, 55 and 100 and weights of 30, 20, 22 and 10, the first centres
// are black and white. The means 18 and 69 then put the boundary at 44, so the darker grey changes
// sides.
TEST(MainColours, StandForThePixelsThatAreNearestToTheirMeans) {
  Pixels pixels;
  add(pixels, {0, 0, 0}, 900);
  add(pixels, {106, 106, 106}, 400);
  add(pixels, {132, 132, 132}, 500);
  add(pixels, {255, 255, 255}, 100);
  const std::vector<MainColour> colours = mainColours(pixels, 2);
  EXPECT_EQ(namesOf(colours), (Names{"#848484", "#000000"}));
  EXPECT_DOUBLE_EQ(colours[0].share, 1000.0 / 1900.0);
}

TEST(MainColours, AreAtMostAsManyAsRequested) {
  Pixels pixels;
  for (int i = 0; i < 4096; ++i) {
    add(pixels,
        {static_cast<std::uint8_t>(i), static_cast<std::uint8_t>(i >> 4),
         static_cast<std::uint8_t>(i * 7)},
        1);
  }
  EXPECT_EQ(mainColours(pixels, 5).size(), 5U);
  EXPECT_EQ(mainColours(pixels, 1).size(), 1U);
  EXPECT_TRUE(mainColours(pixels, 0).empty());
}

TEST(MainColours, TransparentPixelsDoNotCount) {
  Pixels pixels;
  add(pixels, {1, 2, 3}, 100, 0);
  add(pixels, {4, 5, 6}, 100, 127);
  EXPECT_TRUE(mainColours(pixels, 8).empty());
  add(pixels, {200, 5, 6}, 1, 128);
  EXPECT_EQ(namesOf(mainColours(pixels, 8)), (Names{"#c80506"}));
  EXPECT_TRUE(mainColours({}, 8).empty());
}

}  // namespace
}  // namespace tintora
