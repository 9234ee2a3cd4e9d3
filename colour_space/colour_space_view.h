// The state of the colour space window: its device, its camera and the objects of all views.
#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string>

#include "colour_space/matrix4x4.h"
#include "colour_space/scene_object.h"
#include "colour_space/view_code.h"
#include "platform/graphics.h"
#include "platform/window.h"

namespace tintora {

// The objects of all views, in the order in which they are built and drawn.
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
  float x = 0.0F;  // the end of the tick mark, in the diagram's coordinates
  float y = 0.0F;
  float direction = 0.0F;  // change of the locus's y from the nanometre before
};

struct ColourSpaceView {
  platform::Window* window = nullptr;
  std::string titleText;  // at the top left of every view but Help
  platform::GraphicsDevice* device = nullptr;
  int width = 0;  // client size in pixels
  int height = 0;
  ViewCode viewCode = ViewCode::Help;
  Matrix4x4 viewMatrix = identity4x4;      // the camera of the RGB cube, which drags turn
  Matrix4x4 homeViewMatrix = identity4x4;  // the camera of the other views: as first set up
  platform::TextFont* titleFont = nullptr;
  platform::TextFont* labelFont = nullptr;
  float cameraDistance = 0.0F;  // of the eye from the origin
  bool firstDragMove = false;   // the next locked move chooses its axis
  bool lockHorizontal = false;  // the chosen axis: only the horizontal part of a drag counts
  int lastMouseX = 0;
  int lastMouseY = 0;
  bool cameraMode = false;  // drags turn the camera rather than the objects
  std::size_t objectCount = 0;
  std::array<SceneObject, sceneRoles> objects{};
  std::array<WavelengthLabel, 24> wavelengthLabels{};
};

extern ColourSpaceView colourSpaceView;

// Returns the objects that have been built on the device, in drawing order.
std::span<SceneObject> objectsInUse();

// Returns the object of a role, or null before it is built.
SceneObject* sceneObject(SceneRole role);

// Starts the object of a role afresh: untransformed, shown in one view, with room for this many
// vertices on the device. The roles are built in their order, each once for a device.
SceneObject& addObject(SceneRole role, ViewCode view, std::size_t bufferVertices,
                       platform::BufferUse use);

}  // namespace tintora
