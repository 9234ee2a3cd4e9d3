#include "platform/windows/system_library.h"

namespace tintora::platform {

HMODULE loadSystemLibrary(const char* name) {
  return LoadLibraryExA(name, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
}

}  // namespace tintora::platform
