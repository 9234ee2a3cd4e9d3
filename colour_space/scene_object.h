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
  Matrix4x4 world = identity4x4;  // built from the next two by buildWorldMatrix
  Vector3 translation;
  Vector3 rotation;  // radians about x, then y, then z
  ViewCode viewCode = ViewCode::Help;
  platform::PrimitiveKind kind = platform::PrimitiveKind::LineStrip;
  int count = 0;           // vertices if there are indices, else primitives
  int primitiveCount = 0;  // if there are indices
  std::array<ColourVertex, 2000> vertices{};
  std::size_t bufferVertices = 0;  // how many of them vertexBuffer holds
  platform::VertexBuffer* vertexBuffer = nullptr;
  platform::IndexBuffer* indexBuffer = nullptr;  // null if there are no indices
};

// Computes the world matrix: first the rotation, then the translation.
void buildWorldMatrix(SceneObject& object);

// Writes a vertex. If a coordinate does not fit a float, the vertex keeps its place and colour.
void placeVertex(ColourVertex& vertex, double x, double y, double z, PackedColour colour);

// Copies the vertices to the device.
void uploadVertices(const SceneObject& object);

}  // namespace tintora
