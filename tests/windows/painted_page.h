// A page of text painted by the desktop, for comparison with the text in the views.
#pragma once

#include <string>
#include <vector>

#include "colour_space_run.h"
#include "picture.h"

namespace tintora::windows_test {

struct PageLine {
  int x = 0;
  int y = 0;
  int right = 0;  // the text is cut off from this column on
  Colour colour{};
  std::string text;
};

// Returns the page on the background of the views, in the font of their titles.
Picture paintedPage(const ClientSize& size, const std::vector<PageLine>& lines);

}  // namespace tintora::windows_test
