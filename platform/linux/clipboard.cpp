#include "platform/clipboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QImage>
#include <QPixmap>
#include <QScreen>

#include "platform/linux/filtered_view.h"
#include "platform/linux/screen_place.h"

namespace tintora::platform {

struct Picture {
  QImage image;
};

Picture* captureClientArea(Window* window) {
  finishView();
  const QPoint origin = onRoot(clientOrigin(window));
  const Rect area = clientArea(window);
  QScreen* const screen = QGuiApplication::primaryScreen();
  // Of the root, whose pixels are the screen's.
  const QPixmap pixels =
      screen->grabWindow(0, origin.x() - screen->geometry().x(),
                         origin.y() - screen->geometry().y(), area.width(), area.height());
  return new Picture{pixels.toImage().convertToFormat(QImage::Format_RGB888)};
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
