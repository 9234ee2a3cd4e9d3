// The colour space window's one renderer: its state, its device, its camera and its frames.
#pragma once

#include <array>
#include <cstddef>
#include <string>

#include "colour_space/matrix4x4.h"
#include "colour_space/scene_object.h"
#include "platform/graphics.h"
#include "platform/window.h"

namespace tintora {

// The drawables of all views, in the order in which they are created and drawn.
enum class SceneRole : std::size_t {
  SolidCube,
  WireFrame,
  ReferenceS,
  ReferenceL,
  ReferenceM,
  LiveS,
  LiveL,
  LiveM,
  SpectralLocus,
  PrimariesTriangle,
  GamutMesh,
  GamutOutline,
};
inline constexpr std::size_t sceneRoles = 12;

// A wavelength written beside the spectral locus.
struct WavelengthLabel {
  std::string text;
  float x = 0.0F;  // in the diagram's coordinates: the end of the tick mark
  float y = 0.0F;
  float direction = 0.0F;  // how far the locus rises there, per nm
};

struct ColourSpaceView {
  platform::Window* window = nullptr;
  std::string titleText;  // at the top left of every view but Help
  platform::GraphicsDevice* device = nullptr;
  int width = 0;  // client size in pixels
  int height = 0;
  ViewCode viewCode = ViewCode::Help;
  Matrix4x4 viewMatrix = identity4x4;      // the camera that can be turned: of the RGB cube
  Matrix4x4 homeViewMatrix = identity4x4;  // as it stood at first: of the other views
  platform::TextFont* titleFont = nullptr;
  platform::TextFont* labelFont = nullptr;
  float cameraDistance = 0.0F;  // of the eye from the origin
  bool firstDragMove = false;   // the next locked move chooses its axis
  bool lockHorizontal = false;  // the axis it chose: only the horizontal part of a drag counts
  int lastMouseX = 0;
  int lastMouseY = 0;
  bool cameraMode = false;  // drags turn the camera rather than the objects
  std::size_t objectCount = 0;
  std::array<SceneObject, sceneRoles> objects{};
  std::array<WavelengthLabel, 24> wavelengthLabels{};
};

extern ColourSpaceView colourSpaceView;

// What is held down while the mouse moves.
struct DragKeys {
  bool left = false;
  bool right = false;
  bool shift = false;
};

// Makes the device, the fonts and all that is drawn for a window whose client area has this size,
// and points the camera; resetCamera puts it where it stands at first.
void createDevice(platform::Window* window, int width, int height, bool resetCamera);

// Releases the device with all that was made on it; nothing where there is none.
void releaseDevice();

// Makes it all anew for another size, the camera left as it was turned; below 10 pixels either way
// nothing changes.
void resizeDevice(int width, int height);

// Brings what the views show into line with the model's matrix and observer.
void refreshTransformViews();

// Sets the projection, and with reset the camera too.
void setCamera(bool reset);

// A drag of the RGB cube, in client coordinates: where it begins, and each move of the mouse.
void beginDrag(int x, int y);
void rotateByMouse(const DragKeys& held, int x, int y);

// Draws one frame of the current view.
void renderFrame();

// For the views: the object of a role, null before it is built; and a new one, of the next role, to
// be drawn in a view, with room for so many vertices on the device. There are twelve in all.
SceneObject* sceneObject(SceneRole role);
SceneObject& addObject(ViewCode view, std::size_t bufferVertices, platform::BufferUse use);

}  // namespace tintora
