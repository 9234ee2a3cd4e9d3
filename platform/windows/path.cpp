#include "platform/windows/path.h"

#include <windows.h>

#include <string_view>

namespace tintora::platform {

namespace {

constexpr std::wstring_view literally = L"\\\\?\\";
constexpr std::wstring_view literallyOnNetwork = L"\\\\?\\UNC\\";

std::wstring fullPath(const std::wstring& path) {
  std::wstring full(longestPath, L'\0');
  full.resize(GetFullPathNameW(path.c_str(), longestPath, full.data(), nullptr));
  return full;
}

std::wstring withoutPrefix(const std::wstring& path) {
  if (path.starts_with(literallyOnNetwork)) {
    return L"\\\\" + path.substr(literallyOnNetwork.size());
  }
  return path.starts_with(literally) ? path.substr(literally.size()) : path;
}

}  // namespace

std::wstring openablePath(const std::wstring& path) {
  std::wstring full = fullPath(path);
  if (full.size() < MAX_PATH || full.starts_with(literally)) return full;
  const bool onNetwork = full.starts_with(L"\\\\");
  return onNetwork ? std::wstring(literallyOnNetwork) + full.substr(2)
                   : std::wstring(literally) + full;
}

std::wstring shellPath(const std::wstring& path) {
  std::wstring plain = withoutPrefix(path);
  if (plain.size() < MAX_PATH) return plain;
  // A short name has another extension, for which the user may have chosen another program.
  const std::wstring name = plain.substr(plain.find_last_of(L'\\'));
  const std::wstring openable = openablePath(plain);
  const std::wstring folder = openable.substr(0, openable.size() - name.size());
  std::wstring shortened(longestPath, L'\0');
  shortened.resize(GetShortPathNameW(folder.c_str(), shortened.data(), longestPath));
  return shortened.empty() ? plain : withoutPrefix(shortened) + name;
}

}  // namespace tintora::platform
