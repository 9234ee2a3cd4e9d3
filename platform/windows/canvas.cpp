#include "platform/canvas.h"

#include <windows.h>

#include "platform/windows/handles.h"
#include "platform/windows/scale.h"
#include "platform/windows/text.h"

namespace tintora::platform {

struct Canvas {
  HWND window;
  PAINTSTRUCT painting;
  HFONT font;
  HGDIOBJ previousFont;
  double scale;  // of the window's monitor
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
  canvas->scale = scaleOf(canvas->window);
  canvas->font = CreateFontW(scaled(paintFont.height, canvas->scale), 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
                             PROOF_QUALITY, 0, wide(paintFont.face).c_str());
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
  const std::wstring line = wide(text);
  TextOutW(canvas->painting.hdc, scaled(place.x, canvas->scale), scaled(place.y, canvas->scale),
           line.data(), static_cast<int>(line.size()));
}

}  // namespace tintora::platform
