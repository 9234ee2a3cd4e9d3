// The graphics device and its fonts on Windows.
#pragma once

#include <windows.h>
#include <d3d9.h>

#include "platform/geometry.h"
#include "platform/graphics.h"

struct ID3DXFont;

namespace tintora::platform {

struct PaintedFont;

struct GraphicsDevice {
  IDirect3D9* direct3d = nullptr;      // null if the desktop has no Direct3D
  IDirect3DDevice9* device = nullptr;  // null if it could not be created
  Size size;
  double scale = 1.0;  // of the window's monitor; text and viewport use unscaled pixels
};

struct TextFont {
  ID3DXFont* font = nullptr;
  PaintedFont* painted = nullptr;  // used if there is no D3DX font
  int height = 0;
};

struct RenderState {
  D3DRENDERSTATETYPE state;
  DWORD value;
};

// Releases an object until no reference is left, and sets the pointer to null.
template <typename Object>
void releaseCompletely(Object*& object) {
  while (object != nullptr && object->Release() != 0) {
  }
  object = nullptr;
}

// Releases the program's own reference, and sets the pointer to null.
template <typename Object>
void release(Object*& object) {
  if (object != nullptr) object->Release();
  object = nullptr;
}

}  // namespace tintora::platform
