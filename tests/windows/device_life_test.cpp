// How a graphics device is created and released, seen from Direct3D.
#include <windows.h>
#include <d3d9.h>

#include <array>
#include <cstddef>
#include <vector>

#include "drawing_surface.h"
#include "platform/graphics.h"
#include "platform/windows/handles.h"
#include "replaced_pointer.h"

namespace tintora::windows_test {
namespace {

// The indices of the calls in their interfaces.
constexpr std::size_t releaseCall = 2;
constexpr std::size_t createDeviceCall = 16;

class DeviceLife : public testing::Test {
 protected:
  void SetUp() override { ASSERT_NE(surface_.native(), nullptr); }

  IDirect3D9* direct3d() const { return surface_.device()->direct3d; }
  platform::GraphicsDevice* createDevice() const {
    return platform::createGraphicsDevice(platform::fromNative(surface_.window()), {70, 50});
  }

 private:
  DrawingSurface surface_{{70, 50}};
};

using CreateDevice = HRESULT WINAPI(IDirect3D9*, UINT, D3DDEVTYPE, HWND, DWORD,
                                    D3DPRESENT_PARAMETERS*, IDirect3DDevice9**);

struct Attempts {
  CreateDevice* create = nullptr;
  std::size_t refused = 0;  // how many of the first attempts fail
  std::vector<DWORD> processing{};
  std::vector<D3DPRESENT_PARAMETERS> forms{};
};
Attempts attempts;

// Refuses the first attempts and overwrites their parameters, as a device may do.
HRESULT WINAPI attempt(IDirect3D9* direct3d, UINT adapter, D3DDEVTYPE type, HWND window,
                       DWORD processing, D3DPRESENT_PARAMETERS* form, IDirect3DDevice9** device) {
  attempts.processing.push_back(processing);
  attempts.forms.push_back(*form);
  if (attempts.processing.size() > attempts.refused) {
    return attempts.create(direct3d, adapter, type, window, processing, form, device);
  }
  form->BackBufferWidth = 1;
  return D3DERR_NOTAVAILABLE;
}

struct AttemptRow {
  std::size_t refused;
  std::vector<DWORD> processing;
  bool made;
};

TEST_F(DeviceLife, BeginsWithOneMoreAttemptInSoftwareWhereHardwareFails) {
  const std::array rows{
      AttemptRow{0, {D3DCREATE_HARDWARE_VERTEXPROCESSING}, true},
      AttemptRow{
          1, {D3DCREATE_HARDWARE_VERTEXPROCESSING, D3DCREATE_SOFTWARE_VERTEXPROCESSING}, true},
      AttemptRow{
          9, {D3DCREATE_HARDWARE_VERTEXPROCESSING, D3DCREATE_SOFTWARE_VERTEXPROCESSING}, false},
  };
  for (const auto& [refused, processing, made] : rows) {
    const ReplacedPointer replaced = replaceCall(direct3d(), createDeviceCall, attempt);
    attempts = {.create = replaced.original<CreateDevice>(), .refused = refused};
    platform::GraphicsDevice* const device = createDevice();
    EXPECT_EQ(attempts.processing, processing);
    EXPECT_EQ(device->device != nullptr, made);
    for (const D3DPRESENT_PARAMETERS& form : attempts.forms) {
      EXPECT_EQ(form.BackBufferWidth, 70U);
      EXPECT_EQ(form.BackBufferHeight, 50U);
      EXPECT_EQ(form.BackBufferCount, 1U);
    }
    platform::releaseGraphicsDevice(device);
  }
}

constexpr GUID anyData{0x7A1B2C3D, 0x4E5F, 0x4A6B, {1, 2, 3, 4, 5, 6, 7, 8}};

// An object attached to the back buffer is released only when the device is gone.
TEST_F(DeviceLife, EndsThoughSomethingElseHoldsTheDevice) {
  platform::GraphicsDevice* const device = createDevice();
  ASSERT_NE(device->device, nullptr);
  const ULONG unattached = holdersOf(direct3d());
  IUnknown* const attached = direct3d();
  IDirect3DSurface9* picture = nullptr;
  device->device->GetBackBuffer(0, 0, D3DBACKBUFFER_TYPE_MONO, &picture);
  EXPECT_EQ(picture->SetPrivateData(anyData, attached, sizeof(IUnknown*), D3DSPD_IUNKNOWN), D3D_OK);
  picture->Release();
  ASSERT_EQ(holdersOf(direct3d()), unattached + 1);
  device->device->AddRef();
  device->device->AddRef();
  platform::releaseGraphicsDevice(device);
  EXPECT_EQ(holdersOf(direct3d()), unattached);
}

using Release = ULONG WINAPI(IDirect3D9*);

struct Releases {
  Release* release = nullptr;
  IDirect3D9* of = nullptr;
  ULONG left = 1;
};
Releases releases;

ULONG WINAPI releaseNoting(IDirect3D9* direct3d) {
  const ULONG left = releases.release(direct3d);
  if (direct3d == releases.of) releases.left = left;
  return left;
}

TEST_F(DeviceLife, EndsThoughSomethingElseHoldsDirect3d) {
  platform::GraphicsDevice* const device = createDevice();
  ASSERT_NE(device->direct3d, nullptr);
  device->direct3d->AddRef();
  device->direct3d->AddRef();
  const ReplacedPointer replaced = replaceCall(device->direct3d, releaseCall, releaseNoting);
  releases = {.release = replaced.original<Release>(), .of = device->direct3d};
  platform::releaseGraphicsDevice(device);
  EXPECT_EQ(releases.left, 0U);
}

}  // namespace
}  // namespace tintora::windows_test
