#include "colour_space/labels.h"

#include "colour_space/colour_space_view.h"

namespace tintora {

platform::Point seenAt(const Vector3& point, int offsetX) {
  using platform::TransformKind;
  const platform::GraphicsDevice* const device = colourSpaceView.device;
  const Vector3 inView = transformedPoint(point, platform::transform(device, TransformKind::View));
  const Vector3 projected =
      transformedPoint(inView, platform::transform(device, TransformKind::Projection));
  const platform::Rect area = platform::viewport(device);
  const int middleX = area.left + area.width() / 2 + offsetX;
  const int middleY = area.top + area.height() / 2;
  return {static_cast<int>(static_cast<float>(area.width()) * projected.x * 0.5F +
                           static_cast<float>(middleX)),
          static_cast<int>(static_cast<float>(middleY) -
                           static_cast<float>(area.height()) * projected.y * 0.5F)};
}

void drawLabel(const platform::Point& place, const std::string& text) {
  constexpr int width = 100;
  constexpr int height = 50;
  platform::drawText(colourSpaceView.device, colourSpaceView.labelFont,
                     {place.x, place.y, place.x + width, place.y + height}, lightGrey, text);
}

}  // namespace tintora
