#include "platform/canvas.h"

#include <QPainter>
#include <memory>

#include "platform/linux/fonts.h"
#include "platform/linux/handles.h"
#include "platform/linux/scale.h"
#include "platform/linux/text.h"

namespace tintora::platform {

struct Canvas {
  Window* window;
  QPainter painter;
};

namespace {

QRegion areaOf(const Window* window) {
  return QRect(QPoint(), window->window->size());
}

}  // namespace

Canvas* beginPainting(Window* window) {
  static const QFont font = fontOfHeight(scaled(paintFont.height, desktopScale()));
  if (!window->surface) window->surface = std::make_unique<QBackingStore>(window->window.get());
  QBackingStore& surface = *window->surface;
  surface.resize(window->window->size());
  surface.beginPaint(areaOf(window));
  auto* const canvas = new Canvas{window, QPainter(surface.paintDevice())};
  canvas->painter.setFont(font);
  return canvas;
}

void endPainting(Canvas* canvas) {
  canvas->painter.end();
  Window* const window = canvas->window;
  window->surface->endPaint();
  if (window->window->isExposed()) window->surface->flush(areaOf(window));
  delete canvas;
}

void fill(Canvas* canvas, Colour colour) {
  canvas->painter.fillRect(canvas->painter.viewport(),
                           QColor(colour.red, colour.green, colour.blue));
}

void drawText(Canvas* canvas, const Point& place, Colour colour, const std::string& text) {
  QPainter& painter = canvas->painter;
  painter.setPen(QColor(colour.red, colour.green, colour.blue));
  const double scale = desktopScale();
  const int baseline = baselineOfHeight(scaled(paintFont.height, scale));
  painter.drawText(scaled(place.x, scale), scaled(place.y, scale) + baseline, toUnicode(text));
}

}  // namespace tintora::platform
