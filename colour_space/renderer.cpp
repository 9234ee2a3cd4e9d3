#include "colour_space/renderer.h"

namespace tintora {

ColourSpaceView colourSpaceView;

void createDevice(platform::Window* window, int width, int height, bool /*resetCamera*/) {
  colourSpaceView.window = window;
  colourSpaceView.width = width;
  colourSpaceView.height = height;
  colourSpaceView.lastMouseX = 0;
  colourSpaceView.lastMouseY = 0;
}

void resizeDevice(int width, int height) {
  constexpr int least = 10;
  if (width < least || height < least) return;
  createDevice(colourSpaceView.window, width, height, false);
}

void refreshTransformViews() {}

void beginDrag(int x, int y) {
  colourSpaceView.lastMouseX = x;
  colourSpaceView.lastMouseY = y;
  colourSpaceView.firstDragMove = true;
}

void rotateByMouse(const DragKeys& /*held*/, int x, int y) {
  colourSpaceView.lastMouseX = x;
  colourSpaceView.lastMouseY = y;
}

void renderFrame() {}

}  // namespace tintora
