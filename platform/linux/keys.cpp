#include "platform/linux/keys.h"

#include <QKeyEvent>
#include <array>
#include <cstdint>
#include <string_view>

#include "platform/keys.h"

namespace tintora::platform {

namespace {

struct NamedKey {
  int key;   // Qt's
  int code;  // of platform/keys.h
};

constexpr std::array<NamedKey, 33> namedKeys{{
    {Qt::Key_Backspace, keys::backspace},
    {Qt::Key_Tab, keys::tab},
    {Qt::Key_Backtab, keys::tab},
    {Qt::Key_Return, keys::enter},
    {Qt::Key_Enter, keys::enter},
    {Qt::Key_Shift, keys::shift},
    {Qt::Key_Control, keys::control},
    {Qt::Key_Pause, keys::pause},
    {Qt::Key_CapsLock, keys::capsLock},
    {Qt::Key_Escape, keys::escape},
    {Qt::Key_Space, keys::space},
    {Qt::Key_PageUp, keys::pageUp},
    {Qt::Key_PageDown, keys::pageDown},
    {Qt::Key_End, keys::end},
    {Qt::Key_Home, keys::home},
    {Qt::Key_Left, keys::left},
    {Qt::Key_Up, keys::up},
    {Qt::Key_Right, keys::right},
    {Qt::Key_Down, keys::down},
    {Qt::Key_Print, keys::print},
    {Qt::Key_Insert, keys::insert},
    {Qt::Key_Delete, keys::del},
    {Qt::Key_NumLock, keys::numLock},
    {Qt::Key_ScrollLock, keys::scrollLock},
    {Qt::Key_Semicolon, keys::semicolon},
    {Qt::Key_Plus, keys::plus},
    {Qt::Key_Equal, keys::plus},
    {Qt::Key_Comma, keys::comma},
    {Qt::Key_Minus, keys::minus},
    {Qt::Key_Underscore, keys::minus},
    {Qt::Key_Menu, keys::menu},
    {Qt::Key_Meta, keys::leftMeta},
    {Qt::Key_Help, keys::help},
}};

// The number pad's keys with number lock; without it they are the keys above.
constexpr std::array<NamedKey, 6> padKeys{{
    {Qt::Key_Asterisk, keys::padMultiply},
    {Qt::Key_Plus, keys::padPlus},
    {Qt::Key_Comma, keys::padSeparator},
    {Qt::Key_Minus, keys::padMinus},
    {Qt::Key_Period, keys::padDecimal},
    {Qt::Key_Slash, keys::padDivide},
}};

// Rows of letters by the position of their keys, for keyboards without Latin letters. There a key
// has the code of the Latin letter in its position.
struct LetterRow {
  std::uint32_t firstScanCode;
  std::string_view letters;
};
constexpr std::array<LetterRow, 3> letterRows{{
    {24, "QWERTYUIOP"},
    {38, "ASDFGHJKL"},
    {52, "ZXCVBNM"},
}};

template <std::size_t size>
int lookUp(const std::array<NamedKey, size>& table, int key) {
  for (const auto& [named, code] : table) {
    if (named == key) return code;
  }
  return 0;
}

bool isBetween(int key, int first, int last) {
  return first <= key && key <= last;
}

int letterByPlace(std::uint32_t scanCode) {
  for (const auto& [first, letters] : letterRows) {
    if (scanCode >= first && scanCode - first < letters.size()) return letters[scanCode - first];
  }
  return 0;
}

}  // namespace

int virtualKey(const QKeyEvent& event) {
  const int key = event.key();
  if (event.modifiers().testFlag(Qt::KeypadModifier)) {
    if (isBetween(key, Qt::Key_0, Qt::Key_9)) return keys::padZero + key - Qt::Key_0;
    if (const int code = lookUp(padKeys, key)) return code;
  }
  // Letters and digits are their own codes.
  if (isBetween(key, Qt::Key_A, Qt::Key_Z) || isBetween(key, Qt::Key_0, Qt::Key_9)) return key;
  if (isBetween(key, Qt::Key_F1, Qt::Key_F1 + keys::f24 - keys::f1)) {
    return keys::f1 + key - Qt::Key_F1;
  }
  if (const int code = lookUp(namedKeys, key)) return code;
  constexpr int lastLatin = 0x17F;
  const bool otherScript = key > lastLatin && key < Qt::Key_Escape;
  return otherScript ? letterByPlace(event.nativeScanCode()) : 0;
}

}  // namespace tintora::platform
