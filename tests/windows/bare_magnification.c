/* The minimum of the Magnification API, which Wine lacks, that the program needs to start: a view
 * that shows nothing. Used by installer.py. */
#include <windows.h>

__declspec(dllexport) BOOL WINAPI MagInitialize(void) {
  WNDCLASSA view = {0};
  view.style = CS_GLOBALCLASS;
  view.lpfnWndProc = DefWindowProcA;
  view.hInstance = GetModuleHandleA("magnification.dll");
  view.lpszClassName = "Magnifier";
  return RegisterClassA(&view) != 0;
}

__declspec(dllexport) BOOL WINAPI MagUninitialize(void) {
  return UnregisterClassA("Magnifier", GetModuleHandleA("magnification.dll"));
}

__declspec(dllexport) BOOL WINAPI MagSetWindowTransform(HWND window, float (*transform)[3][3]) {
  return window && transform;
}

__declspec(dllexport) BOOL WINAPI MagSetWindowSource(HWND window, RECT source) {
  return window && source.right >= source.left;
}

__declspec(dllexport) BOOL WINAPI MagSetColorEffect(HWND window, float (*matrix)[5][5]) {
  return window && matrix;
}
