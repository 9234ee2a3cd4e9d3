// A page of text painted by the desktop, for comparison with the text in the views.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "colour_space_run.h"
#include "picture.h"

namespace tintora::windows_test {

inline constexpr int titleHeight = 16;  // of the titles' and the help's font, in pixels at 96 dpi
inline constexpr int labelHeight = 14;  // of the labels' font

// One line of text; lengths are in pixels at 96 dpi.
struct PageLine {
  int x = 0;
  int y = 0;
  int right = 0;  // the text is cut off from this column on
  Colour colour{};
  std::string text;
  int height = titleHeight;
};

// Returns the page on the background of the views. The size is in pixels of the screen, which has
// this scale.
Picture paintedPage(const ClientSize& size, const std::vector<PageLine>& lines, double scale = 1.0);

// Appends a line with a black shadow one pixel to the right and below.
void appendShadowed(std::vector<PageLine>& page, const PageLine& line);

struct HelpLine {
  int x;
  Colour colour;
  int gap;  // below the line
  const char* text;
};

inline constexpr Colour white{255, 255, 255};
inline constexpr Colour yellow{255, 255, 0};
inline constexpr std::array helpLines{
    HelpLine{16, yellow, 6, "The main window applies a colour transform to the screen."},
    HelpLine{16, white, 0, "Select the type of colour vision deficiency:"},
    HelpLine{37, white, 0, "Press P for Protanomalous vision"},
    HelpLine{37, white, 6, "Press D for Deuteranomalous vision"},
    HelpLine{16, white, 0, "Use the mouse-wheel (or +- keys) to adjust severity:"},
    HelpLine{37, white, 0, "0% to 40% :  Colour normal variation"},
    HelpLine{37, white, 0, "55% to 95% : Anomalous Trichromacy"},
    HelpLine{37, white, 6, "100% : Dichromat"},
    HelpLine{16, white, 0, "Users with normal colour vision press S for simulation"},
    HelpLine{16, white, 6, "Users with colour vision deficiency press A for Daltonize"},
    HelpLine{16, yellow, 6, "Left mouse button down to drag / resize the main window"},
    HelpLine{16, white, 0, "Press F1 to show / hide this help window"},
    HelpLine{16, white, 0, "Press R to show the RGB colour space in this window"},
    HelpLine{67, white, 0, "Left mouse button down to rotate the RGB cube"},
    HelpLine{16, white, 0, "Press C to show the Chromaticity diagram"},
    HelpLine{16, white, 6, "Press E to show the Photoreceptor response curves"},
    HelpLine{16, yellow, 0, "Right-Click for the application menu with more options"},
};

// Returns the help page in a window of this size, in pixels of a screen of this scale.
Picture helpPage(const ClientSize& size, double scale = 1.0);

}  // namespace tintora::windows_test
