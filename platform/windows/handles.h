// Converts between the platform layer's opaque handles and those of Windows.
#pragma once

#include <windows.h>

#include "platform/clipboard.h"
#include "platform/geometry.h"
#include "platform/menu.h"
#include "platform/window.h"

namespace tintora::platform {

inline HWND native(const Window* window) {
  return reinterpret_cast<HWND>(const_cast<Window*>(window));
}
inline Window* fromNative(HWND window) {
  return reinterpret_cast<Window*>(window);
}

inline HMENU native(Menu* menu) {
  return reinterpret_cast<HMENU>(menu);
}
inline Menu* fromNative(HMENU menu) {
  return reinterpret_cast<Menu*>(menu);
}

inline HBITMAP native(Picture* picture) {
  return reinterpret_cast<HBITMAP>(picture);
}
inline Picture* fromNative(HBITMAP bitmap) {
  return reinterpret_cast<Picture*>(bitmap);
}

inline RECT native(const Rect& rect) {
  return {rect.left, rect.top, rect.right, rect.bottom};
}
inline Rect fromNative(const RECT& rect) {
  return {static_cast<int>(rect.left), static_cast<int>(rect.top), static_cast<int>(rect.right),
          static_cast<int>(rect.bottom)};
}

}  // namespace tintora::platform
