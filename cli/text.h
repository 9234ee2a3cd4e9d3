// Text and numbers as the tool prints them.
#pragma once

#include <string>
#include <string_view>

namespace tintora::cli {

// The shortest decimal that reads back to the same float or double; "inf", "-inf" and "nan" as
// such.
std::string shortest(float value);
std::string shortest(double value);

// The program's single-byte text as UTF-8. Text that is valid UTF-8 already is a name from a file
// in that encoding and stays; anything else is Windows-1252.
std::string toUtf8(std::string_view text);

}  // namespace tintora::cli
