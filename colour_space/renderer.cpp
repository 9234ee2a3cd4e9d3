#include "colour_space/renderer.h"

#include "colour_space/camera.h"
#include "colour_space/chromaticity_diagram.h"
#include "colour_space/colour_space_view.h"
#include "colour_space/response_curves.h"
#include "colour_space/rgb_cube.h"
#include "spectral/simulation_matrix.h"

namespace tintora {

namespace {

constexpr platform::TextFontForm titleFontForm{"Microsoft Sans Serif", 16, true};
constexpr platform::TextFontForm labelFontForm{"Microsoft Sans Serif", 14, false};

void buildObjects() {
  buildCube();
  buildReferenceCurves();
  buildLiveCurves();
  buildChromaticity();
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

}  // namespace tintora
