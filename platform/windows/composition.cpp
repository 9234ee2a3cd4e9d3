#include "platform/windows/composition.h"

#include "platform/windows/system_library.h"

namespace tintora::platform {

namespace {

struct CompositionApi {
  HRESULT(WINAPI* flush)() = nullptr;
  HRESULT(WINAPI* setWindowAttribute)(HWND, DWORD, const void*, DWORD) = nullptr;
};

// Windows does not always take this library from its own folder, so load it from there explicitly.
// Functions that the desktop lacks stay null.
const CompositionApi& compositionApi() {
  static const CompositionApi found = [] {
    CompositionApi functions;
    const HMODULE library = loadSystemLibrary("dwmapi.dll");
    if (library == nullptr) return functions;
    functions.flush = libraryFunction<HRESULT WINAPI()>(library, "DwmFlush");
    functions.setWindowAttribute = libraryFunction<HRESULT WINAPI(HWND, DWORD, const void*, DWORD)>(
        library, "DwmSetWindowAttribute");
    return functions;
  }();
  return found;
}

}  // namespace

void awaitComposition() {
  if (compositionApi().flush != nullptr) compositionApi().flush();
}

void keepCornersSquare(HWND window) {
  constexpr DWORD cornerPreference = 33;
  constexpr DWORD doNotRound = 1;
  if (compositionApi().setWindowAttribute == nullptr) return;
  compositionApi().setWindowAttribute(window, cornerPreference, &doNotRound, sizeof doNotRound);
}

}  // namespace tintora::platform
