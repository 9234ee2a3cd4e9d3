// How the device is created, resized and released, and in which order.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string>
#include <vector>

#include "scene.h"

namespace tintora {
namespace {

using platform::nullGraphics;
using Device = ColourSpaceTest;
using Resize = ColourSpaceTest;

const Calls objectsBuilt{// The solid cube and its frame,
                         "createVertexBuffer 8 on device", "createIndexBuffer 36 on device",
                         "createVertexBuffer 8 on device", "createIndexBuffer 26 on device",
                         // the reference and the live curves,
                         "createVertexBuffer 400 managed", "createVertexBuffer 400 managed",
                         "createVertexBuffer 400 managed", "createVertexBuffer 400 managed",
                         "createVertexBuffer 400 managed", "createVertexBuffer 400 managed",
                         // the locus, the primaries, the gamut and its outline.
                         "createVertexBuffer 460 managed", "createVertexBuffer 120 managed",
                         "createVertexBuffer 1200 managed", "createIndexBuffer 7200 on device",
                         "createVertexBuffer 120 managed"};

Calls withoutFilling(Calls calls) {
  std::erase_if(calls,
                [](const std::string& call) { return call.starts_with("fillVertexBuffer"); });
  return calls;
}

Calls joined(Calls first, const Calls& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

std::vector<Vertices> allVertices() {
  std::vector<Vertices> all;
  for (std::size_t i = 0; i < colourSpaceView.objectCount; ++i) {
    all.push_back(colourSpaceView.objects.at(i).vertexBuffer->vertices);
  }
  return all;
}

TEST_F(Device, IsMadeInOrder) {
  const Calls calls = callsOf([this] { createDevice(&window, 400, 300, true); });
  EXPECT_EQ(
      withoutFilling(calls),
      joined({"createGraphicsDevice 400x300", "setTransform view", "setTransform projection",
              "createTextFont Microsoft Sans Serif 16", "createTextFont Microsoft Sans Serif 14"},
             objectsBuilt));
}

TEST_F(Device, HasTwelveObjectsInUse) {
  EXPECT_EQ(colourSpaceView.objectCount, 12U);
  for (std::size_t i = 0; i < 12; ++i) {
    const SceneObject& built = colourSpaceView.objects.at(i);
    EXPECT_EQ(built.world, identity4x4);
    EXPECT_LE(built.bufferVertices, 2000U);
    EXPECT_EQ(built.vertexBuffer->capacity, built.bufferVertices);
    EXPECT_TRUE(std::ranges::equal(built.vertexBuffer->vertices,
                                   std::span(built.vertices).first(built.bufferVertices)));
  }
}

TEST_F(Device, DrawsIntoTheWindowAtItsSize) {
  EXPECT_EQ(colourSpaceView.window, &window);
  EXPECT_EQ(colourSpaceView.device->window, &window);
  EXPECT_EQ(colourSpaceView.device->size, (platform::Size{400, 400}));
  EXPECT_EQ(colourSpaceView.width, 400);
  EXPECT_EQ(colourSpaceView.height, 400);
}

TEST_F(Device, HasATitleFontOfOutlinesAndALabelFontOfAnyKind) {
  EXPECT_EQ(colourSpaceView.titleFont->height, 16);
  EXPECT_TRUE(colourSpaceView.titleFont->outlinesOnly);
  EXPECT_EQ(colourSpaceView.titleFont->face, "Microsoft Sans Serif");
  EXPECT_EQ(colourSpaceView.labelFont->height, 14);
  EXPECT_FALSE(colourSpaceView.labelFont->outlinesOnly);
  EXPECT_EQ(colourSpaceView.labelFont->face, "Microsoft Sans Serif");
}

TEST_F(Device, StartsWithTheMouseInTheCornerAndDragsTurningTheCamera) {
  colourSpaceView.lastMouseX = 40;
  colourSpaceView.lastMouseY = 50;
  colourSpaceView.cameraMode = false;
  resizeDevice(300, 300);
  EXPECT_EQ(colourSpaceView.lastMouseX, 0);
  EXPECT_EQ(colourSpaceView.lastMouseY, 0);
  EXPECT_TRUE(colourSpaceView.cameraMode);
}

TEST_F(Device, HoldsTheViewBeforeShrinkingUntilTheFirstFrame) {
  using platform::TransformKind;
  Matrix4x4 expected = identity4x4;
  expected[3][2] = 5.5F;
  EXPECT_EQ(platform::transform(colourSpaceView.device, TransformKind::View), expected);
  render(ViewCode::RgbCube);
  EXPECT_EQ(platform::transform(colourSpaceView.device, TransformKind::View),
            colourSpaceView.viewMatrix);
}

TEST_F(Resize, BelowTenPixelsInEitherDirectionChangesNothing) {
  render(ViewCode::RgbCube);
  const std::vector<Vertices> before = allVertices();
  for (const platform::Size size : {platform::Size{9, 400}, {400, 9}, {9, 9}, {0, 0}, {-1, 500}}) {
    EXPECT_EQ(callsOf([&] { resizeDevice(size.width, size.height); }), Calls{});
    EXPECT_EQ(colourSpaceView.width, 400);
    EXPECT_EQ(colourSpaceView.height, 400);
  }
  EXPECT_EQ(nullGraphics().devicesMade, 1);
  EXPECT_EQ(allVertices(), before);
}

TEST_F(Resize, AtTenPixelsRecreatesTheDevice) {
  resizeDevice(10, 10);
  EXPECT_EQ(nullGraphics().devicesMade, 2);
  EXPECT_EQ(colourSpaceView.device->size, (platform::Size{10, 10}));
}

TEST_F(Resize, ReleasesObjectsFontsAndDeviceInOrderThenRecreatesThem) {
  Calls released{"releaseVertexBuffer 1", "releaseIndexBuffer 1", "releaseVertexBuffer 2",
                 "releaseIndexBuffer 2"};
  for (int i = 3; i <= 11; ++i) released.push_back("releaseVertexBuffer " + std::to_string(i));
  released.insert(
      released.end(),
      {"releaseIndexBuffer 3", "releaseVertexBuffer 12", "releaseTextFont 1", "releaseTextFont 2",
       "releaseGraphicsDevice 1", "createGraphicsDevice 640x480", "setTransform projection",
       "createTextFont Microsoft Sans Serif 16", "createTextFont Microsoft Sans Serif 14"});
  const Calls calls = callsOf([] { resizeDevice(640, 480); });
  EXPECT_EQ(withoutFilling(calls), joined(released, objectsBuilt));
}

TEST_F(Resize, LeavesNothingOfTheOldDevice) {
  for (int i = 0; i < 25; ++i) resizeDevice(100 + i, 200 - i);
  EXPECT_EQ(nullGraphics().devices.size(), 1U);
  EXPECT_EQ(nullGraphics().fonts.size(), 2U);
  EXPECT_EQ(nullGraphics().vertexBuffers.size(), 12U);
  EXPECT_EQ(nullGraphics().indexBuffers.size(), 3U);
  EXPECT_EQ(nullGraphics().devicesMade, 26);
  EXPECT_EQ(nullGraphics().vertexBuffersMade, 26 * 12);
  EXPECT_EQ(nullGraphics().indexBuffersMade, 26 * 3);
  EXPECT_EQ(nullGraphics().fontsMade, 26 * 2);
}

TEST_F(Resize, KeepsTheTurnedCameraAndTheHomeCamera) {
  colourSpaceView.viewCode = ViewCode::RgbCube;
  beginDrag(10, 10);
  rotateByMouse({.left = true}, 150, 60);
  const Matrix4x4 turned = colourSpaceView.viewMatrix;
  const Matrix4x4 home = colourSpaceView.homeViewMatrix;
  ASSERT_NE(turned, home);
  resizeDevice(700, 500);
  EXPECT_EQ(colourSpaceView.viewMatrix, turned);
  EXPECT_EQ(colourSpaceView.homeViewMatrix, home);
  renderFrame();
  EXPECT_EQ(nullGraphics().drawn.at(0).view, turned);
}

TEST_F(Resize, RebuildsEveryObjectUntransformed) {
  const std::vector<Vertices> built = allVertices();
  show(Simulation{CvdType::Tritan, 1.0, SimulationAlgorithm::Vienot1999, ""});
  ASSERT_NE(allVertices(), built);
  resizeDevice(500, 400);
  EXPECT_EQ(allVertices(), built);
}

TEST_F(Resize, RefreshAfterItShowsTheTransformAgain) {
  show(Simulation{CvdType::Tritan, 0.6, SimulationAlgorithm::Vienot1999, ""});
  const std::vector<Vertices> transformedVertices = allVertices();
  resizeDevice(500, 400);
  refreshTransformViews();
  EXPECT_EQ(allVertices(), transformedVertices);
}

TEST_F(Resize, ProjectionTakesTheNewShape) {
  for (const platform::Size size : {platform::Size{400, 400}, {800, 400}, {300, 900}, {17, 10}}) {
    resizeDevice(size.width, size.height);
    const Matrix4x4 projection =
        platform::transform(colourSpaceView.device, platform::TransformKind::Projection);
    const double upright = 2.0 + std::sqrt(3.0);  // the cotangent of 15 degrees
    EXPECT_NEAR(projection[1][1], upright, 1e-6);
    EXPECT_NEAR(projection[0][0], upright * size.height / size.width, 1e-5);
    EXPECT_NEAR(projection[2][2], 100.0 / 99.0, 1e-6);
    EXPECT_NEAR(projection[3][2], -100.0 / 99.0, 1e-6);
    EXPECT_EQ(projection[2][3], 1.0F);
    EXPECT_EQ(projection[3][3], 0.0F);
  }
}

TEST_F(ColourSpaceTest, ReleasingTheDeviceLeavesNothing) {
  releaseDevice();
  const platform::NullGraphics& left = nullGraphics();
  EXPECT_TRUE(left.devices.empty() && left.vertexBuffers.empty() && left.indexBuffers.empty() &&
              left.fonts.empty());
  EXPECT_EQ(colourSpaceView.objectCount, 0U);
  EXPECT_EQ(callsOf([] { releaseDevice(); }), Calls{});
}

TEST(Renderer, DoesNothingBeforeThereIsADevice) {
  colourSpaceView = ColourSpaceView();
  platform::resetNullDesktop();
  const Calls calls = callsOf([] {
    refreshTransformViews();
    resizeDevice(400, 400);
    renderFrame();
    beginDrag(3, 4);
    rotateByMouse({}, 5, 6);
    rotateByMouse({.left = true}, 7, 8);
    renderFrame();
  });
  EXPECT_EQ(calls, Calls{});
  EXPECT_EQ(colourSpaceView.lastMouseX, 7);
  EXPECT_EQ(colourSpaceView.lastMouseY, 8);
}

TEST(Renderer, WorksBeforeTheModelIsInitialised) {
  colourSpaceView = ColourSpaceView();
  modelContext = ModelContext();
  platform::resetNullDesktop();
  platform::Window window;
  createDevice(&window, 200, 200, true);
  refreshTransformViews();
  for (const int view : {702, 703, 704, 705}) {
    colourSpaceView.viewCode = static_cast<ViewCode>(view);
    renderFrame();
  }
  EXPECT_EQ(nullGraphics().picturesShown, 4);
}

}  // namespace
}  // namespace tintora
