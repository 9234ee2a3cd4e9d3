// One drawable of the colour space window.
#pragma once

#include <array>
#include <cstddef>

#include "colour_space/matrix4x4.h"
#include "colour_space/view_code.h"
#include "platform/graphics.h"

namespace tintora {

using platform::ColourVertex;
using platform::PackedColour;

struct SceneObject {
  Matrix4x4 world = identity4x4;  // made of the next two by buildWorldMatrix
  Vector3 translation;
  Vector3 rotation;  // radians about x, then y, then z
  ViewCode viewCode = ViewCode::Help;
  platform::PrimitiveKind kind = platform::PrimitiveKind::LineStrip;
  int count = 0;           // vertices where there are indices, else primitives
  int primitiveCount = 0;  // where there are indices
  std::array<ColourVertex, 2000> vertices{};
  std::size_t bufferVertices = 0;  // that vertexBuffer holds, from the first
  platform::VertexBuffer* vertexBuffer = nullptr;
  platform::IndexBuffer* indexBuffer = nullptr;  // null where there are no indices
};

// Rotation, then translation.
void buildWorldMatrix(SceneObject& object);

// Writes a vertex. Where a coordinate is no number that a float can hold, place and colour stay as
// they were.
void placeVertex(ColourVertex& vertex, double x, double y, double z, PackedColour colour);

// Brings the device's copy of the vertices up to date.
void uploadVertices(const SceneObject& object);

}  // namespace tintora
