// Text and numbers as the tool prints them.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tintora::cli {

// Returns the shortest decimal that reads back to the same float or double; "inf", "-inf" and "nan"
// as such.
std::string shortest(float value);
std::string shortest(double value);

// Returns the texts in one, with something between them.
std::string joined(const std::vector<std::string>& texts, std::string_view between);

// Returns the program's single-byte text as UTF-8. Text that is valid UTF-8 already is a name from
// a file in that encoding and stays; anything else is Windows-1252.
std::string toUtf8(std::string_view text);

// Returns text from elsewhere, such as the name of a file, in a form that is safe on a terminal:
// control characters and bytes that are not UTF-8 become question marks, line feeds blanks.
std::string printable(std::string_view text);

// Escapes text for the content of an HTML or XML element, or an attribute in double quotes.
std::string escapeMarkup(std::string_view text);

// Returns the longest prefix of a UTF-8 text that fits into this many columns of a terminal.
std::string leadingColumns(std::string_view text, std::size_t columns);

}  // namespace tintora::cli
