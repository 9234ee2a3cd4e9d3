#include "drawing_surface.h"

#include <cstddef>
#include <cstdint>

#include "platform/windows/handles.h"

namespace tintora::windows_test {

namespace {

Picture pictureOf(IDirect3DSurface9* surface) {
  D3DSURFACE_DESC facts{};
  surface->GetDesc(&facts);
  D3DLOCKED_RECT lock{};
  Picture picture{static_cast<int>(facts.Width), static_cast<int>(facts.Height), {}};
  if (FAILED(surface->LockRect(&lock, nullptr, D3DLOCK_READONLY))) return picture;
  for (int y = 0; y < picture.height; ++y) {
    const auto* const row = reinterpret_cast<const std::uint32_t*>(
        static_cast<const std::byte*>(lock.pBits) + static_cast<std::ptrdiff_t>(y) * lock.Pitch);
    for (int x = 0; x < picture.width; ++x) {
      picture.pixels.push_back({static_cast<std::uint8_t>(row[x] >> 16),
                                static_cast<std::uint8_t>(row[x] >> 8),
                                static_cast<std::uint8_t>(row[x])});
    }
  }
  surface->UnlockRect();
  return picture;
}

}  // namespace

ULONG holdersOf(IUnknown* object) {
  object->AddRef();
  return object->Release();
}

DrawingSurface::DrawingSurface(const platform::Size& size)
    : window_(CreateWindowExA(0, "STATIC", "", WS_POPUP, 0, 0, size.width, size.height, nullptr,
                              nullptr, nullptr, nullptr)),
      device_(platform::createGraphicsDevice(platform::fromNative(window_), size)) {}

DrawingSurface::~DrawingSurface() {
  platform::releaseGraphicsDevice(device_);
  DestroyWindow(window_);
}

Picture DrawingSurface::drawn(const std::function<void()>& draw) const {
  platform::clearPicture(device_, 0xFF506478);
  platform::beginScene(device_);
  draw();
  platform::endScene(device_);
  IDirect3DSurface9* target = nullptr;
  IDirect3DSurface9* copy = nullptr;
  native()->GetRenderTarget(0, &target);
  D3DSURFACE_DESC facts{};
  target->GetDesc(&facts);
  native()->CreateOffscreenPlainSurface(facts.Width, facts.Height, facts.Format, D3DPOOL_SYSTEMMEM,
                                        &copy, nullptr);
  native()->GetRenderTargetData(target, copy);
  Picture picture = pictureOf(copy);
  copy->Release();
  target->Release();
  return picture;
}

}  // namespace tintora::windows_test
