// The program's text, Windows-1252, as the desktop takes it whatever its own code page is.
#pragma once

#include <string>
#include <string_view>

namespace tintora::platform {

// Returns the text in UTF-16.
std::wstring wide(std::string_view text);

// Returns the text in Windows-1252; what that cannot hold becomes a question mark.
std::string narrow(std::wstring_view text);

// Returns the text in UTF-8, which holds every path.
std::u8string utf8(std::wstring_view text);

}  // namespace tintora::platform
