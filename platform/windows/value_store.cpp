#include "platform/value_store.h"

#include <windows.h>

#include <string>

namespace tintora::platform {

namespace {

constexpr const char* keyPath = "Software\\Tintora";

}  // namespace

bool readValues(std::span<StoredValue> values) {
  HKEY key = nullptr;
  if (RegOpenKeyExA(HKEY_CURRENT_USER, keyPath, 0, KEY_ALL_ACCESS, &key) != ERROR_SUCCESS) {
    return false;
  }
  for (StoredValue& value : values) {
    DWORD stored = 0;
    DWORD size = sizeof stored;
    const LSTATUS status = RegQueryValueExA(key, std::string(value.name).c_str(), nullptr, nullptr,
                                            reinterpret_cast<BYTE*>(&stored), &size);
    if (status == ERROR_SUCCESS) value.value = stored;
  }
  RegCloseKey(key);
  return true;
}

void writeValues(std::span<const StoredValue> values) {
  HKEY key = nullptr;
  RegCreateKeyExA(HKEY_CURRENT_USER, keyPath, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key,
                  nullptr);
  if (key == nullptr) return;
  for (const StoredValue& value : values) {
    if (!value.value) continue;
    const DWORD stored = *value.value;
    RegSetValueExA(key, std::string(value.name).c_str(), 0, REG_DWORD,
                   reinterpret_cast<const BYTE*>(&stored), sizeof stored);
  }
  RegCloseKey(key);
}

}  // namespace tintora::platform
