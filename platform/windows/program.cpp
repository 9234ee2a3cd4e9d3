#include "platform/program.h"

#include <windows.h>
#include <objbase.h>
#include <shellapi.h>

#include <string>

#include "engine/custom_transforms.h"
#include "platform/windows/path.h"
#include "platform/windows/scale.h"
#include "platform/windows/text.h"
#include "platform/windows/view_pace.h"

namespace tintora::platform {

std::filesystem::path customTransformFile() {
  // Use UTF-8: no byte of its multi-byte characters looks like a backslash, as one may in other
  // code pages.
  const std::u8string line = utf8(GetCommandLineW());
  const std::string path =
      customTransformPath({reinterpret_cast<const char*>(line.data()), line.size()});
  return openablePath(std::filesystem::path(std::u8string(path.begin(), path.end())).wstring());
}

std::string programArguments() {
  // The program's path ends at a blank or, if it is quoted, at the closing quote.
  const std::string line = narrow(GetCommandLineW());
  const bool quoted = line.starts_with('"');
  const std::size_t pathEnd = line.find_first_of(quoted ? "\"" : " \t", quoted ? 1 : 0);
  if (pathEnd == std::string::npos) return {};
  const std::size_t start = line.find_first_not_of(" \t", pathEnd + 1);
  return start == std::string::npos ? std::string() : line.substr(start);
}

Size screenSize() {
  return {GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
}

double screenScale() {
  return scaleOf(nullptr);
}

void openPageBesideProgram(const std::string& fileName) {
  std::wstring program(longestPath, L'\0');
  program.resize(GetModuleFileNameW(nullptr, program.data(), longestPath));
  const std::wstring page = program.substr(0, program.find_last_of(L'\\') + 1) + wide(fileName);
  // ShellExecute may start browsers through COM, which each calling thread has to initialise.
  beginModalLoop();  // the desktop may ask which program to use
  const HRESULT ready = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE);
  ShellExecuteW(nullptr, L"open", shellPath(page).c_str(), nullptr, nullptr, SW_SHOWNORMAL);
  if (SUCCEEDED(ready)) CoUninitialize();
  endModalLoop();
}

}  // namespace tintora::platform
