// A library under another one's name, put where a program must not look for libraries. Writes a
// note when it is loaded.
#include "planted_library.h"

#include <windows.h>

#include <array>
#include <string>

using namespace tintora::windows_test;

BOOL WINAPI DllMain(HINSTANCE library, DWORD reason, void* /*reserved*/) {
  if (reason != DLL_PROCESS_ATTACH) return TRUE;
  std::array<char, 1024> path{};
  GetModuleFileNameA(library, path.data(), static_cast<DWORD>(path.size()));
  std::array<char, 1024> note{};
  GetEnvironmentVariableA(plantedNoteVariable, note.data(), static_cast<DWORD>(note.size()));
  const HANDLE file = CreateFileA(note.data(), FILE_APPEND_DATA, FILE_SHARE_READ, nullptr,
                                  OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  const std::string line = std::string(path.data()) + "\n";
  DWORD written = 0;
  WriteFile(file, line.data(), static_cast<DWORD>(line.size()), &written, nullptr);
  CloseHandle(file);
  return TRUE;
}
