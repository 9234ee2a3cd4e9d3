#include "platform/windows/path.h"

#include <windows.h>

namespace tintora::platform {

namespace {

std::wstring fullPath(const std::wstring& path) {
  std::wstring full(longestPath, L'\0');
  full.resize(GetFullPathNameW(path.c_str(), longestPath, full.data(), nullptr));
  return full;
}

}  // namespace

std::wstring openablePath(const std::wstring& path) {
  std::wstring full = fullPath(path);
  if (full.size() < MAX_PATH || full.starts_with(L"\\\\?\\")) return full;
  const bool onNetwork = full.starts_with(L"\\\\");
  return onNetwork ? L"\\\\?\\UNC" + full.substr(1) : L"\\\\?\\" + full;
}

}  // namespace tintora::platform
