#include "platform/windows/text.h"

#include <windows.h>

namespace tintora::platform {

namespace {

constexpr UINT codePage = 1252;

}  // namespace

std::wstring wide(std::string_view text) {
  // Each byte becomes one UTF-16 unit.
  std::wstring result(text.size(), L'\0');
  const auto size = static_cast<int>(text.size());
  MultiByteToWideChar(codePage, 0, text.data(), size, result.data(), size);
  return result;
}

std::string narrow(std::wstring_view text) {
  std::string result(text.size(), '\0');
  const auto size = static_cast<int>(text.size());
  const int length = WideCharToMultiByte(codePage, WC_NO_BEST_FIT_CHARS, text.data(), size,
                                         result.data(), size, "?", nullptr);
  result.resize(static_cast<std::size_t>(length));
  return result;
}

std::u8string utf8(std::wstring_view text) {
  const auto size = static_cast<int>(text.size());
  std::u8string result(3 * text.size(), u8'\0');  // a UTF-16 unit needs 3 bytes at most
  const int length =
      WideCharToMultiByte(CP_UTF8, 0, text.data(), size, reinterpret_cast<char*>(result.data()),
                          static_cast<int>(result.size()), nullptr, nullptr);
  result.resize(static_cast<std::size_t>(length));
  return result;
}

}  // namespace tintora::platform
