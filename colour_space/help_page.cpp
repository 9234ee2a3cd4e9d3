#include "colour_space/help_page.h"

#include <array>

#include "colour_space/colour_space_view.h"

namespace tintora {

namespace {

constexpr PackedColour yellow = 0xFFFFFF00;
constexpr PackedColour white = 0xFFFFFFFF;
constexpr PackedColour black = 0xFF000000;

struct HelpLine {
  const char* text;
  int x;  // of the left edge
  PackedColour colour;
  int gap;  // below the line, in pixels
};

constexpr std::array<HelpLine, 17> helpLines{{
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

}  // namespace

void drawHelpPage() {
  const ColourSpaceView& view = colourSpaceView;
  constexpr int right = 416;
  constexpr int depth = 200;
  int y = 12;
  for (const HelpLine& line : helpLines) {
    platform::drawText(view.device, view.titleFont, {line.x + 1, y + 1, right, y + depth}, black,
                       line.text);
    const int height = platform::drawText(view.device, view.titleFont,
                                          {line.x, y, right, y + depth}, line.colour, line.text);
    y += height + line.gap;
  }
}

}  // namespace tintora
