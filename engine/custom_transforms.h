// The user's own matrices, read from a text file.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
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

// The line at which reading a custom transform file stopped early, and why.
struct MalformedLine {
  std::size_t number;  // from 1
  std::string reason;
};

struct CustomTransformFile {
  std::vector<CustomTransform> transforms;  // the whole entries before the malformed one
  std::optional<MalformedLine> malformed;   // blank lines at the very end are not worth a word
};

// The entries in file order. They are loaded at start-up and do not change afterwards.
extern std::vector<CustomTransform> customTransforms;

// Reads the bytes of a custom transform file: records of a name line ("$" first: adjustable) and
// three lines of four numbers. The first malformed record ends the reading. Every desktop reads the
// bytes as Windows does in text mode: a carriage return with a line feed behind it is one line end,
// and the byte 0x1A ends the file.
CustomTransformFile parseCustomTransforms(std::string_view text);

inline constexpr const char* customTransformFileName = "Tintora_custom.txt";

// Returns the path of the file that belongs to a command line: everything up to the last
// slash or backslash, and the file's name. A path among the arguments therefore moves the
// file.
std::string customTransformPath(std::string_view commandLine);

// Appends the entries of a file. A missing file adds none; a malformed file adds those before its
// first fault.
void loadCustomTransforms(const std::filesystem::path& path);

}  // namespace tintora
