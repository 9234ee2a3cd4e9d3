#include "painted_page.h"

#include <windows.h>

#include <array>
#include <cmath>

#include "ink.h"

namespace tintora::windows_test {

namespace {

COLORREF native(const Colour& colour) {
  return RGB(colour[0], colour[1], colour[2]);
}

HFONT createFont(int height) {
  return CreateFontA(height, 0, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE, DEFAULT_CHARSET,
                     OUT_TT_ONLY_PRECIS, 0, 0, 0, "Microsoft Sans Serif");
}

struct HelpLine {
  int x;
  Colour colour;
  int gap;  // below the line
  const char* text;
};

constexpr Colour titleColour{255, 255, 255};
constexpr Colour yellowText{255, 255, 0};
constexpr int helpTop = 12;
constexpr std::array helpLines{
    HelpLine{16, yellowText, 6, "The main window applies a colour transform to the screen."},
    HelpLine{16, titleColour, 0, "Select the type of colour vision deficiency:"},
    HelpLine{37, titleColour, 0, "Press P for Protanomalous vision"},
    HelpLine{37, titleColour, 6, "Press D for Deuteranomalous vision"},
    HelpLine{16, titleColour, 0, "Use the mouse-wheel (or +- keys) to adjust severity:"},
    HelpLine{37, titleColour, 0, "0% to 40% :  Colour normal variation"},
    HelpLine{37, titleColour, 0, "55% to 95% : Anomalous Trichromacy"},
    HelpLine{37, titleColour, 6, "100% : Dichromat"},
    HelpLine{16, titleColour, 0, "Users with normal colour vision press S for simulation"},
    HelpLine{16, titleColour, 6, "Users with colour vision deficiency press A for Daltonize"},
    HelpLine{16, yellowText, 6, "Left mouse button down to drag / resize the main window"},
    HelpLine{16, titleColour, 0, "Press F1 to show / hide this help window"},
    HelpLine{16, titleColour, 0, "Press R to show the RGB colour space in this window"},
    HelpLine{67, titleColour, 0, "Left mouse button down to rotate the RGB cube"},
    HelpLine{16, titleColour, 0, "Press C to show the Chromaticity diagram"},
    HelpLine{16, titleColour, 6, "Press E to show the Photoreceptor response curves"},
    HelpLine{16, yellowText, 0, "Right-Click for the application menu with more options"},
};

// Appends a line with a black shadow one pixel to the right and below.
void appendShadowed(std::vector<PageLine>& page, const PageLine& line) {
  PageLine shadow = line;
  ++shadow.x;
  ++shadow.y;
  shadow.colour = {0, 0, 0};
  page.push_back(shadow);
  page.push_back(line);
}

}  // namespace

Picture paintedPage(const ClientSize& size, const std::vector<PageLine>& lines, double scale) {
  const auto onScreen = [&](int length) { return static_cast<int>(std::lround(length * scale)); };
  return drawnPicture(size.width, size.height, [&](HDC context) {
    const HBRUSH ground = CreateSolidBrush(native(background));
    const RECT all{0, 0, size.width, size.height};
    FillRect(context, &all, ground);
    DeleteObject(ground);
    SetBkMode(context, TRANSPARENT);
    for (const PageLine& line : lines) {
      const HFONT font = createFont(onScreen(line.height));
      const HGDIOBJ previousFont = SelectObject(context, font);
      const RECT area{onScreen(line.x), onScreen(line.y), onScreen(line.right), size.height};
      SetTextColor(context, native(line.colour));
      ExtTextOutA(context, static_cast<int>(area.left), static_cast<int>(area.top), ETO_CLIPPED,
                  &area, line.text.data(), static_cast<UINT>(line.text.size()), nullptr);
      SelectObject(context, previousFont);
      DeleteObject(font);
    }
  });
}

Picture titlePage(const ClientSize& size, const std::string& title) {
  std::vector<PageLine> page;
  appendShadowed(page, {12, 10, 412, titleColour, title});
  return paintedPage(size, page);
}

Picture helpPage(const ClientSize& size, double scale) {
  constexpr int right = 416;
  std::vector<PageLine> page;
  int y = helpTop;
  for (const HelpLine& line : helpLines) {
    appendShadowed(page, {line.x, y, right, line.colour, line.text});
    y += titleHeight + line.gap;
  }
  return paintedPage(size, page, scale);
}

std::vector<Bounds> helpStrips(const ClientSize& size) {
  std::vector<Bounds> strips;
  int y = helpTop;
  for (const HelpLine& line : helpLines) {
    strips.push_back({0, y, size.width, y + titleHeight});
    y += titleHeight + line.gap;
  }
  return strips;
}

}  // namespace tintora::windows_test
