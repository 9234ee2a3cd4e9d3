#include "colour_space/colour_space_view.h"

namespace tintora {

ColourSpaceView colourSpaceView;

std::span<SceneObject> objectsInUse() {
  return std::span(colourSpaceView.objects).first(colourSpaceView.objectCount);
}

SceneObject* sceneObject(SceneRole role) {
  const auto index = static_cast<std::size_t>(role);
  return index < colourSpaceView.objectCount ? &colourSpaceView.objects[index] : nullptr;
}

SceneObject& addObject(SceneRole role, ViewCode view, std::size_t bufferVertices,
                       platform::BufferUse use) {
  SceneObject& object = colourSpaceView.objects[static_cast<std::size_t>(role)];
  ++colourSpaceView.objectCount;
  object = SceneObject();
  object.viewCode = view;
  object.bufferVertices = bufferVertices;
  object.vertexBuffer = platform::createVertexBuffer(colourSpaceView.device, bufferVertices, use);
  buildWorldMatrix(object);
  return object;
}

}  // namespace tintora
