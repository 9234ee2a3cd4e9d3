#include "platform/linux/keys.h"

#include <QKeyEvent>
#include <array>
#include <cstdint>
#include <string_view>

namespace tintora::platform {

namespace {

struct NamedKey {
  int key;  // Qt's
  int code;
};

constexpr std::array<NamedKey, 33> namedKeys{{
    {Qt::Key_Backspace, 8},   {Qt::Key_Tab, 9},       {Qt::Key_Backtab, 9},
    {Qt::Key_Return, 13},     {Qt::Key_Enter, 13},    {Qt::Key_Shift, 16},
    {Qt::Key_Control, 17},    {Qt::Key_Pause, 19},    {Qt::Key_CapsLock, 20},
    {Qt::Key_Escape, 27},     {Qt::Key_Space, 32},    {Qt::Key_PageUp, 33},
    {Qt::Key_PageDown, 34},   {Qt::Key_End, 35},      {Qt::Key_Home, 36},
    {Qt::Key_Left, 37},       {Qt::Key_Up, 38},       {Qt::Key_Right, 39},
    {Qt::Key_Down, 40},       {Qt::Key_Print, 44},    {Qt::Key_Insert, 45},
    {Qt::Key_Delete, 46},     {Qt::Key_NumLock, 144}, {Qt::Key_ScrollLock, 145},
    {Qt::Key_Semicolon, 186}, {Qt::Key_Plus, 187},    {Qt::Key_Equal, 187},
    {Qt::Key_Comma, 188},     {Qt::Key_Minus, 189},   {Qt::Key_Underscore, 189},
    {Qt::Key_Menu, 93},       {Qt::Key_Meta, 91},     {Qt::Key_Help, 47},
}};

// On the number pad, with number lock; without it they are the keys above.
constexpr std::array<NamedKey, 6> padKeys{{
    {Qt::Key_Asterisk, 106},
    {Qt::Key_Plus, 107},
    {Qt::Key_Comma, 108},
    {Qt::Key_Minus, 109},
    {Qt::Key_Period, 110},
    {Qt::Key_Slash, 111},
}};
constexpr int padZero = 96;
constexpr int firstFunctionKey = 112;
constexpr int lastFunctionKey = 135;

// Rows of letters by the place of their keys on the keyboard, for scripts without Latin letters:
// there a key keeps the code of the letter that stands beside it.
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
    if (isBetween(key, Qt::Key_0, Qt::Key_9)) return padZero + key - Qt::Key_0;
    if (const int code = lookUp(padKeys, key)) return code;
  }
  // Letters and digits are their own codes.
  if (isBetween(key, Qt::Key_A, Qt::Key_Z) || isBetween(key, Qt::Key_0, Qt::Key_9)) return key;
  if (isBetween(key, Qt::Key_F1, Qt::Key_F1 + lastFunctionKey - firstFunctionKey)) {
    return firstFunctionKey + key - Qt::Key_F1;
  }
  if (const int code = lookUp(namedKeys, key)) return code;
  constexpr int lastLatin = 0x17F;
  const bool otherScript = key > lastLatin && key < Qt::Key_Escape;
  return otherScript ? letterByPlace(event.nativeScanCode()) : 0;
}

}  // namespace tintora::platform
