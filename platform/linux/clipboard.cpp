#include "platform/clipboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QImage>

#include "platform/linux/view_source.h"

namespace tintora::platform {

struct Picture {
  QImage image;
};

Picture* captureClientArea(Window* window) {
  const Rect area = clientArea(window);
  const QImage copy = viewSource->copy({area.width(), area.height()});
  return new Picture{copy.convertToFormat(QImage::Format_RGB888)};
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
