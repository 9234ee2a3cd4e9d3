// The user's own matrices, read from a text file beside the program.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tintora {

struct CustomTransform {
  std::string name;         // as in the file, without a leading "$"
  bool adjustable = false;  // the severity setting is its strength
  // Output red, green, blue; in each the coefficients of red, green and blue and an offset.
  std::array<std::array<float, 4>, 3> rows{{
      {1.0F, 0.0F, 0.0F, 0.0F},
      {0.0F, 1.0F, 0.0F, 0.0F},
      {0.0F, 0.0F, 1.0F, 0.0F},
  }};
};

// Where and why the reading of a custom transform file ended early.
struct MalformedLine {
  std::size_t number;  // from 1
  std::string reason;
};

struct CustomTransformFile {
  std::vector<CustomTransform> transforms;  // the whole entries before the malformed one
  std::optional<MalformedLine> malformed;   // blank lines at the very end are not worth a word
};

// The entries in file order: filled at start-up, unchanged afterwards.
extern std::vector<CustomTransform> customTransforms;

// Reads the bytes of a custom transform file: records of a name line ("$" first: adjustable) and
// three lines of four numbers. The first malformed record ends the reading. Every desktop reads the
// bytes as Windows does in text mode: a carriage return with a line feed behind it is one line end,
// and the byte 0x1A ends the file.
CustomTransformFile parseCustomTransforms(std::string_view text);

inline constexpr const char* customTransformFileName = "Tintora_custom.txt";

// Returns where a command line, the program's path first, leads to: the file's name behind
// everything up to the last slash or backslash. That is beside the program, or where the path of an
// argument is.
std::string customTransformPath(std::string_view commandLine);

// Appends the entries of a file. A missing file adds none, a malformed one those before its first
// fault.
void loadCustomTransforms(const std::string& path);

}  // namespace tintora
