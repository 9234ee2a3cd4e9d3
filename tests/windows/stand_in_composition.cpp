// A dwmapi.dll that reports the program's calls to the stand-in magnifier.
#include <windows.h>

#include <cstdint>

namespace {

constexpr DWORD cornerPreference = 33;

template <typename Function>
Function* magnifierFunction(const char* name) {
  const HMODULE library = GetModuleHandleA("magnification.dll");
  return library == nullptr
             ? nullptr
             : reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(library, name)));
}

}  // namespace

extern "C" {

__declspec(dllexport) HRESULT WINAPI DwmFlush() {
  if (auto* const compose = magnifierFunction<void()>("composePicture")) compose();
  return S_OK;
}

__declspec(dllexport) HRESULT WINAPI
    DwmSetWindowAttribute(HWND /*window*/, DWORD attribute, const void* value, DWORD size) {
  if (attribute != cornerPreference || size != sizeof(std::uint32_t)) return E_INVALIDARG;
  if (auto* const record = magnifierFunction<void(std::uint32_t)>("recordCorners")) {
    record(*static_cast<const std::uint32_t*>(value));
  }
  return S_OK;
}

}  // extern "C"
