#include "platform/program.h"

#include <windows.h>
#include <shellapi.h>

#include <algorithm>
#include <array>
#include <string_view>

#include "engine/custom_transforms.h"

namespace tintora::platform {

std::string customTransformFile() {
  return customTransformPath(GetCommandLineA());
}

std::string programArguments() {
  // The program's path ends at a blank, or at the closing quote if it is quoted.
  const std::string line = GetCommandLineA();
  const bool quoted = line.starts_with('"');
  const std::size_t pathEnd = line.find_first_of(quoted ? "\"" : " \t", quoted ? 1 : 0);
  if (pathEnd == std::string::npos) return {};
  const std::size_t start = line.find_first_not_of(" \t", pathEnd + 1);
  return start == std::string::npos ? std::string() : line.substr(start);
}

Size screenSize() {
  return {GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
}

void openPageBesideProgram(const std::string& fileName) {
  std::array<char, 32768> path;
  const DWORD length = GetModuleFileNameA(nullptr, path.data(), static_cast<DWORD>(path.size()));
  const std::string_view program(path.data(), length);
  const std::string page(program.substr(0, program.find_last_of('\\') + 1));
  ShellExecuteA(nullptr, "open", (page + fileName).c_str(), nullptr, nullptr, SW_SHOWNORMAL);
}

}  // namespace tintora::platform
