// The program's settings in the registry.
#pragma once

#include <windows.h>

#include <map>
#include <string>

namespace tintora::windows_test {

using StoredValues = std::map<std::string, DWORD>;

void storeValues(const StoredValues& values);
void removeStoredValues();

// Returns every 32-bit number of the program's registry key.
StoredValues storedValues();

}  // namespace tintora::windows_test
