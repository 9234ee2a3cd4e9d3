// Whole files in and out.
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <vector>

namespace tintora::cli {

// Every failure below is a std::runtime_error of one line that says what could not be read or
// written, and why.

// The bytes of a file of at most limit bytes, or of standard input for "-".
std::vector<std::uint8_t> readFileWhole(const std::filesystem::path& source, std::uint64_t limit);

// Puts the contents into a file, new or replaced: the file then holds all of them, or after a
// failure what it held before, whenever another program looks. A replaced file passes on its
// permissions and, as far as we may, its owner. A symbolic link stays, and the file it leads to is
// written. What is not a regular file, such as a device or a pipe, and the file that is standard
// output are written to directly.
void writeFileWhole(const std::filesystem::path& target, std::span<const std::uint8_t> contents);

void writeStandardOutput(std::span<const std::uint8_t> contents);

}  // namespace tintora::cli
