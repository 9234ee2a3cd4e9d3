// The program's text is Windows-1252; Qt's is Unicode.
#pragma once

#include <QString>
#include <string>
#include <string_view>

namespace tintora::platform {

// Text that is valid UTF-8 is read as such, because users' files of this desktop are written in it;
// the program's own text never is, except where both are the same.
QString toUnicode(std::string_view text);

// Returns the first bytes of a text, at most so many, without cutting a character of UTF-8.
std::string_view firstBytes(std::string_view text, std::size_t most);

}  // namespace tintora::platform
