#include "colour_space/camera.h"

#include <numbers>
#include <optional>

#include "colour_space/colour_space_view.h"
#include "colour_space/frame.h"

namespace tintora {

namespace {

constexpr float firstDistance = 5.5F;
constexpr float finalDistance = 4.0F;
constexpr float fieldOfView = static_cast<float>(std::numbers::pi / 6.0);
constexpr float nearPlane = 1.0F;
constexpr float farPlane = 100.0F;

// Radians about the screen's up axis, its right axis and the line of sight.
struct Turn {
  float up = 0.0F;
  float right = 0.0F;
  float sight = 0.0F;
};

// Returns the angle, in radians, for a drag between two places: opposite to the drag.
float angleOfDrag(int from, int to) {
  constexpr double degreesPerPixel = 0.25;
  const double pixels = static_cast<double>(to) - static_cast<double>(from);
  return static_cast<float>(-(pixels * degreesPerPixel) * std::numbers::pi / 180.0);
}

Vector3 direction(const Vector4& v) {
  return {v[0], v[1], v[2]};
}

// Returns the camera turned about the axes of the screen. All three are taken before the turn.
Matrix4x4 turned(const Matrix4x4& view, const Turn& by) {
  const std::optional<Matrix4x4> toWorld = inverse(view);
  if (!toWorld) return view;
  const Vector3 up = direction(transformed({0.0F, 1.0F, 0.0F, 0.0F}, *toWorld));
  const Vector3 right = direction(transformed({1.0F, 0.0F, 0.0F, 0.0F}, *toWorld));
  const Vector3 sight = direction(transformed({0.0F, 0.0F, 1.0F, 0.0F}, *toWorld));
  return multiply(
      rotationAbout(sight, by.sight),
      multiply(rotationAbout(right, by.right), multiply(rotationAbout(up, by.up), view)));
}

// Drops one part of a drag: the smaller one of its first move.
void lockToAxis(Turn& turn) {
  ColourSpaceView& view = colourSpaceView;
  if (view.firstDragMove) {
    view.lockHorizontal = turn.up * turn.up > turn.right * turn.right;
    view.firstDragMove = false;
  }
  if (view.lockHorizontal) {
    turn.right = 0.0F;
  } else {
    turn.up = 0.0F;
  }
}

Turn turnOfDrag(const DragKeys& held, int x, int y) {
  Turn turn{.up = angleOfDrag(colourSpaceView.lastMouseX, x),
            .right = angleOfDrag(colourSpaceView.lastMouseY, y)};
  if (held.shift) turn = {.sight = turn.up};
  if (held.right) lockToAxis(turn);
  return turn;
}

void turnObjects(const Turn& by) {
  for (SceneObject& object : objectsInUse()) {
    object.rotation.y += by.up;
    object.rotation.x += by.right;
    buildWorldMatrix(object);
  }
}

void storeMouse(int x, int y) {
  colourSpaceView.lastMouseX = x;
  colourSpaceView.lastMouseY = y;
}

// Shrinks the whole scene instead of moving the eye.
void placeCamera() {
  ColourSpaceView& view = colourSpaceView;
  view.cameraDistance = firstDistance;
  view.viewMatrix = lookAt({0.0F, 0.0F, -firstDistance}, {}, {0.0F, 1.0F, 0.0F});
  platform::setTransform(view.device, platform::TransformKind::View, view.viewMatrix);
  view.viewMatrix = turned(view.viewMatrix, {});
  view.viewMatrix = multiply(scaling(finalDistance / view.cameraDistance), view.viewMatrix);
  view.cameraDistance = finalDistance;
}

}  // namespace

void setCamera(bool reset) {
  const ColourSpaceView& view = colourSpaceView;
  if (reset) placeCamera();
  const float aspect = static_cast<float>(view.width) / static_cast<float>(view.height);
  platform::setTransform(view.device, platform::TransformKind::Projection,
                         perspective(fieldOfView, aspect, nearPlane, farPlane));
}

void beginDrag(int x, int y) {
  storeMouse(x, y);
  colourSpaceView.firstDragMove = true;
}

void rotateByMouse(const DragKeys& held, int x, int y) {
  if (held.left || held.right) {
    const Turn turn = turnOfDrag(held, x, y);
    if (colourSpaceView.cameraMode) {
      colourSpaceView.viewMatrix = turned(colourSpaceView.viewMatrix, turn);
    } else {
      turnObjects(turn);
    }
    renderFrame();
  }
  storeMouse(x, y);
}

}  // namespace tintora
