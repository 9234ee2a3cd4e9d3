// What a graphics device is on this desktop.
#pragma once

#include <windows.h>
#include <d3d9.h>

#include "platform/geometry.h"
#include "platform/graphics.h"

namespace tintora::platform {

struct GraphicsDevice {
  IDirect3D9* direct3d = nullptr;      // null where the desktop has no Direct3D
  IDirect3DDevice9* device = nullptr;  // null where it cannot draw
  Size size;
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
