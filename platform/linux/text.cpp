#include "platform/linux/text.h"

#include "engine/windows_1252.h"

namespace tintora::platform {

QString toUnicode(std::string_view text) {
  QString result;
  for (const char character : text) result += QChar(toCodePoint(character));
  return result;
}

std::string fromUnicode(const QString& text) {
  std::string result;
  for (const QChar character : text) result += fromCodePoint(character.unicode()).value_or('?');
  return result;
}

}  // namespace tintora::platform
