// Libraries that are part of Windows without always being taken from its own folder.
#pragma once

#include <windows.h>

namespace tintora::platform {

// Loads a library from the system folder and from nowhere else; null where it is not there.
HMODULE loadSystemLibrary(const char* name);

// The function of a loaded library, null where there is none.
template <typename Function>
Function* libraryFunction(HMODULE library, const char* name) {
  return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(library, name)));
}

}  // namespace tintora::platform
