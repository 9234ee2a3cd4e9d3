// Records the shell's calls of the renderer among those of the desktop and passes them on. The
// linker directs the shell's calls here (CMakeLists.txt).
#include <cstddef>
#include <string>

#include "colour_space/camera.h"
#include "colour_space/frame.h"
#include "colour_space/renderer.h"
#include "platform/null/null_platform.h"

namespace tintora {

namespace {

// The renderer's own calls of the desktop are not recorded.
template <typename Renderer>
void passOn(const std::string& call, Renderer renderer) {
  auto& calls = platform::nullDesktop().calls;
  calls.push_back(call);
  const std::size_t kept = calls.size();
  renderer();
  calls.resize(kept);
}

std::string text(int value) {
  return ' ' + std::to_string(value);
}
std::string text(bool value) {
  return value ? " true" : " false";
}

}  // namespace

void realCreateDevice(platform::Window* window, int width, int height, bool resetCamera) asm(
    "__real__ZN7tintora12createDeviceEPNS_8platform6WindowEiib");
void recordCreateDevice(platform::Window* window, int width, int height, bool resetCamera) asm(
    "__wrap__ZN7tintora12createDeviceEPNS_8platform6WindowEiib");
void recordCreateDevice(platform::Window* window, int width, int height, bool resetCamera) {
  passOn("createDevice " + window->name + text(width) + text(height) + text(resetCamera),
         [=] { realCreateDevice(window, width, height, resetCamera); });
}

void realReleaseDevice() asm("__real__ZN7tintora13releaseDeviceEv");
void recordReleaseDevice() asm("__wrap__ZN7tintora13releaseDeviceEv");
void recordReleaseDevice() {
  passOn("releaseDevice", &realReleaseDevice);
}

void realResizeDevice(int width, int height) asm("__real__ZN7tintora12resizeDeviceEii");
void recordResizeDevice(int width, int height) asm("__wrap__ZN7tintora12resizeDeviceEii");
void recordResizeDevice(int width, int height) {
  passOn("resizeDevice" + text(width) + text(height), [=] { realResizeDevice(width, height); });
}

void realRefreshTransformViews() asm("__real__ZN7tintora21refreshTransformViewsEv");
void recordRefreshTransformViews() asm("__wrap__ZN7tintora21refreshTransformViewsEv");
void recordRefreshTransformViews() {
  passOn("refreshTransformViews", &realRefreshTransformViews);
}

void realBeginDrag(int x, int y) asm("__real__ZN7tintora9beginDragEii");
void recordBeginDrag(int x, int y) asm("__wrap__ZN7tintora9beginDragEii");
void recordBeginDrag(int x, int y) {
  passOn("beginDrag" + text(x) + text(y), [=] { realBeginDrag(x, y); });
}

void realRotateByMouse(const DragKeys& held, int x,
                       int y) asm("__real__ZN7tintora13rotateByMouseERKNS_8DragKeysEii");
void recordRotateByMouse(const DragKeys& held, int x,
                         int y) asm("__wrap__ZN7tintora13rotateByMouseERKNS_8DragKeysEii");
void recordRotateByMouse(const DragKeys& held, int x, int y) {
  passOn(
      "rotateByMouse" + text(held.left) + text(held.right) + text(held.shift) + text(x) + text(y),
      [&] { realRotateByMouse(held, x, y); });
}

void realRenderFrame() asm("__real__ZN7tintora11renderFrameEv");
void recordRenderFrame() asm("__wrap__ZN7tintora11renderFrameEv");
void recordRenderFrame() {
  passOn("renderFrame", &realRenderFrame);
}

}  // namespace tintora
