// Reads the headers and imports of an executable file.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

namespace tintora::windows_test {

// Returns the names of the libraries that a 64-bit executable imports.
std::vector<std::string> importedLibraries(const std::string& path);

IMAGE_NT_HEADERS64 headersOf(const std::string& path);

}  // namespace tintora::windows_test
