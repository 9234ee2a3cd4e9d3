// Virtual-key codes, the program's names for keys on every desktop. Letters and digits are their
// own upper-case characters.
#pragma once

namespace tintora::platform::keys {

inline constexpr int backspace = 8;
inline constexpr int tab = 9;
inline constexpr int enter = 13;
inline constexpr int shift = 16;
inline constexpr int control = 17;
inline constexpr int pause = 19;
inline constexpr int capsLock = 20;
inline constexpr int escape = 27;
inline constexpr int space = 32;
inline constexpr int pageUp = 33;
inline constexpr int pageDown = 34;
inline constexpr int end = 35;
inline constexpr int home = 36;
inline constexpr int left = 37;
inline constexpr int up = 38;
inline constexpr int right = 39;
inline constexpr int down = 40;
inline constexpr int print = 44;
inline constexpr int insert = 45;
inline constexpr int del = 46;
inline constexpr int help = 47;
inline constexpr int leftMeta = 91;
inline constexpr int menu = 93;
inline constexpr int padZero = 96;  // the digits are 96 to 105
inline constexpr int padMultiply = 106;
inline constexpr int padPlus = 107;
inline constexpr int padSeparator = 108;
inline constexpr int padMinus = 109;
inline constexpr int padDecimal = 110;
inline constexpr int padDivide = 111;
inline constexpr int f1 = 112;
inline constexpr int f24 = 135;
inline constexpr int numLock = 144;
inline constexpr int scrollLock = 145;
inline constexpr int semicolon = 186;
inline constexpr int plus = 187;
inline constexpr int comma = 188;
inline constexpr int minus = 189;

}  // namespace tintora::platform::keys
