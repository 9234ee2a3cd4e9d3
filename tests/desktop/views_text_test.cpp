// Text in the colour space window: the views' title and the help page.
#include <cmath>
#include <filesystem>

#include "views_run.h"

namespace tintora::desktop_test {
namespace {

constexpr int lineHeight = 16;

// How much of a pixel is covered by white text and by black text beneath it. With both on the
// background: pixel = (1 - white) * (1 - black) * background + white * 255.
struct Coverage {
  double white = 0;
  double black = 0;
};

Coverage coverageAt(const Picture& picture, int x, int y) {
  const Colour background = colourOf(viewBackground);
  const Colour pixel = colourOf(picture.at(x, y));
  // The background's blue is 40 above its red; white's blue equals its red.
  const double left = (pixel[2] - pixel[0]) / (background[2] - background[0]);
  const double white = (pixel[0] - left * background[0]) / 255.0;
  return {white, white > 0.9 ? 0 : 1 - left / (1 - white)};
}

// Succeeds if an area contains white text with a black shadow one pixel to the right and below.
testing::AssertionResult hasShadowedText(const Picture& picture, const Area& area) {
  int solid = 0;
  int checked = 0;
  for (int y = area.y; y + 1 < area.bottom(); ++y) {
    for (int x = area.x; x + 1 < area.right(); ++x) {
      const Coverage text = coverageAt(picture, x, y);
      const Coverage shadow = coverageAt(picture, x + 1, y + 1);
      if (text.white > 0.7) ++solid;
      // Skips pixels where white leaves too little of the shadow to judge.
      if (shadow.white > 0.4) continue;
      ++checked;
      if (std::abs(shadow.black - text.white) <= 0.12) continue;
      return testing::AssertionFailure() << "The text covers " << text.white << " at " << x << ","
                                         << y << ", its shadow " << shadow.black;
    }
  }
  if (solid >= 60) return testing::AssertionSuccess();
  return testing::AssertionFailure() << solid << " pixels of text";
}

bool isBackground(const Picture& picture, const Area& area) {
  for (int y = area.y; y < std::min(area.bottom(), picture.height); ++y) {
    for (int x = area.x; x < std::min(area.right(), picture.width); ++x) {
      if ((picture.at(x, y) & 0xFFFFFFU) != viewBackground) return false;
    }
  }
  return true;
}

// Returns the first column of an area that is not empty.
int firstInk(const Picture& picture, const Area& area) {
  int x = area.x;
  while (x < area.right() && isBackground(picture, {x, area.y, 1, area.height})) ++x;
  return x;
}

constexpr std::uint32_t yellow = 0xFFFF00;
constexpr std::uint32_t white = 0xFFFFFF;

// Succeeds if all coloured pixels have the line's hue.
testing::AssertionResult isIn(const Picture& picture, const Area& area, std::uint32_t colour) {
  int ink = 0;
  for (int y = area.y; y < area.bottom(); ++y) {
    for (int x = area.x; x < area.right(); ++x) {
      const Colour pixel = colourOf(picture.at(x, y));
      const bool isLight = pixel[0] > 190 && pixel[1] > 190;
      if (!isLight) continue;
      ++ink;
      const bool isYellow = pixel[2] < 110;
      if (isYellow != (colour == yellow)) {
        return testing::AssertionFailure() << "At " << x << "," << y << " blue is " << pixel[2];
      }
    }
  }
  if (ink >= 60) return testing::AssertionSuccess();
  return testing::AssertionFailure() << ink << " pixels of text";
}

using TitleOfViews = ViewsTest;

TEST_F(TitleOfViews, StandsWithItsShadowAtTheLeftTopOfAllButTheHelp) {
  for (const PictureSize& size : pictureSizes) {
    startWith(View::Curves, size);
    for (const View view : {View::Curves, View::Cube, View::Diagram}) {
      turnTo(view);
      const Picture picture = shown();
      const Area line{12, 10, 388, lineHeight + 1};
      EXPECT_TRUE(hasShadowedText(picture, line)) << static_cast<int>(view);
      EXPECT_TRUE(isBackground(picture, {0, 0, 400, 10}));
      EXPECT_TRUE(isBackground(picture, {0, 0, 12, 40}));
      const int ink = firstInk(picture, line);
      EXPECT_GE(ink, 12);
      EXPECT_LE(ink, 12 + 6);  // the title begins with a blank
    }
    turnTo(View::Help);
    // The page's first line is in the place of the title.
    EXPECT_TRUE(isIn(shown(), {0, 0, 400, 12 + lineHeight}, yellow));
    end();
  }
}

TEST_F(TitleOfViews, IsTheMainWindowsAtEveryChange) {
  startWith(View::Cube, {}, 2, 50);
  std::vector<Picture> pictures{shown()};
  stepSeverity(true, 1);
  pictures.push_back(shown());
  press(XK_g);
  pictures.push_back(shown());
  press(XK_Tab);
  pictures.push_back(shown());
  for (std::size_t i = 0; i < pictures.size(); ++i) {
    EXPECT_TRUE(hasShadowedText(pictures[i], {12, 10, 388, lineHeight + 1}));
    for (std::size_t j = 0; j < i; ++j) {
      EXPECT_FALSE(areSame(pictures[i], pictures[j])) << i << " and " << j;
    }
  }
  stepSeverity(false, 1);
  press(XK_Tab);
  press(XK_d);
  ASSERT_TRUE(titleBecomes(" Simulation - Deuteranomalous 50% severity"));
  EXPECT_TRUE(comesToShow(pictures[0]));
}

TEST_F(TitleOfViews, IsCutOffAtItsRectangle) {
  const std::string name(120, 'W');
  writeFile(configFolder() + "/tintora/Tintora_custom.txt", name + "\n1 0 0 0\n0 1 0 0\n0 0 1 0\n");
  startStored({{"Selected", 0}, {"View", 703}, {"ColorSpace", 1}}, {800, 600});
  ASSERT_TRUE(titleBecomes(name));
  const Picture picture = shown();
  EXPECT_TRUE(hasShadowedText(picture, {12, 10, 380, lineHeight + 1}));
  EXPECT_FALSE(isBackground(picture, {400, 10, 12, lineHeight}));
  EXPECT_TRUE(isBackground(picture, {412, 0, 388, 40}));
  EXPECT_TRUE(isBackground(picture, {0, 28, 800, 30}));
}

struct HelpLine {
  int x;
  std::uint32_t colour;
  int gap;
};
constexpr std::array<HelpLine, 17> helpLines{{{16, yellow, 6},
                                              {16, white, 0},
                                              {37, white, 0},
                                              {37, white, 6},
                                              {16, white, 0},
                                              {37, white, 0},
                                              {37, white, 0},
                                              {37, white, 6},
                                              {16, white, 0},
                                              {16, white, 6},
                                              {16, yellow, 6},
                                              {16, white, 0},
                                              {16, white, 0},
                                              {67, white, 0},
                                              {16, white, 0},
                                              {16, white, 6},
                                              {16, yellow, 0}}};

TEST_F(ViewsTest, HelpHasSeventeenLinesInTheirPlacesAndColours) {
  for (const PictureSize& size : pictureSizes) {
    startWith(View::Help, size);
    const Picture picture = shown();
    int y = 12;
    for (const HelpLine& line : helpLines) {
      const Area area{0, y + 1, 400, lineHeight - 1};
      EXPECT_TRUE(isIn(picture, area, line.colour)) << y;
      const int ink = firstInk(picture, area);
      EXPECT_GE(ink, line.x) << y;
      EXPECT_LE(ink, line.x + 3) << y;
      if (line.gap > 0) {
        const Area between{0, y + lineHeight + 1, size.width, line.gap - 1};
        EXPECT_TRUE(isBackground(picture, between)) << y;
      }
      y += lineHeight + line.gap;
    }
    EXPECT_TRUE(isBackground(picture, {0, y + 1, size.width, size.height - y - 1}));
    if (size.width > 416) {
      EXPECT_TRUE(isBackground(picture, {416, 0, size.width - 416, size.height}));
    }
    end();
  }
}

// The smallest common screen. Both windows are seen whole there, and so is each line of the help.
TEST_F(ViewsTest, TheFirstStartFitsOnASmallScreen) {
  useDisplay({}, Manager::Openbox, "1366x768");
  start();
  ASSERT_TRUE(showing(colourSpace(), true));
  const Area screen = x().screenArea();
  ASSERT_EQ(screen, (Area{0, 0, 1366, 768}));
  const Area first{433, 184, 500, 400};
  const Area second{433 + 500 + 4, 184, 400, 400};
  EXPECT_TRUE(eventually([&] {
    return x().outerAreaOf(main()) == first && x().outerAreaOf(colourSpace()) == second;
  })) << testing::PrintToString(x().outerAreaOf(main()))
      << testing::PrintToString(x().outerAreaOf(colourSpace()));
  EXPECT_EQ(common(second, screen), second);
  EXPECT_TRUE(showing(control(), false));

  const Picture help = shown();
  ASSERT_EQ(help.width, inside().width);
  int y = 12;
  for (const HelpLine& line : helpLines) {
    const Area area{0, y + 1, help.width, lineHeight - 1};
    EXPECT_TRUE(isIn(help, area, line.colour)) << y;
    y += lineHeight + line.gap;
  }
  // Nothing is cut off at the right or below.
  EXPECT_LT(y, help.height);
  EXPECT_TRUE(isBackground(help, {help.width - 2, 0, 2, help.height}));
  EXPECT_TRUE(isBackground(help, {0, help.height - 2, help.width, 2}));
}

TEST_F(ViewsTest, HelpIsCutOffByAWindowTooLowOrNarrowForIt) {
  startWith(View::Help, {800, 600});
  const Picture whole = shown();
  for (const PictureSize& size : {PictureSize{400, 150}, PictureSize{210, 400}}) {
    resizeTo(size);
    const Picture picture = shown();
    ASSERT_EQ(picture.width, size.width);
    Picture part = solid(size.width, size.height, 0);
    for (int y = 0; y < size.height; ++y) {
      for (int x = 0; x < size.width; ++x) {
        part.pixels[static_cast<std::size_t>(y * size.width + x)] = whole.at(x, y);
      }
    }
    EXPECT_TRUE(areSame(picture, part));
  }
}

// Returns a TrueType font's file. Some font of this kind is part of every desktop.
std::string trueTypeFont() {
  std::string found;
  for (const auto& entry : std::filesystem::recursive_directory_iterator("/usr/share/fonts")) {
    const std::string name = entry.path().filename().string();
    if (name == "DejaVuSans.ttf" || (found.empty() && name.ends_with("Sans-Regular.ttf"))) {
      found = entry.path().string();
    }
  }
  return found;
}

std::uint32_t numberAt(const std::string& data, std::size_t place, std::size_t bytes) {
  std::uint32_t number = 0;
  for (std::size_t i = 0; i < bytes; ++i) {
    number = number << 8 | static_cast<unsigned char>(data.at(place + i));
  }
  return number;
}

// Makes a TrueType font's lines taller by one em above and one below, and leaves its letters.
// Finds the tables and fields where OpenType puts them.
std::string withTallLines(std::string font) {
  constexpr std::size_t header = 12;
  constexpr std::size_t entry = 16;
  const auto tableAt = [&](const std::string& name) {
    for (std::size_t i = 0; i < numberAt(font, 4, 2); ++i) {
      const std::size_t at = header + entry * i;
      if (font.compare(at, 4, name) == 0) return std::size_t{numberAt(font, at + 8, 4)};
    }
    throw std::runtime_error("The font has no table " + name);
  };
  const int em = static_cast<int>(numberAt(font, tableAt("head") + 18, 2));
  const auto add = [&](const std::string& table, std::size_t field, int units) {
    const std::size_t place = tableAt(table) + field;
    const std::uint32_t value = numberAt(font, place, 2) + static_cast<std::uint32_t>(units);
    font.at(place) = static_cast<char>(value >> 8);
    font.at(place + 1) = static_cast<char>(value);
  };
  add("hhea", 4, em);
  add("hhea", 6, -em);
  add("OS/2", 68, em);
  add("OS/2", 70, -em);
  add("OS/2", 74, em);
  add("OS/2", 76, em);
  return font;
}

TEST_F(ViewsTest, LettersAreAsLargeInAFontWithTallLines) {
  const std::string file = trueTypeFont();
  ASSERT_NE(file, "");
  const std::string ordinary = readFile(file);
  struct Texts {
    Picture help;
    Picture control;
  };
  const auto textsIn = [this](const std::string& name, const std::string& font) {
    const std::string fonts = folder() + '/' + name;
    std::filesystem::create_directory(fonts);
    writeFile(fonts + "/only.ttf", font);
    writeFile(fonts + "/fonts.conf", "<fontconfig><dir>" + fonts + "</dir><cachedir>" + fonts +
                                         "/cache</cachedir></fontconfig>");
    setVariables({{"FONTCONFIG_FILE", fonts + "/fonts.conf"}});
    startWith(View::Help);
    Texts texts{.help = shown(), .control = {}};
    focus(main());
    press(XK_h);
    EXPECT_TRUE(showing(control(), true));
    settle();
    texts.control = x().read(x().areaOf(control()));
    press(XK_h);
    EXPECT_TRUE(showing(control(), false));
    end();
    return texts;
  };
  const Texts wanted = textsIn("ordinary", ordinary);
  const Texts actual = textsIn("tall", withTallLines(ordinary));
  EXPECT_TRUE(isIn(wanted.help, {0, 13, 400, lineHeight - 1}, yellow));
  EXPECT_TRUE(areSame(actual.help, wanted.help));
  EXPECT_TRUE(areSame(actual.control, wanted.control));
}

}  // namespace
}  // namespace tintora::desktop_test
