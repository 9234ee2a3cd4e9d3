#include "platform/clipboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QImage>

#include "platform/linux/filtered_view.h"

namespace tintora::platform {

struct Picture {
  QImage image;
};

Picture* captureClientArea(Window* window) {
  const Rect area = clientArea(window);
  const QImage view = pictureOfView();
  const QSize size = view.size().boundedTo({area.width(), area.height()});
  return new Picture{view.copy({QPoint(), size}).convertToFormat(QImage::Format_RGB888)};
}

bool putOnClipboard(Window* /*owner*/, Picture* picture) {
  if (picture->image.isNull()) return false;
  QGuiApplication::clipboard()->setImage(picture->image);
  return true;
}

void deletePicture(Picture* picture) {
  delete picture;
}

}  // namespace tintora::platform
