// The settings as the program keeps them.
#pragma once

#include <windows.h>

#include <map>
#include <string>

namespace tintora::windows_test {

using StoredValues = std::map<std::string, DWORD>;

void storeValues(const StoredValues& values);
void removeStoredValues();

// Every value of the key that is a 32-bit number.
StoredValues storedValues();

}  // namespace tintora::windows_test
