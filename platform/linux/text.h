// The program's text is Windows-1252; Qt's is Unicode.
#pragma once

#include <QString>
#include <string>
#include <string_view>

namespace tintora::platform {

QString toUnicode(std::string_view text);

// What Windows-1252 does not have becomes a question mark.
std::string fromUnicode(const QString& text);

}  // namespace tintora::platform
