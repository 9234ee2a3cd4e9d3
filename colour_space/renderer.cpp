#include "colour_space/renderer.h"

#include <span>

#include "colour_space/chromaticity_diagram.h"
#include "colour_space/help_page.h"
#include "colour_space/response_curves.h"
#include "colour_space/rgb_cube.h"
#include "spectral/simulation_matrix.h"

namespace tintora {

ColourSpaceView colourSpaceView;

namespace {

constexpr platform::TextFontForm titleFontForm{"Microsoft Sans Serif", 16, true};
constexpr platform::TextFontForm labelFontForm{"Microsoft Sans Serif", 14, false};

std::span<SceneObject> objectsInUse() {
  return std::span(colourSpaceView.objects).first(colourSpaceView.objectCount);
}

void buildObjects() {
  buildCube();
  buildCurves(false);
  buildCurves(true);
  buildChromaticity();
}

void drawObject(const SceneObject& object) {
  using platform::PrimitiveKind;
  platform::GraphicsDevice* const device = colourSpaceView.device;
  platform::setTransform(device, platform::TransformKind::World, object.world);
  platform::setVertexBuffer(device, object.vertexBuffer);
  platform::setIndexBuffer(device, object.indexBuffer);
  switch (object.kind) {
    case PrimitiveKind::IndexedTriangles:
    case PrimitiveKind::IndexedLines:
      platform::drawIndexed(device, object.kind, object.count, object.primitiveCount);
      break;
    case PrimitiveKind::LineStrip:
    case PrimitiveKind::Lines:
    case PrimitiveKind::Triangles:
      platform::drawUnindexed(device, object.kind, object.count);
      break;
  }
}

// White, with a black shadow one pixel to the right and below.
void drawTitle() {
  const ColourSpaceView& view = colourSpaceView;
  constexpr platform::Rect area{12, 10, 412, 210};
  constexpr platform::Rect shadow{area.left + 1, area.top + 1, area.right, area.bottom};
  platform::drawText(view.device, view.titleFont, shadow, 0xFF000000, view.titleText);
  platform::drawText(view.device, view.titleFont, area, 0xFFFFFFFF, view.titleText);
}

void drawOverlay() {
  switch (colourSpaceView.viewCode) {
    case ViewCode::ResponseCurves:
      drawCurveLabels();
      break;
    case ViewCode::ChromaticityDiagram:
      drawWavelengthLabels();
      break;
    case ViewCode::Help:
      drawHelpPage();
      break;
    case ViewCode::RgbCube:
    case ViewCode::NormalCurves:
      break;
  }
}

}  // namespace

void createDevice(platform::Window* window, int width, int height, bool resetCamera) {
  ColourSpaceView& view = colourSpaceView;
  view.cameraMode = true;
  view.objectCount = 0;
  view.window = window;
  view.width = width;
  view.height = height;
  view.device = platform::createGraphicsDevice(window, {width, height});
  view.lastMouseX = 0;
  view.lastMouseY = 0;
  setCamera(resetCamera);
  if (resetCamera) view.homeViewMatrix = view.viewMatrix;
  view.titleFont = platform::createTextFont(view.device, titleFontForm);
  view.labelFont = platform::createTextFont(view.device, labelFontForm);
  buildObjects();
}

void releaseDevice() {
  ColourSpaceView& view = colourSpaceView;
  if (view.device == nullptr) return;
  for (SceneObject& object : objectsInUse()) {
    platform::releaseVertexBuffer(object.vertexBuffer);
    if (object.indexBuffer != nullptr) platform::releaseIndexBuffer(object.indexBuffer);
    object.vertexBuffer = nullptr;
    object.indexBuffer = nullptr;
  }
  view.objectCount = 0;
  platform::releaseTextFont(view.titleFont);
  platform::releaseTextFont(view.labelFont);
  platform::releaseGraphicsDevice(view.device);
  view.titleFont = nullptr;
  view.labelFont = nullptr;
  view.device = nullptr;
}

void resizeDevice(int width, int height) {
  constexpr int least = 10;
  if (colourSpaceView.device == nullptr || width < least || height < least) return;
  releaseDevice();
  createDevice(colourSpaceView.window, width, height, false);
}

void refreshTransformViews() {
  refreshCube(modelContext.uninvertedMatrix);
  refreshCurves(modelContext.modelCvdType, modelContext.modelSeverity);
  refreshGamut(modelContext.uninvertedMatrix);
}

void renderFrame() {
  ColourSpaceView& view = colourSpaceView;
  if (view.device == nullptr) return;
  constexpr platform::PackedColour background = 0xFF506478;
  platform::clearPicture(view.device, background);
  platform::clearDepth(view.device);
  platform::beginScene(view.device);
  platform::setTransform(
      view.device, platform::TransformKind::View,
      view.viewCode == ViewCode::RgbCube ? view.viewMatrix : view.homeViewMatrix);
  platform::setVertexFormat(view.device);
  for (const SceneObject& object : objectsInUse()) {
    if (object.viewCode == view.viewCode) drawObject(object);
  }
  if (view.viewCode != ViewCode::Help) drawTitle();
  drawOverlay();
  platform::endScene(view.device);
  platform::present(view.device);
}

SceneObject* sceneObject(SceneRole role) {
  const auto index = static_cast<std::size_t>(role);
  return index < colourSpaceView.objectCount ? &colourSpaceView.objects[index] : nullptr;
}

SceneObject& addObject(ViewCode view, std::size_t bufferVertices, platform::BufferUse use) {
  SceneObject& object = colourSpaceView.objects[colourSpaceView.objectCount++];
  object = SceneObject();
  object.viewCode = view;
  object.bufferVertices = bufferVertices;
  object.vertexBuffer = platform::createVertexBuffer(colourSpaceView.device, bufferVertices, use);
  buildWorldMatrix(object);
  return object;
}

}  // namespace tintora
