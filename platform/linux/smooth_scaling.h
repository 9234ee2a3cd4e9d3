// Scales pictures by area: each pixel becomes the mean of what it covers in the source, so that
// text stays readable when it shrinks. Any part scales exactly as it does in the whole picture.
#pragma once

#include <QRect>
#include <QSize>
#include <cstddef>
#include <cstdint>

namespace tintora::platform {

// Pixels of four bytes in rows.
struct PixelRows {
  const std::uint8_t* bytes;
  std::ptrdiff_t stride;
  QSize size;
};

// Scales a picture to a size, and writes only this part of the result, to rows that begin at the
// part's top left corner. Neither size may be empty or exceed 32767 pixels on a side.
void scaleByArea(const PixelRows& source, const QSize& size, const QRect& part,
                 std::uint8_t* destination, std::ptrdiff_t destinationStride);

// Returns the part of the scaled picture in which a part of the source is visible.
QRect scaledPart(const QRect& part, const QSize& source, const QSize& size);

}  // namespace tintora::platform
