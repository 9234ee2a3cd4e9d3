#include "platform/linux/text.h"

#include <QByteArrayView>
#include <QUtf8StringView>

#include "engine/windows_1252.h"

namespace tintora::platform {

namespace {

QByteArrayView bytesOf(std::string_view text) {
  return {text.data(), static_cast<qsizetype>(text.size())};
}

}  // namespace

std::string_view firstBytes(std::string_view text, std::size_t most) {
  if (text.size() <= most) return text;
  if (!QUtf8StringView(bytesOf(text)).isValidUtf8()) return text.substr(0, most);
  const auto continues = [&](std::size_t place) { return (text[place] & 0xC0) == 0x80; };
  while (most > 0 && continues(most)) --most;
  return text.substr(0, most);
}

QString toUnicode(std::string_view text) {
  if (QUtf8StringView(bytesOf(text)).isValidUtf8()) return QString::fromUtf8(bytesOf(text));
  QString result;
  for (const char character : text) result += QChar(toCodePoint(character));
  return result;
}

}  // namespace tintora::platform
