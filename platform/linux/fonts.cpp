#include "platform/linux/fonts.h"

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

// The em of the font meant, by its height: its lines are 1.13 em high. Substitutes have taller
// lines at the same size of their letters.
QFont fontOfHeight(int height) {
  constexpr double linesPerEm = 1.13;
  QFont font = sansSerif();
  font.setPixelSize(qRound(height / linesPerEm));
  return font;
}

int baselineOfHeight(int height) {
  constexpr double ascentOfLine = 0.81;
  return qRound(height * ascentOfLine);
}

}  // namespace tintora::platform
