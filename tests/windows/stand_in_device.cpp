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

using Test = HRESULT WINAPI(IDirect3DDevice9*);
using Present = HRESULT WINAPI(IDirect3DDevice9*, const RECT*, const RECT*, HWND, const RGNDATA*);

Test* originalTest = nullptr;
Present* originalPresent = nullptr;
bool losing = false;

// Marks the back buffer of a lost device. The mark is gone when the device is.
constexpr GUID lostMark{0x2E5B90D1, 0x6C3A, 0x4F08, {9, 8, 7, 6, 5, 4, 3, 2}};

bool isLost(IDirect3DDevice9* device) {
  IDirect3DSurface9* buffer = nullptr;
  if (FAILED(device->GetBackBuffer(0, 0, D3DBACKBUFFER_TYPE_MONO, &buffer))) return false;
  char mark = 1;
  DWORD size = sizeof mark;
  if (losing) buffer->SetPrivateData(lostMark, &mark, size, 0);
  const bool lost = SUCCEEDED(buffer->GetPrivateData(lostMark, &mark, &size));
  buffer->Release();
  return lost;
}

HRESULT WINAPI test(IDirect3DDevice9* device) {
  return isLost(device) ? D3DERR_DEVICELOST : originalTest(device);
}

HRESULT WINAPI present(IDirect3DDevice9* device, const RECT* from, const RECT* to, HWND window,
                       const RGNDATA* region) {
  if (isLost(device)) return D3DERR_DEVICELOST;
  return originalPresent(device, from, to, window, region);
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
    originalTest =
        reinterpret_cast<Test*>(replacePointer(calls + testCall, reinterpret_cast<void*>(&test)));
    originalPresent = reinterpret_cast<Present*>(
        replacePointer(calls + presentCall, reinterpret_cast<void*>(&present)));
    losing = true;
  }
  direct3d->Release();
  DestroyWindow(window);
}

void keepDevices() {
  losing = false;
}

}  // namespace tintora::windows_test
