// Scales pictures by area: a pixel becomes the mean of what it covers in the source, so that text
// stays readable when it is made smaller. Any part comes out exactly as it does in the whole.
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

// Scales a picture to a size, but only this part of the result, which is written to rows that begin
// at the part's left top corner. Neither size is empty or exceeds 32767 pixels on a side.
void scaleByArea(const PixelRows& source, const QSize& size, const QRect& part,
                 std::uint8_t* destination, std::ptrdiff_t destinationStride);

// Returns the pixels of the scaled picture that a part of the source is seen in.
QRect scaledPart(const QRect& part, const QSize& source, const QSize& size);

}  // namespace tintora::platform
