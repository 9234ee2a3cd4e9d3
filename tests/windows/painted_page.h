// A page of text painted by the desktop, for comparison with the text in the views.
#pragma once

#include <string>
#include <vector>

#include "colour_space_run.h"
#include "picture.h"

namespace tintora::windows_test {

constexpr int titleHeight = 16;  // of the titles' and the help's font, in pixels at 96 dpi
constexpr int labelHeight = 14;  // of the labels' font

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

// Returns the text of the main window's title, as the views show it.
Picture titlePage(const ClientSize& size, const std::string& title);

// Returns the help page in a window of this size, in pixels of a screen of this scale.
Picture helpPage(const ClientSize& size, double scale = 1.0);

// Returns the rows of each line of the help page at 96 dpi.
std::vector<Bounds> helpStrips(const ClientSize& size);

}  // namespace tintora::windows_test
