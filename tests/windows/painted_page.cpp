#include "painted_page.h"

#include <windows.h>

#include "ink.h"

namespace tintora::windows_test {

namespace {

COLORREF native(const Colour& colour) {
  return RGB(colour[0], colour[1], colour[2]);
}

}  // namespace

Picture paintedPage(const ClientSize& size, const std::vector<PageLine>& lines) {
  const HDC screen = GetDC(nullptr);
  const HDC context = CreateCompatibleDC(screen);
  const HBITMAP bitmap = CreateCompatibleBitmap(screen, size.width, size.height);
  const HGDIOBJ previousBitmap = SelectObject(context, bitmap);
  const HFONT font = CreateFontA(16, 0, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE, DEFAULT_CHARSET,
                                 OUT_TT_ONLY_PRECIS, 0, 0, 0, "Microsoft Sans Serif");
  const HGDIOBJ previousFont = SelectObject(context, font);
  const HBRUSH ground = CreateSolidBrush(native(background));
  const RECT all{0, 0, size.width, size.height};
  FillRect(context, &all, ground);
  SetBkMode(context, TRANSPARENT);
  for (const PageLine& line : lines) {
    const RECT area{line.x, line.y, line.right, size.height};
    SetTextColor(context, native(line.colour));
    ExtTextOutA(context, line.x, line.y, ETO_CLIPPED, &area, line.text.data(),
                static_cast<UINT>(line.text.size()), nullptr);
  }
  Picture page{size.width, size.height, {}};
  for (int y = 0; y < size.height; ++y) {
    for (int x = 0; x < size.width; ++x) {
      const COLORREF pixel = GetPixel(context, x, y);
      page.pixels.push_back({GetRValue(pixel), GetGValue(pixel), GetBValue(pixel)});
    }
  }
  SelectObject(context, previousFont);
  SelectObject(context, previousBitmap);
  DeleteObject(ground);
  DeleteObject(font);
  DeleteObject(bitmap);
  DeleteDC(context);
  ReleaseDC(nullptr, screen);
  return page;
}

}  // namespace tintora::windows_test
