#include "platform/linux/buffer_transform.h"

#include <array>

namespace tintora::platform {

namespace {

// By PipeWire's number. The picture was flipped around the vertical axis if that is said, then
// turned counter-clockwise.
constexpr std::array<BufferTransform, 8> transforms{{
    {{1, 0}, {0, 1}},    // none
    {{0, -1}, {1, 0}},   // 90 degrees
    {{-1, 0}, {0, -1}},  // 180
    {{0, 1}, {-1, 0}},   // 270
    {{-1, 0}, {0, 1}},   // flipped
    {{0, 1}, {1, 0}},    // flipped, 90
    {{1, 0}, {0, -1}},   // flipped, 180
    {{0, -1}, {-1, 0}},  // flipped, 270
}};

}  // namespace

BufferTransform bufferTransform(std::uint32_t number) {
  return number < transforms.size() ? transforms[number] : BufferTransform{};
}

QSize pictureSize(const BufferTransform& transform, const QSize& area) {
  return transform.right.x() == 0 ? area.transposed() : area;
}

QPoint pictureCorner(const BufferTransform& transform, const QSize& area) {
  const QPoint forward = transform.right + transform.down;
  return {forward.x() < 0 ? area.width() - 1 : 0, forward.y() < 0 ? area.height() - 1 : 0};
}

QRegion inPicture(const BufferTransform& transform, const QSize& area, const QRegion& part) {
  if (transform == BufferTransform{}) return part;
  const QPoint corner = pictureCorner(transform, area);
  const auto place = [&](const QPoint& pixel) {
    return QPoint(QPoint::dotProduct(pixel - corner, transform.right),
                  QPoint::dotProduct(pixel - corner, transform.down));
  };
  QRegion region;
  for (const QRect& rect : part) {
    region +=
        QRect(place(rect.topLeft()), QSize(1, 1)) | QRect(place(rect.bottomRight()), QSize(1, 1));
  }
  return region;
}

}  // namespace tintora::platform
