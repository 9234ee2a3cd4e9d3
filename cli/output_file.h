// Whole files in and out.
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string_view>
#include <vector>

#include "cli/byte_stream.h"

namespace tintora::cli {

// Every failure below is a std::runtime_error of one line that says what could not be read or
// written, and why.

// As a file's path, this is standard input or standard output.
inline constexpr std::string_view standardStream = "-";

// Returns the bytes of a file, or of standard input for "-". Throws if there are more than the
// limit.
std::vector<std::uint8_t> readFileWhole(const std::filesystem::path& source, std::uint64_t limit);

// Puts the contents into a file, new or replaced: the file then holds all of them, or after a
// failure what it held before, whenever another program looks. A replaced file passes on its
// permissions and, as far as we may, its owner. A symbolic link stays, and the file it leads to is
// written. What is not a regular file, such as a device or a pipe, and the file that is standard
// output are written to directly.
void writeFileWhole(const std::filesystem::path& target, std::span<const std::uint8_t> contents);

// A file that is read piece by piece; "-" is standard input.
struct InputFile {
  explicit InputFile(const std::filesystem::path& path);

  Descriptor file;
  ByteSource source;
};

// A file that is written piece by piece into the sink and appears whole, or not at all, as
// writeFileWhole says; "-" is standard output. What is not a regular file gets its bytes at the
// end, from a temporary file.
struct OutputFile {
  explicit OutputFile(std::filesystem::path path);
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  void commit();

  std::filesystem::path target;
  ByteSink sink;
  Descriptor file{-1};              // of the sink
  std::filesystem::path temporary;  // removed unless committed
  std::filesystem::path place;      // where the temporary file goes
  bool spools = false;
};

void writeStandardOutput(std::span<const std::uint8_t> contents);

}  // namespace tintora::cli
