#include "stored_values.h"

#include <array>

namespace tintora::windows_test {

namespace {

constexpr const char* keyPath = "Software\\Tintora";

}  // namespace

void storeValues(const StoredValues& values) {
  for (const auto& [name, value] : values) {
    RegSetKeyValueA(HKEY_CURRENT_USER, keyPath, name.c_str(), REG_DWORD, &value, sizeof value);
  }
}

void removeStoredValues() {
  RegDeleteTreeA(HKEY_CURRENT_USER, keyPath);
}

StoredValues storedValues() {
  StoredValues values;
  HKEY key = nullptr;
  if (RegOpenKeyExA(HKEY_CURRENT_USER, keyPath, 0, KEY_READ, &key) != ERROR_SUCCESS) return values;
  std::array<char, 256> name{};
  DWORD nameLength = name.size();
  DWORD type = 0;
  DWORD value = 0;
  DWORD size = sizeof value;
  for (DWORD index = 0; RegEnumValueA(key, index, name.data(), &nameLength, nullptr, &type,
                                      reinterpret_cast<BYTE*>(&value), &size) == ERROR_SUCCESS;
       ++index) {
    if (type == REG_DWORD) values[name.data()] = value;
    nameLength = name.size();
    size = sizeof value;
  }
  RegCloseKey(key);
  return values;
}

}  // namespace tintora::windows_test
