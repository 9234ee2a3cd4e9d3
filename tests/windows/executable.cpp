#include "executable.h"

#include <cstddef>
#include <cstring>
#include <fstream>
#include <iterator>

namespace tintora::windows_test {

namespace {

using Bytes = std::vector<char>;

Bytes read(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

template <typename Record>
Record recordAt(const Bytes& file, std::size_t offset) {
  Record record{};
  if (offset + sizeof record <= file.size()) std::memcpy(&record, &file[offset], sizeof record);
  return record;
}

std::size_t headersOffset(const Bytes& file) {
  return static_cast<std::size_t>(recordAt<IMAGE_DOS_HEADER>(file, 0).e_lfanew);
}

// Returns the offset in the file of an address relative to the loaded image.
std::size_t fileOffset(const Bytes& file, DWORD address) {
  const auto headers = recordAt<IMAGE_NT_HEADERS64>(file, headersOffset(file));
  const std::size_t first = headersOffset(file) + offsetof(IMAGE_NT_HEADERS64, OptionalHeader) +
                            headers.FileHeader.SizeOfOptionalHeader;
  for (WORD i = 0; i < headers.FileHeader.NumberOfSections; ++i) {
    const auto section =
        recordAt<IMAGE_SECTION_HEADER>(file, first + i * sizeof(IMAGE_SECTION_HEADER));
    if (address >= section.VirtualAddress &&
        address < section.VirtualAddress + section.SizeOfRawData) {
      return address - section.VirtualAddress + section.PointerToRawData;
    }
  }
  return file.size();
}

std::string textAt(const Bytes& file, std::size_t offset) {
  std::string text;
  for (; offset < file.size() && file[offset] != '\0'; ++offset) text += file[offset];
  return text;
}

}  // namespace

IMAGE_NT_HEADERS64 headersOf(const std::string& path) {
  const Bytes file = read(path);
  return recordAt<IMAGE_NT_HEADERS64>(file, headersOffset(file));
}

std::vector<std::string> importedLibraries(const std::string& path) {
  const Bytes file = read(path);
  const DWORD table =
      headersOf(path).OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
  std::vector<std::string> names;
  for (std::size_t offset = fileOffset(file, table);; offset += sizeof(IMAGE_IMPORT_DESCRIPTOR)) {
    const auto entry = recordAt<IMAGE_IMPORT_DESCRIPTOR>(file, offset);
    if (entry.Name == 0) return names;
    names.push_back(textAt(file, fileOffset(file, entry.Name)));
  }
}

}  // namespace tintora::windows_test
