// The colour space window's one renderer: its state, its device, its camera and its frames.
#pragma once

#include <cstdint>
#include <string>

#include "platform/window.h"

namespace tintora {

// The views, by the codes of the menu commands that choose them. Any other value may stand in a
// stored setting and is kept.
enum class ViewCode : std::int32_t {
  ResponseCurves = 702,
  RgbCube = 703,
  ChromaticityDiagram = 704,
  Help = 705,
};

struct ColourSpaceView {
  platform::Window* window = nullptr;
  std::string titleText;  // at the top left of every view but Help
  int width = 0;          // client size in pixels
  int height = 0;
  ViewCode viewCode = ViewCode::Help;
  bool firstDragMove = false;
  int lastMouseX = 0;
  int lastMouseY = 0;
};

extern ColourSpaceView colourSpaceView;

// What is held down while the mouse moves.
struct DragKeys {
  bool left = false;
  bool right = false;
  bool shift = false;
};

// Makes the renderer ready for a window whose client area has this size.
void createDevice(platform::Window* window, int width, int height, bool resetCamera);

// Makes it ready anew for another size; below 10 pixels either way nothing changes.
void resizeDevice(int width, int height);

// Brings what the views show into line with the model's matrix and observer.
void refreshTransformViews();

// A drag of the RGB cube, in client coordinates: where it begins, and each move of the mouse.
void beginDrag(int x, int y);
void rotateByMouse(const DragKeys& held, int x, int y);

// Draws one frame of the current view.
void renderFrame();

}  // namespace tintora
