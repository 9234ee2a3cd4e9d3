// A test window with a graphics device that draws into it.
#pragma once

#include <windows.h>
#include <d3d9.h>

#include <functional>

#include "picture.h"
#include "platform/graphics.h"
#include "platform/windows/graphics_device.h"

namespace tintora::windows_test {

// Returns an object's reference count.
ULONG holdersOf(IUnknown* object);

class DrawingSurface {
 public:
  explicit DrawingSurface(const platform::Size& size);
  ~DrawingSurface();
  DrawingSurface(const DrawingSurface&) = delete;
  DrawingSurface& operator=(const DrawingSurface&) = delete;

  platform::GraphicsDevice* device() const { return device_; }
  IDirect3DDevice9* native() const { return device_->device; }
  HWND window() const { return window_; }

  // Draws a scene on the background of the views and returns the back buffer.
  Picture drawn(const std::function<void()>& draw) const;

 private:
  HWND window_ = nullptr;
  platform::GraphicsDevice* device_ = nullptr;
};

}  // namespace tintora::windows_test
