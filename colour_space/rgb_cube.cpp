#include "colour_space/rgb_cube.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "colour_space/colour_components.h"
#include "colour_space/colour_space_view.h"

namespace tintora {

namespace {

using platform::BufferUse;
using platform::PrimitiveKind;

constexpr std::array<ColourVertex, 8> corners{{
    {-1.0F, -1.0F, -1.0F, 0xFFFF0000},
    {-1.0F, 1.0F, -1.0F, 0xFFFFFF00},
    {1.0F, 1.0F, -1.0F, 0xFF00FF00},
    {1.0F, -1.0F, -1.0F, 0xFF000000},
    {-1.0F, -1.0F, 1.0F, 0xFFFF00FF},
    {-1.0F, 1.0F, 1.0F, 0xFFFFFFFF},
    {1.0F, 1.0F, 1.0F, 0xFF00FFFF},
    {1.0F, -1.0F, 1.0F, 0xFF0000FF},
}};

// Two triangles for each face.
constexpr std::array<std::uint16_t, 36> faces{0, 1, 2, 0, 2, 3, 4, 6, 5, 4, 7, 6, 4, 5, 1, 4, 1, 0,
                                              3, 2, 6, 3, 6, 7, 1, 5, 6, 1, 6, 2, 4, 0, 3, 4, 3, 7};

// The face without blue, the edges along blue, the face with full blue, and the grey axis.
constexpr std::array<std::uint16_t, 26> cubeEdges{0, 1, 1, 2, 2, 3, 3, 0, 0, 4, 1, 5, 2,
                                                  6, 3, 7, 4, 5, 5, 6, 6, 7, 7, 4, 3, 5};

void addCorners(SceneRole role, PrimitiveKind kind, std::span<const std::uint16_t> indices,
                int primitives) {
  SceneObject& object = addObject(role, ViewCode::RgbCube, corners.size(), BufferUse::OnDevice);
  std::ranges::copy(corners, object.vertices.begin());
  uploadVertices(object);
  object.indexBuffer =
      platform::createIndexBuffer(colourSpaceView.device, indices, BufferUse::OnDevice);
  object.kind = kind;
  object.count = static_cast<int>(corners.size());
  object.primitiveCount = primitives;
}

// Returns the colour of a corner: red grows towards -x, green towards +y, blue towards +z.
Components colourAt(const ColourVertex& corner) {
  constexpr double half = 255.0 / 2.0;
  return {(1.0 - static_cast<double>(corner.x)) * half,
          (static_cast<double>(corner.y) + 1.0) * half,
          (static_cast<double>(corner.z) + 1.0) * half};
}

Components clamped(const Components& colour) {
  const auto within = [](double component) { return std::clamp(component, 0.0, 255.0); };
  return {within(colour.red), within(colour.green), within(colour.blue)};
}

}  // namespace

void buildCube() {
  addCorners(SceneRole::SolidCube, PrimitiveKind::IndexedTriangles, faces, 12);
  addCorners(SceneRole::WireFrame, PrimitiveKind::IndexedLines, cubeEdges, 13);
}

void refreshCube(const Matrix3x3& matrix) {
  SceneObject* const cube = sceneObject(SceneRole::SolidCube);
  if (cube == nullptr) return;
  for (std::size_t i = 0; i < corners.size(); ++i) {
    const Components seen = transformed(colourAt(corners[i]), matrix);
    if (!isFinite(seen)) continue;
    placeVertex(cube->vertices[i], (255.0 - 2.0 * seen.red) / 255.0,
                (2.0 * seen.green - 255.0) / 255.0, (2.0 * seen.blue - 255.0) / 255.0,
                packed(clamped(seen)));
  }
  uploadVertices(*cube);
}

}  // namespace tintora
