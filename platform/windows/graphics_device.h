// What a graphics device and its fonts are on this desktop.
#pragma once

#include <windows.h>
#include <d3d9.h>

#include "platform/geometry.h"
#include "platform/graphics.h"

struct ID3DXFont;

namespace tintora::platform {

struct PaintedFont;

struct GraphicsDevice {
  IDirect3D9* direct3d = nullptr;      // null where the desktop has no Direct3D
  IDirect3DDevice9* device = nullptr;  // null where it cannot draw
  Size size;
  double scale = 1.0;  // of the window's monitor: text and the viewport are the program's pixels
};

struct TextFont {
  ID3DXFont* font = nullptr;
  PaintedFont* painted = nullptr;  // in place of the other
  int height = 0;
};

struct RenderState {
  D3DRENDERSTATETYPE state;
  DWORD value;
};

// Releases an object until nothing holds it any more, and forgets it.
template <typename Object>
void releaseCompletely(Object*& object) {
  while (object != nullptr && object->Release() != 0) {
  }
  object = nullptr;
}

// Releases the one reference that this program holds, and forgets the object.
template <typename Object>
void release(Object*& object) {
  if (object != nullptr) object->Release();
  object = nullptr;
}

}  // namespace tintora::platform
