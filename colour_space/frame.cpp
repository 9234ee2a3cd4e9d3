#include "colour_space/frame.h"

#include "colour_space/chromaticity_diagram.h"
#include "colour_space/colour_space_view.h"
#include "colour_space/help_page.h"
#include "colour_space/response_curves.h"

namespace tintora {

namespace {

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

// Draws the title in white, with a black shadow one pixel to the right and below.
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

}  // namespace tintora
