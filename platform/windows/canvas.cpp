#include "platform/canvas.h"

#include <windows.h>

#include "platform/windows/handles.h"

namespace tintora::platform {

struct Canvas {
  HWND window;
  PAINTSTRUCT painting;
  HFONT font;
  HGDIOBJ previousFont;
};

namespace {

COLORREF native(Colour colour) {
  return RGB(colour.red, colour.green, colour.blue);
}

}  // namespace

Canvas* beginPainting(Window* window) {
  auto* const canvas = new Canvas{};
  canvas->window = native(window);
  BeginPaint(canvas->window, &canvas->painting);
  canvas->font =
      CreateFontA(paintFont.height, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, PROOF_QUALITY, 0, paintFont.face);
  canvas->previousFont = SelectObject(canvas->painting.hdc, canvas->font);
  SetBkMode(canvas->painting.hdc, TRANSPARENT);
  return canvas;
}

void endPainting(Canvas* canvas) {
  SelectObject(canvas->painting.hdc, canvas->previousFont);
  DeleteObject(canvas->font);
  EndPaint(canvas->window, &canvas->painting);
  delete canvas;
}

void fill(Canvas* canvas, Colour colour) {
  RECT area{};
  GetClientRect(canvas->window, &area);
  const HBRUSH brush = CreateSolidBrush(native(colour));
  FillRect(canvas->painting.hdc, &area, brush);
  DeleteObject(brush);
}

void drawText(Canvas* canvas, const Point& place, Colour colour, const std::string& text) {
  SetTextColor(canvas->painting.hdc, native(colour));
  TextOutA(canvas->painting.hdc, place.x, place.y, text.data(), static_cast<int>(text.size()));
}

}  // namespace tintora::platform
