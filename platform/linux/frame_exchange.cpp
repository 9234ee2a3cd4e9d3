#include "platform/linux/frame_exchange.h"

#include <QRect>
#include <cstring>
#include <utility>

namespace tintora::platform {

namespace {

constexpr std::ptrdiff_t pixelBytes = 4;

void copyRow(const std::uint8_t* from, const FramePixels& pixels, std::uint8_t* to, int width) {
  if (!pixels.redFirst && pixels.toRight == pixelBytes) {
    std::memcpy(to, from, static_cast<std::size_t>(pixelBytes * width));
    return;
  }
  const std::ptrdiff_t red = pixels.redFirst ? 0 : 2;
  for (int i = 0; i < width; ++i, from += pixels.toRight, to += pixelBytes) {
    to[0] = from[2 - red];
    to[1] = from[1];
    to[2] = from[red];
    to[3] = from[3];
  }
}

void copyPart(const FramePixels& pixels, const QRect& part, QImage& picture) {
  for (int y = part.top(); y <= part.bottom(); ++y) {
    copyRow(pixels.topLeft + y * pixels.down + part.left() * pixels.toRight, pixels,
            picture.scanLine(y) + pixelBytes * part.left(), part.width());
  }
}

}  // namespace

bool putFrame(FrameExchange& exchange, const FramePixels& pixels, const QRegion& changed) {
  const QRect whole(QPoint(), pixels.size);
  if (exchange.next.size() != pixels.size) {
    exchange.next = QImage(pixels.size, QImage::Format_RGB32);
    if (exchange.next.isNull()) return false;
    exchange.missing = whole;
  }
  for (const QRect& part : (exchange.missing + changed) & whole) {
    copyPart(pixels, part, exchange.next);
  }
  exchange.missing = QRegion();
  exchange.changed += changed;
  exchange.waits = true;
  return true;
}

QRegion takeFrame(FrameExchange& exchange, QImage& picture) {
  if (!std::exchange(exchange.waits, false)) return {};
  picture.swap(exchange.next);
  // The picture that was given back lacks the same changes.
  exchange.missing = exchange.changed;
  return std::exchange(exchange.changed, {}) & picture.rect();
}

}  // namespace tintora::platform
