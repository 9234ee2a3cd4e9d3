// What a frame asks of the device, view by view.
#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "scene.h"

namespace tintora {
namespace {

using platform::DrawnPrimitives;
using platform::DrawnText;
using platform::nullGraphics;
using platform::Rect;
using Frame = ColourSpaceTest;
using Views = ColourSpaceTest;

const Calls opening{"clearPicture", "clearDepth", "beginScene", "setTransform view",
                    "setVertexFormat"};
const Calls closing{"endScene", "present"};
const Calls title{"drawText 1 13,11,412,210 title", "drawText 1 12,10,412,210 title"};

Calls joined(const std::vector<Calls>& parts) {
  Calls all;
  for (const Calls& part : parts) all.insert(all.end(), part.begin(), part.end());
  return all;
}

Calls drawing(int vertexBuffer, const std::string& indexBuffer, const std::string& call) {
  return {"setTransform world", "setVertexBuffer " + std::to_string(vertexBuffer),
          "setIndexBuffer " + indexBuffer, call};
}

// Returns the calls of a frame without the labels, which have tests of their own.
Calls callsOfFrame(ViewCode view) {
  colourSpaceView.titleText = "title";
  colourSpaceView.viewCode = view;
  Calls calls = callsOf(&renderFrame);
  std::erase_if(calls, [](const std::string& call) { return call.starts_with("drawText 2"); });
  return calls;
}

TEST_F(Frame, OfTheCubeDrawsTheSolidThenTheFrame) {
  EXPECT_EQ(callsOfFrame(ViewCode::RgbCube),
            joined({opening, drawing(1, "1", "drawIndexed kind 0 8 12"),
                    drawing(2, "2", "drawIndexed kind 1 8 13"), title, closing}));
}

TEST_F(Frame, OfTheCurvesDrawsTheThreeLiveOnes) {
  EXPECT_EQ(callsOfFrame(ViewCode::ResponseCurves),
            joined({opening, drawing(6, "none", "drawUnindexed kind 2 399"),
                    drawing(7, "none", "drawUnindexed kind 2 399"),
                    drawing(8, "none", "drawUnindexed kind 2 399"), title, closing}));
}

TEST_F(Frame, OfTheDiagramDrawsLocusPrimariesGamutAndOutline) {
  EXPECT_EQ(callsOfFrame(ViewCode::ChromaticityDiagram),
            joined({opening, drawing(9, "none", "drawUnindexed kind 2 447"),
                    drawing(10, "none", "drawUnindexed kind 2 119"),
                    drawing(11, "3", "drawIndexed kind 0 1200 2166"),
                    drawing(12, "none", "drawUnindexed kind 2 119"), title, closing}));
}

TEST_F(Frame, OfHelpDrawsNoObjectAndNoTitle) {
  Calls calls = callsOfFrame(ViewCode::Help);
  EXPECT_EQ(std::erase_if(calls, [](const auto& call) { return call.starts_with("drawText 1 "); }),
            34U);
  EXPECT_EQ(calls, joined({opening, closing}));
}

TEST_F(Frame, OfAnUnknownViewHasTheTitleOnly) {
  EXPECT_EQ(callsOfFrame(static_cast<ViewCode>(7)), joined({opening, title, closing}));
}

// Devices that draw text by primitives draw none outside a scene.
TEST_F(Frame, EndsItsSceneAfterAllTextsAndShowsItLast) {
  for (const int view : {702, 703, 704, 705}) {
    colourSpaceView.viewCode = static_cast<ViewCode>(view);
    const Calls calls = callsOf(&renderFrame);
    ASSERT_GE(calls.size(), closing.size());
    EXPECT_EQ(Calls(calls.end() - static_cast<std::ptrdiff_t>(closing.size()), calls.end()),
              closing)
        << view;
  }
}

TEST_F(Frame, HasTheBackgroundOfTheWindow) {
  for (const int view : {702, 703, 704, 705}) {
    render(static_cast<ViewCode>(view));
    EXPECT_EQ(nullGraphics().background, 0xFF506478U);
  }
  EXPECT_EQ(nullGraphics().picturesShown, 4);
}

TEST_F(Frame, TitleIsWhiteWithABlackShadowOnePixelAside) {
  colourSpaceView.titleText = " Simulation - Deuteranomalous 60% severity";
  for (const int view : {702, 703, 704}) {
    SCOPED_TRACE(view);
    render(static_cast<ViewCode>(view));
    const DrawnText& shadow = nullGraphics().texts.at(0);
    const DrawnText& text = nullGraphics().texts.at(1);
    EXPECT_EQ(shadow.area, (Rect{13, 11, 412, 210}));
    EXPECT_EQ(shadow.colour, 0xFF000000U);
    EXPECT_EQ(shadow.text, colourSpaceView.titleText);
    EXPECT_EQ(shadow.font, colourSpaceView.titleFont);
    EXPECT_EQ(text.area, (Rect{12, 10, 412, 210}));
    EXPECT_EQ(text.colour, 0xFFFFFFFFU);
    EXPECT_EQ(text.text, colourSpaceView.titleText);
    EXPECT_EQ(text.font, colourSpaceView.titleFont);
  }
}

TEST_F(Frame, CubeHasNoTextButTheTitle) {
  render(ViewCode::RgbCube);
  EXPECT_EQ(nullGraphics().texts.size(), 2U);
}

TEST_F(Frame, OtherKindsOfObjectsAreDrawnByTheirPrimitives) {
  SceneObject& cube = colourSpaceView.objects[0];
  cube.kind = platform::PrimitiveKind::Lines;
  cube.count = 4;
  SceneObject& frame = colourSpaceView.objects[1];
  frame.kind = platform::PrimitiveKind::Triangles;
  frame.count = 2;
  EXPECT_EQ(callsOfFrame(ViewCode::RgbCube),
            joined({opening, drawing(1, "1", "drawUnindexed kind 3 4"),
                    drawing(2, "2", "drawUnindexed kind 4 2"), title, closing}));
}

TEST_F(Frame, ObjectsAreDrawnThroughTheirOwnWorldMatrix) {
  SceneObject& frame = colourSpaceView.objects[1];
  frame.translation = {0.5F, -0.25F, 2.0F};
  buildWorldMatrix(frame);
  render(ViewCode::RgbCube);
  EXPECT_EQ(nullGraphics().drawn.at(0).world, identity4x4);
  EXPECT_EQ(nullGraphics().drawn.at(1).world, frame.world);
}

TEST_F(Views, OnlyTheCubeIsTurned) {
  colourSpaceView.viewCode = ViewCode::RgbCube;
  beginDrag(0, 0);
  rotateByMouse({.left = true}, 77, -31);
  const Matrix4x4 turned = colourSpaceView.viewMatrix;
  const Matrix4x4 home = colourSpaceView.homeViewMatrix;
  ASSERT_NE(turned, home);
  for (const ViewCode view : {ViewCode::ChromaticityDiagram, ViewCode::ResponseCurves}) {
    render(view);
    for (const DrawnPrimitives& drawn : nullGraphics().drawn) EXPECT_EQ(drawn.view, home);
  }
  render(ViewCode::RgbCube);
  for (const DrawnPrimitives& drawn : nullGraphics().drawn) EXPECT_EQ(drawn.view, turned);
}

TEST_F(Views, DrawOnlyTheirOwnObjects) {
  constexpr std::array<std::pair<ViewCode, std::size_t>, 5> objectsOfViews{
      {{ViewCode::ResponseCurves, 3},
       {ViewCode::NormalCurves, 3},
       {ViewCode::RgbCube, 2},
       {ViewCode::ChromaticityDiagram, 4},
       {ViewCode::Help, 0}}};
  for (const auto& [view, objects] : objectsOfViews) {
    render(view);
    EXPECT_EQ(nullGraphics().drawn.size(), objects);
  }
}

}  // namespace
}  // namespace tintora
