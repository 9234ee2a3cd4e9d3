#include "platform/magnifier.h"

#include <windows.h>

#include <array>

#include "platform/windows/handles.h"
#include "platform/windows/magnifier.h"
#include "platform/windows/system_library.h"
#include "platform/windows/text.h"

namespace tintora::platform {

namespace {

using MagnifierTransform = std::array<std::array<float, 3>, 3>;

// The functions of the Magnification API.
struct MagnificationApi {
  BOOL(WINAPI* initialize)() = nullptr;
  BOOL(WINAPI* uninitialize)() = nullptr;
  BOOL(WINAPI* setWindowTransform)(HWND, MagnifierTransform*) = nullptr;
  BOOL(WINAPI* setWindowSource)(HWND, RECT) = nullptr;
  BOOL(WINAPI* setColorEffect)(HWND, EffectMatrix*) = nullptr;
};

MagnificationApi api;

HWND view = nullptr;
RECT source{};  // the latest source rectangle of the view
WNDPROC controlProcedure = nullptr;

// Passes hit tests on to the main window, whatever the magnifier control would answer.
LRESULT CALLBACK leaveMouse(HWND window, UINT message, WPARAM first, LPARAM second) {
  if (message == WM_NCHITTEST) return HTTRANSPARENT;
  return CallWindowProcW(controlProcedure, window, message, first, second);
}

template <typename Function>
bool find(HMODULE library, const char* name, Function*& function) {
  function = libraryFunction<Function>(library, name);
  return function != nullptr;
}

bool loadApi() {
  const HMODULE library = loadSystemLibrary("magnification.dll");
  return library != nullptr && find(library, "MagInitialize", api.initialize) &&
         find(library, "MagUninitialize", api.uninitialize) &&
         find(library, "MagSetWindowTransform", api.setWindowTransform) &&
         find(library, "MagSetWindowSource", api.setWindowSource) &&
         find(library, "MagSetColorEffect", api.setColorEffect);
}

}  // namespace

HWND viewWindow() {
  return view;
}

void refreshView() {
  api.setWindowSource(view, source);
  InvalidateRect(view, nullptr, TRUE);
}

bool startMagnifier() {
  return loadApi() && api.initialize() != FALSE;
}

void stopMagnifier() {
  api.uninitialize();
}

Window* createMagnifier(Window* parent, const std::string& title, const Rect& bounds) {
  constexpr DWORD showMagnifiedCursor = 1;
  view = CreateWindowExW(0, L"Magnifier", wide(title).c_str(),
                         WS_CHILD | WS_VISIBLE | showMagnifiedCursor, bounds.left, bounds.top,
                         bounds.width(), bounds.height(), native(parent), nullptr,
                         GetModuleHandleW(nullptr), nullptr);
  if (view == nullptr) return nullptr;
  controlProcedure = reinterpret_cast<WNDPROC>(
      SetWindowLongPtrW(view, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&leaveMouse)));
  return fromNative(view);
}

void setUnmagnified(Window* magnifier) {
  MagnifierTransform identity{{{1.0F, 0.0F, 0.0F}, {0.0F, 1.0F, 0.0F}, {0.0F, 0.0F, 1.0F}}};
  api.setWindowTransform(native(magnifier), &identity);
}

void setMagnifierSource(Window* magnifier, const Rect& area) {
  source = native(area);
  api.setWindowSource(native(magnifier), source);
}

void setColourEffect(Window* magnifier, const EffectMatrix& matrix) {
  EffectMatrix effect = matrix;
  api.setColorEffect(native(magnifier), &effect);
}

void fitMagnifier(Window* magnifier, const Rect& bounds) {
  SetWindowPos(native(magnifier), nullptr, bounds.left, bounds.top, bounds.width(), bounds.height(),
               SWP_NOZORDER | SWP_NOACTIVATE);
}

void invalidateMagnifier(Window* magnifier) {
  InvalidateRect(native(magnifier), nullptr, TRUE);
}

}  // namespace tintora::platform
