#include "platform/linux/fonts.h"

#include <QFontMetrics>
#include <QStringList>

namespace tintora::platform {

namespace {

// The font meant, or one of its widths.
QFont sansSerif() {
  QFont font("Microsoft Sans Serif");
  font.setFamilies(QStringList{"Microsoft Sans Serif", "Liberation Sans", "Arimo", "Arial",
                               "Nimbus Sans", "Helvetica", "DejaVu Sans Condensed"});
  font.setStyleHint(QFont::SansSerif);
  return font;
}

}  // namespace

QFont fontOfHeight(int height) {
  QFont font = sansSerif();
  font.setPixelSize(height);
  for (int size = height; size > 1 && QFontMetrics(font).height() > height; --size) {
    font.setPixelSize(size);
  }
  return font;
}

}  // namespace tintora::platform
