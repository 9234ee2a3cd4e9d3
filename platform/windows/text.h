// Converts the program's text, which is Windows-1252 whatever the desktop's code page is.
#pragma once

#include <string>
#include <string_view>

namespace tintora::platform {

// Returns the text in UTF-16.
std::wstring wide(std::string_view text);

// Returns the text in Windows-1252. Characters that it lacks become question marks.
std::string narrow(std::wstring_view text);

// Returns the text in UTF-8, which can hold every path.
std::u8string utf8(std::wstring_view text);

}  // namespace tintora::platform
