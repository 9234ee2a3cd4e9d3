// Converts between the program's Windows-1252 text and Qt's Unicode.
#pragma once

#include <QString>
#include <string>
#include <string_view>

namespace tintora::platform {

// Returns the text in Unicode. Valid UTF-8 is read as such, because users' files on this desktop
// have it. The program's own text is valid UTF-8 only if it is ASCII.
QString toUnicode(std::string_view text);

// Returns the first bytes of a text, at most this many, without cutting a UTF-8 character.
std::string_view firstBytes(std::string_view text, std::size_t most);

}  // namespace tintora::platform
