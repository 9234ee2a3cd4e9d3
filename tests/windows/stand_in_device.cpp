#include "stand_in_device.h"

#include <windows.h>
#include <d3d9.h>

#include <cstddef>

#include "replaced_pointer.h"

namespace tintora::windows_test {

namespace {

// The indices of the calls in their interface.
constexpr std::size_t testCall = 3;
constexpr std::size_t presentCall = 17;

HRESULT WINAPI lost(IDirect3DDevice9* /*device*/) {
  return D3DERR_DEVICELOST;
}
HRESULT WINAPI presentLost(IDirect3DDevice9* /*device*/, const RECT* /*source*/,
                           const RECT* /*target*/, HWND /*window*/, const RGNDATA* /*region*/) {
  return D3DERR_DEVICELOST;
}

}  // namespace

// All devices share one table of calls, so create a device to find it.
void loseDevices() {
  const HMODULE library = GetModuleHandleA("d3d9.dll");
  if (library == nullptr) return;
  auto* const create = reinterpret_cast<decltype(Direct3DCreate9)*>(
      reinterpret_cast<void*>(GetProcAddress(library, "Direct3DCreate9")));
  IDirect3D9* const direct3d = create(D3D_SDK_VERSION);
  const HWND window = CreateWindowExA(0, "STATIC", "", WS_POPUP, 0, 0, 8, 8, nullptr, nullptr,
                                      GetModuleHandleA(nullptr), nullptr);
  D3DPRESENT_PARAMETERS form{};
  form.Windowed = TRUE;
  form.SwapEffect = D3DSWAPEFFECT_DISCARD;
  form.hDeviceWindow = window;
  IDirect3DDevice9* device = nullptr;
  direct3d->CreateDevice(D3DADAPTER_DEFAULT, D3DDEVTYPE_HAL, window,
                         D3DCREATE_SOFTWARE_VERTEXPROCESSING, &form, &device);
  if (device != nullptr) {
    auto** const calls = *reinterpret_cast<void***>(device);
    device->Release();
    replacePointer(calls + testCall, reinterpret_cast<void*>(&lost));
    replacePointer(calls + presentCall, reinterpret_cast<void*>(&presentLost));
  }
  direct3d->Release();
  DestroyWindow(window);
}

}  // namespace tintora::windows_test
