// A page of text as the desktop paints it, to compare the views' text with.
#pragma once

#include <string>
#include <vector>

#include "colour_space_run.h"
#include "picture.h"

namespace tintora::windows_test {

struct PageLine {
  int x = 0;
  int y = 0;
  int right = 0;  // the first column in which nothing is painted
  Colour colour{};
  std::string text;
};

// On the ground of the views, in the font of their titles.
Picture paintedPage(const ClientSize& size, const std::vector<PageLine>& lines);

}  // namespace tintora::windows_test
