#include "platform/windows/scale.h"

#include "platform/windows/system_library.h"

namespace tintora::platform {

namespace {

constexpr double standardDpi = USER_DEFAULT_SCREEN_DPI;

using DpiForWindow = UINT WINAPI(HWND);

// Returns null on Windows before version 1607 of Windows 10.
DpiForWindow* findDpiForWindow() {
  const HMODULE library = GetModuleHandleA("user32.dll");
  return libraryFunction<DpiForWindow>(library, "GetDpiForWindow");
}

int primaryScreenDpi() {
  const HDC screen = GetDC(nullptr);
  const int dpi = GetDeviceCaps(screen, LOGPIXELSX);
  ReleaseDC(nullptr, screen);
  return dpi;
}

}  // namespace

double scaleOf(HWND window) {
  static DpiForWindow* const dpiForWindow = findDpiForWindow();
  const bool known = window != nullptr && dpiForWindow != nullptr;
  const int dpi = known ? static_cast<int>(dpiForWindow(window)) : primaryScreenDpi();
  return dpi > 0 ? dpi / standardDpi : 1.0;
}

}  // namespace tintora::platform
