#include "engine/custom_transforms.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>

namespace tintora {

std::vector<CustomTransform> customTransforms;

namespace {

constexpr std::string_view fieldSeparators = " \t";
constexpr std::string_view lineEnds{"\n\r\0", 3};

// The byte at which text mode ends a file on Windows.
constexpr char endOfText = '\x1A';

// Reads a text line by line.
struct LineReader {
  std::string_view rest;
  std::size_t lineNumber = 0;

  std::string_view next() {
    ++lineNumber;
    const std::size_t end = std::min(rest.find_first_of(lineEnds), rest.size());
    const std::string_view line = rest.substr(0, end);
    rest.remove_prefix(end);
    // A carriage return and the line feed behind it are one end.
    rest.remove_prefix(rest.starts_with("\r\n") ? 2 : std::min<std::size_t>(1, rest.size()));
    return line;
  }
};

std::vector<std::string> splitFields(std::string_view line) {
  std::vector<std::string> fields;
  while (true) {
    const std::size_t start = line.find_first_not_of(fieldSeparators);
    if (start == std::string_view::npos) return fields;
    line.remove_prefix(start);
    const std::size_t length = std::min(line.find_first_of(fieldSeparators), line.size());
    fields.emplace_back(line.substr(0, length));
    line.remove_prefix(length);
  }
}

bool isLetter(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

// Returns the number that the longest leading part of a field forms, in any notation of C: decimal,
// hexadecimal, or a signed "inf" or "nan". Without a sign those two are words and no numbers. The
// program never leaves the "C" locale's decimal point.
std::optional<float> leadingNumber(const std::string& field) {
  if (isLetter(field.front())) return std::nullopt;
  char* end = nullptr;
  const float number = std::strtof(field.c_str(), &end);
  if (end == field.c_str()) return std::nullopt;
  return number;
}

// Reads four numbers into the row. Returns what is wrong with the line, or nothing.
std::optional<std::string> parseRow(std::string_view line, std::array<float, 4>& row) {
  const std::vector<std::string> fields = splitFields(line);
  if (fields.size() != row.size()) {
    return "expected 4 numbers, found " + std::to_string(fields.size());
  }
  for (std::size_t i = 0; i < row.size(); ++i) {
    const std::optional<float> number = leadingNumber(fields[i]);
    if (!number) return "\"" + fields[i] + "\" is not a number";
    row[i] = *number;
  }
  return std::nullopt;
}

bool isBlank(std::string_view text) {
  constexpr std::string_view blank{" \t\n\r\0", 5};
  return text.find_first_not_of(blank) == std::string_view::npos;
}

std::string readFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

CustomTransformFile parseCustomTransforms(std::string_view text) {
  CustomTransformFile file;
  LineReader lines{text.substr(0, text.find(endOfText))};
  while (!lines.rest.empty()) {
    const std::string_view recordText = lines.rest;
    const std::size_t nameLine = lines.lineNumber + 1;
    std::string_view name = lines.next();
    const std::array<std::string_view, 3> numberLines{lines.next(), lines.next(), lines.next()};

    CustomTransform entry;
    entry.adjustable = name.starts_with('$');
    if (entry.adjustable) name.remove_prefix(1);
    entry.name = name;
    for (std::size_t i = 0; i < numberLines.size(); ++i) {
      if (const auto fault = parseRow(numberLines[i], entry.rows[i])) {
        if (!isBlank(recordText)) file.malformed = {nameLine + 1 + i, *fault};
        return file;
      }
    }
    file.transforms.push_back(std::move(entry));
  }
  return file;
}

std::string customTransformPath(std::string_view commandLine) {
  constexpr std::string_view trimmed = " \"\t";
  const std::size_t start = std::min(commandLine.find_first_not_of(trimmed), commandLine.size());
  commandLine.remove_prefix(start);
  commandLine = commandLine.substr(0, commandLine.find_last_not_of(trimmed) + 1);
  // If there is no separator, the position is npos, and npos + 1 is 0: no directory.
  const std::size_t directoryLength = commandLine.find_last_of("\\/") + 1;
  return std::string(commandLine.substr(0, directoryLength)).append(customTransformFileName);
}

void loadCustomTransforms(const std::filesystem::path& path) {
  std::ranges::move(parseCustomTransforms(readFile(path)).transforms,
                    std::back_inserter(customTransforms));
}

}  // namespace tintora
