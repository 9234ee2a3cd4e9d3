// Hands pictures from the thread that receives them to the thread that shows them. Neither waits
// until the other has finished with a picture.
#pragma once

#include <QImage>
#include <QRegion>
#include <QSize>
#include <cstddef>
#include <cstdint>

namespace tintora::platform {

// A picture in a source's memory. Pixels have four bytes.
struct FramePixels {
  const std::uint8_t* topLeft;
  std::ptrdiff_t toRight;  // bytes from a pixel to the next one to the right
  std::ptrdiff_t down;     // bytes from a pixel to the one below
  QSize size;
  bool redFirst;  // red, green, blue in memory; else blue, green, red
};

// Both threads hold the same lock while they use it.
struct FrameExchange {
  QImage next;      // blue first
  QRegion missing;  // where `next` lacks changes that were received
  QRegion changed;  // since a picture was last taken
  bool waits = false;
};

// Copies a picture that differs from the one before in this region. Returns false if there is no
// memory for it.
bool putFrame(FrameExchange& exchange, const FramePixels& pixels, const QRegion& changed);

// Exchanges a picture that was taken before, or a null one, for the newest. Returns where the two
// differ: nowhere if there is none that is newer.
QRegion takeFrame(FrameExchange& exchange, QImage& picture);

}  // namespace tintora::platform
