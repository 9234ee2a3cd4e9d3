// The help page, line by line.
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "scene.h"

namespace tintora {
namespace {

using platform::DrawnText;
using platform::nullGraphics;
using platform::Rect;
using HelpPage = ColourSpaceTest;

constexpr std::uint32_t yellow = 0xFFFFFF00;
constexpr std::uint32_t white = 0xFFFFFFFF;

struct Line {
  std::string text;
  int x;
  std::uint32_t colour;
  int gap;
};
const std::array<Line, 17> lines{{
    {"The main window applies a colour transform to the screen.", 16, yellow, 6},
    {"Select the type of colour vision deficiency:", 16, white, 0},
    {"Press P for Protanomalous vision", 37, white, 0},
    {"Press D for Deuteranomalous vision", 37, white, 6},
    {"Use the mouse-wheel (or +- keys) to adjust severity:", 16, white, 0},
    {"0% to 40% :  Colour normal variation", 37, white, 0},
    {"55% to 95% : Anomalous Trichromacy", 37, white, 0},
    {"100% : Dichromat", 37, white, 6},
    {"Users with normal colour vision press S for simulation", 16, white, 0},
    {"Users with colour vision deficiency press A for Daltonize", 16, white, 6},
    {"Left mouse button down to drag / resize the main window", 16, yellow, 6},
    {"Press F1 to show / hide this help window", 16, white, 0},
    {"Press R to show the RGB colour space in this window", 16, white, 0},
    {"Left mouse button down to rotate the RGB cube", 67, white, 0},
    {"Press C to show the Chromaticity diagram", 16, white, 0},
    {"Press E to show the Photoreceptor response curves", 16, white, 6},
    {"Right-Click for the application menu with more options", 16, yellow, 0},
}};

void expectPage(int lineHeight) {
  const std::vector<DrawnText>& texts = nullGraphics().texts;
  ASSERT_EQ(texts.size(), 2 * lines.size());
  int y = 12;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const auto& [text, x, colour, gap] = lines[i];
    SCOPED_TRACE(text);
    const DrawnText& shadow = texts[2 * i];
    const DrawnText& line = texts[2 * i + 1];
    EXPECT_EQ(shadow.text, text);
    EXPECT_EQ(line.text, text);
    EXPECT_EQ(shadow.area, (Rect{x + 1, y + 1, 416, y + 200}));
    EXPECT_EQ(line.area, (Rect{x, y, 416, y + 200}));
    EXPECT_EQ(shadow.colour, 0xFF000000U);
    EXPECT_EQ(line.colour, colour);
    EXPECT_EQ(shadow.font, colourSpaceView.titleFont);
    EXPECT_EQ(line.font, colourSpaceView.titleFont);
    y += lineHeight + gap;
  }
}

TEST_F(HelpPage, HasSeventeenLinesEachWithItsShadow) {
  render(ViewCode::Help);
  expectPage(16);
}

TEST_F(HelpPage, FollowsTheHeightOfTheLines) {
  for (const int more : {1, 5, -3}) {
    nullGraphics().spaceBelowLine = more;
    render(ViewCode::Help);
    expectPage(16 + more);
  }
}

TEST_F(HelpPage, KeepsTheTwoBlanksOfTheSixthLineAndTheOneOfTheSeventh) {
  render(ViewCode::Help);
  EXPECT_NE(nullGraphics().texts.at(11).text.find(":  C"), std::string::npos);
  EXPECT_NE(nullGraphics().texts.at(13).text.find(": A"), std::string::npos);
}

TEST_F(HelpPage, HasNoTitleLine) {
  colourSpaceView.titleText = "the transform in force";
  render(ViewCode::Help);
  for (const DrawnText& text : nullGraphics().texts) {
    EXPECT_NE(text.text, colourSpaceView.titleText);
  }
}

TEST_F(HelpPage, HasNoGeometry) {
  render(ViewCode::Help);
  EXPECT_TRUE(nullGraphics().drawn.empty());
}

TEST_F(HelpPage, IsTheSamePageInALowWindow) {
  resizeDevice(300, 60);
  render(ViewCode::Help);
  expectPage(16);
}

}  // namespace
}  // namespace tintora
