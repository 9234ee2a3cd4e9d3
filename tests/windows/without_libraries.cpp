#include "without_libraries.h"

#include <windows.h>
#include <gtest/gtest.h>

namespace tintora::windows_test {

namespace {

// Wine reads this key before it loads a library for the program.
constexpr const char* preferencesKey = "Software\\Wine\\AppDefaults\\Tintora.exe\\DllOverrides";

}  // namespace

void setLibraryOrder(const std::string& name, std::string_view order) {
  const std::string value(order);
  EXPECT_EQ(RegSetKeyValueA(HKEY_CURRENT_USER, preferencesKey, name.c_str(), REG_SZ, value.c_str(),
                            static_cast<DWORD>(value.size() + 1)),
            ERROR_SUCCESS);
}

void resetLibraryOrders() {
  RegDeleteTreeA(HKEY_CURRENT_USER, preferencesKey);
}

WithoutLibraries::WithoutLibraries(const std::vector<std::string>& names) {
  for (const std::string& name : names) setLibraryOrder(name, "");
}

WithoutLibraries::~WithoutLibraries() {
  resetLibraryOrders();
}

std::vector<std::string> d3dxLibraries() {
  std::vector<std::string> names;
  for (int version = 24; version <= 43; ++version) {
    names.push_back("d3dx9_" + std::to_string(version));
  }
  return names;
}

}  // namespace tintora::windows_test
