// Loads libraries of Windows that are not always taken from the system folder.
#pragma once

#include <windows.h>

namespace tintora::platform {

// Loads a library from the system folder only. Returns null if it is not there.
HMODULE loadSystemLibrary(const char* name);

// Returns the function of a loaded library, or null if the library or the function is missing.
template <typename Function>
Function* libraryFunction(HMODULE library, const char* name) {
  return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(library, name)));
}

}  // namespace tintora::platform
