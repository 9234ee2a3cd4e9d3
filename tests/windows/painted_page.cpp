#include "painted_page.h"

#include <windows.h>

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

}  // namespace

Picture paintedPage(const ClientSize& size, const std::vector<PageLine>& lines, double scale) {
  const auto onScreen = [&](int length) { return static_cast<int>(std::lround(length * scale)); };
  const HDC screen = GetDC(nullptr);
  const HDC context = CreateCompatibleDC(screen);
  const HBITMAP bitmap = CreateCompatibleBitmap(screen, size.width, size.height);
  const HGDIOBJ previousBitmap = SelectObject(context, bitmap);
  const HBRUSH ground = CreateSolidBrush(native(background));
  const RECT all{0, 0, size.width, size.height};
  FillRect(context, &all, ground);
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
  Picture page{size.width, size.height, {}};
  for (int y = 0; y < size.height; ++y) {
    for (int x = 0; x < size.width; ++x) {
      const COLORREF pixel = GetPixel(context, x, y);
      page.pixels.push_back({GetRValue(pixel), GetGValue(pixel), GetBValue(pixel)});
    }
  }
  SelectObject(context, previousBitmap);
  DeleteObject(ground);
  DeleteObject(bitmap);
  DeleteDC(context);
  ReleaseDC(nullptr, screen);
  return page;
}

void appendShadowed(std::vector<PageLine>& page, const PageLine& line) {
  PageLine shadow = line;
  ++shadow.x;
  ++shadow.y;
  shadow.colour = {0, 0, 0};
  page.push_back(shadow);
  page.push_back(line);
}

Picture helpPage(const ClientSize& size, double scale) {
  constexpr int right = 416;
  std::vector<PageLine> page;
  int y = 12;
  for (const HelpLine& line : helpLines) {
    appendShadowed(page, {line.x, y, right, line.colour, line.text});
    y += titleHeight + line.gap;
  }
  return paintedPage(size, page, scale);
}

}  // namespace tintora::windows_test
