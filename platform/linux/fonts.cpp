#include "platform/linux/fonts.h"

#include <QStringList>

namespace tintora::platform {

namespace {

// Returns the intended font, or a substitute of about its widths.
QFont sansSerif() {
  QFont font("Microsoft Sans Serif");
  font.setFamilies(QStringList{"Microsoft Sans Serif", "Liberation Sans", "Arimo", "Arial",
                               "Nimbus Sans", "Helvetica", "DejaVu Sans Condensed"});
  font.setStyleHint(QFont::SansSerif);
  return font;
}

}  // namespace

// Computes the em of the intended font from the height of its lines, which is 1.13 em. A substitute
// has taller lines at the same size of letters.
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
