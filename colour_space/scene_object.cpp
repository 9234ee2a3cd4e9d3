#include "colour_space/scene_object.h"

#include <cmath>
#include <limits>
#include <span>

namespace tintora {

namespace {

bool fitsFloat(double value) {
  return std::abs(value) <= static_cast<double>(std::numeric_limits<float>::max());
}

}  // namespace

void buildWorldMatrix(SceneObject& object) {
  object.world = translation(object.translation);
  const auto& [x, y, z] = object.rotation;
  if (x == 0.0F && y == 0.0F && z == 0.0F) return;
  const Matrix4x4 rotation = multiply(multiply(rotationX(x), rotationY(y)), rotationZ(z));
  object.world = multiply(rotation, object.world);
}

void placeVertex(ColourVertex& vertex, double x, double y, double z, PackedColour colour) {
  if (!fitsFloat(x) || !fitsFloat(y) || !fitsFloat(z)) return;
  vertex = {static_cast<float>(x), static_cast<float>(y), static_cast<float>(z), colour};
}

void uploadVertices(const SceneObject& object) {
  platform::fillVertexBuffer(object.vertexBuffer,
                             std::span(object.vertices).first(object.bufferVertices));
}

}  // namespace tintora
