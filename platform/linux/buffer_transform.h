// How a picture lies in a source's buffer: turned and flipped, for instance if its monitor is.
#pragma once

#include <QPoint>
#include <QRect>
#include <QRegion>
#include <QSize>
#include <cstdint>

namespace tintora::platform {

// Steps in the buffer from a pixel of the picture to its neighbours.
struct BufferTransform {
  QPoint right{1, 0};
  QPoint down{0, 1};
  friend bool operator==(const BufferTransform&, const BufferTransform&) = default;
};

// Returns the transform with a number of PipeWire's (spa_meta_videotransform_value), or none for an
// unknown number.
BufferTransform bufferTransform(std::uint32_t number);

// Returns the size of a picture that takes this area of the buffer.
QSize pictureSize(const BufferTransform& transform, const QSize& area);

// Returns where in the area the picture's top left pixel is.
QPoint pictureCorner(const BufferTransform& transform, const QSize& area);

// Returns the part of the picture that is in a part of the area.
QRegion inPicture(const BufferTransform& transform, const QSize& area, const QRegion& part);

}  // namespace tintora::platform
