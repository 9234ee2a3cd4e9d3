#include "without_libraries.h"

#include <windows.h>
#include <gtest/gtest.h>

namespace tintora::windows_test {

namespace {

// Wine asks here before it loads a library for the program.
constexpr const char* preferencesKey = "Software\\Wine\\AppDefaults\\Tintora.exe\\DllOverrides";

}  // namespace

WithoutLibraries::WithoutLibraries(const std::vector<std::string>& names) {
  for (const std::string& name : names) {
    EXPECT_EQ(RegSetKeyValueA(HKEY_CURRENT_USER, preferencesKey, name.c_str(), REG_SZ, "", 1),
              ERROR_SUCCESS);
  }
}

WithoutLibraries::~WithoutLibraries() {
  RegDeleteTreeA(HKEY_CURRENT_USER, preferencesKey);
}

std::vector<std::string> d3dxLibraries() {
  std::vector<std::string> names;
  for (int version = 24; version <= 43; ++version) {
    names.push_back("d3dx9_" + std::to_string(version));
  }
  return names;
}

}  // namespace tintora::windows_test
