// The camera after scripted drags, against quaternions in double precision.
#include <array>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <vector>

#include "scene.h"

namespace tintora {
namespace {

using platform::nullGraphics;
using Camera = ColourSpaceTest;
using Drag = ColourSpaceTest;

constexpr DragKeys leftDrag{.left = true};
constexpr DragKeys rightDrag{.right = true};
constexpr DragKeys leftShift{.left = true, .shift = true};
constexpr DragKeys rightShift{.right = true, .shift = true};

struct Quaternion {
  double w = 1.0;
  double x = 0.0;
  double y = 0.0;
  double z = 0.0;
};

// Returns the turn by b, then by a.
Quaternion operator*(const Quaternion& a, const Quaternion& b) {
  return {
      a.w * b.w - a.x * b.x - a.y * b.y - a.z * b.z, a.w * b.x + a.x * b.w + a.y * b.z - a.z * b.y,
      a.w * b.y - a.x * b.z + a.y * b.w + a.z * b.x, a.w * b.z + a.x * b.y - a.y * b.x + a.z * b.w};
}

Quaternion about(double x, double y, double z, double degrees) {
  const double half = degrees / 2.0 * std::numbers::pi / 180.0;
  return {std::cos(half), std::sin(half) * x, std::sin(half) * y, std::sin(half) * z};
}

std::array<double, 3> turned(const Quaternion& q, const std::array<double, 3>& p) {
  const Quaternion conjugate{q.w, -q.x, -q.y, -q.z};
  const Quaternion image = q * Quaternion{0.0, p[0], p[1], p[2]} * conjugate;
  return {image.x, image.y, image.z};
}

// Returns a turn of the cube as seen on the screen, in degrees: about the line of sight, then about
// the horizontal and the vertical axis of the screen.
Quaternion seenTurn(double vertical, double horizontal, double sight) {
  return about(0.0, 1.0, 0.0, vertical) * about(1.0, 0.0, 0.0, horizontal) *
         about(0.0, 0.0, 1.0, sight);
}

// Expects the camera to see the cube turned, 5.5 away and shrunk to 8/11 of its size.
void expectCamera(const Quaternion& orientation, double tolerance = 2e-6) {
  constexpr double scale = 4.0 / 5.5;
  constexpr std::array<std::array<double, 3>, 3> axes{
      {{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}}};
  const Matrix4x4& view = colourSpaceView.viewMatrix;
  for (std::size_t row = 0; row < 3; ++row) {
    const std::array<double, 3> image = turned(orientation, axes[row]);
    for (std::size_t column = 0; column < 3; ++column) {
      EXPECT_NEAR(view[row][column], scale * image[column], tolerance)
          << "row " << row << ", column " << column;
    }
    EXPECT_EQ(view[row][3], 0.0F);
  }
  EXPECT_NEAR(view[3][0], 0.0, tolerance);
  EXPECT_NEAR(view[3][1], 0.0, tolerance);
  EXPECT_NEAR(view[3][2], 5.5, 8.0 * tolerance);
  EXPECT_EQ(view[3][3], 1.0F);
}

void press(int x, int y) {
  colourSpaceView.viewCode = ViewCode::RgbCube;
  beginDrag(x, y);
}

// Locks drags to the horizontal, so that a lock to the vertical can be told from the start. The
// cube is unturned afterwards.
void lockToHorizontal() {
  press(0, 0);
  rotateByMouse(rightDrag, 40, 0);
  ASSERT_TRUE(colourSpaceView.lockHorizontal);
  setCamera(true);
}

TEST_F(Camera, StartsInFrontOfTheScene) {
  expectCamera({});
  EXPECT_EQ(colourSpaceView.homeViewMatrix, colourSpaceView.viewMatrix);
  EXPECT_EQ(colourSpaceView.cameraDistance, 4.0F);
}

TEST_F(Camera, ResetPutsItBack) {
  press(0, 0);
  rotateByMouse(leftDrag, 100, 50);
  setCamera(true);
  expectCamera({});
}

TEST_F(Camera, WithoutResetOnlyTheProjectionIsSet) {
  press(0, 0);
  rotateByMouse(leftDrag, 100, 50);
  const Matrix4x4 before = colourSpaceView.viewMatrix;
  EXPECT_EQ(callsOf([] { setCamera(false); }), (Calls{"setTransform projection"}));
  EXPECT_EQ(colourSpaceView.viewMatrix, before);
}

TEST_F(Drag, TurnsAQuarterOfADegreeForEachPixelAgainstTheAngle) {
  press(100, 100);
  rotateByMouse(leftDrag, 140, 100);
  expectCamera(seenTurn(-10.0, 0.0, 0.0));
  rotateByMouse(leftDrag, 140, 76);
  expectCamera(seenTurn(0.0, 6.0, 0.0) * seenTurn(-10.0, 0.0, 0.0));
}

TEST_F(Drag, FrontOfTheCubeFollowsTheMouse) {
  press(0, 0);
  rotateByMouse(leftDrag, 20, 0);
  EXPECT_GT(transformedPoint({0.0F, 0.0F, -1.0F}, colourSpaceView.viewMatrix).x, 0.05F);
  setCamera(true);
  press(0, 0);
  rotateByMouse(leftDrag, 0, 20);
  EXPECT_LT(transformedPoint({0.0F, 0.0F, -1.0F}, colourSpaceView.viewMatrix).y, -0.05F);
}

TEST_F(Drag, BothWaysAtOnceTurnsAboutBothAxes) {
  press(50, 60);
  rotateByMouse(leftDrag, 250, 180);
  expectCamera(seenTurn(-50.0, -30.0, 0.0));
}

TEST_F(Drag, EveryMoveTurnsFromWhereTheLastOneLeft) {
  press(10, 20);
  Quaternion expected;
  constexpr std::array<std::array<int, 2>, 6> moves{
      {{60, 90}, {200, 30}, {-40, -70}, {-41, 300}, {500, 301}, {10, 20}}};
  std::array<int, 2> last{10, 20};
  for (const auto& move : moves) {
    rotateByMouse(leftDrag, move[0], move[1]);
    expected = seenTurn(-0.25 * (move[0] - last[0]), -0.25 * (move[1] - last[1]), 0.0) * expected;
    last = move;
    expectCamera(expected);
  }
}

TEST_F(Drag, WithShiftRollsByTheHorizontalPartAlone) {
  press(100, 100);
  rotateByMouse(leftShift, 180, 333);
  expectCamera(seenTurn(0.0, 0.0, -20.0));
  rotateByMouse(leftShift, 180, 10);
  expectCamera(seenTurn(0.0, 0.0, -20.0));
}

TEST_F(Drag, WithShiftRollsAboutTheLineOfSightWhateverTheOrientation) {
  press(0, 0);
  rotateByMouse(leftDrag, 120, 80);
  rotateByMouse(leftShift, 220, 80);
  expectCamera(seenTurn(0.0, 0.0, -25.0) * seenTurn(-30.0, -20.0, 0.0));
}

TEST_F(Drag, WithTheRightButtonKeepsToTheLargerPartOfItsFirstMove) {
  press(0, 0);
  rotateByMouse(rightDrag, 40, -36);  // horizontal
  expectCamera(seenTurn(-10.0, 0.0, 0.0));
  EXPECT_TRUE(colourSpaceView.lockHorizontal);
  rotateByMouse(rightDrag, 44, 64);
  expectCamera(seenTurn(-11.0, 0.0, 0.0));

  setCamera(true);
  press(0, 0);
  rotateByMouse(rightDrag, 36, -40);  // vertical
  expectCamera(seenTurn(0.0, 10.0, 0.0));
  EXPECT_FALSE(colourSpaceView.lockHorizontal);
  rotateByMouse(rightDrag, 400, -36);
  expectCamera(seenTurn(0.0, 9.0, 0.0));
}

TEST_F(Drag, WithTheRightButtonExactlyDiagonalTurnsAboutTheHorizontalAxis) {
  for (const int x : {40, -40}) {
    for (const int y : {40, -40}) {
      lockToHorizontal();
      press(0, 0);
      rotateByMouse(rightDrag, x, y);
      expectCamera(seenTurn(0.0, -0.25 * y, 0.0));
      EXPECT_FALSE(colourSpaceView.lockHorizontal);
    }
  }
}

TEST_F(Drag, LaterRightButtonDragsKeepTheAxisUntilTheNextLeftPress) {
  press(0, 0);
  rotateByMouse(rightDrag, 40, 0);
  rotateByMouse({}, 500, 500);
  rotateByMouse(rightDrag, 501, 900);  // vertical, yet only its horizontal pixel counts
  expectCamera(seenTurn(-10.25, 0.0, 0.0));
  press(501, 900);
  rotateByMouse(rightDrag, 502, 940);
  expectCamera(seenTurn(0.0, -10.0, 0.0) * seenTurn(-10.25, 0.0, 0.0));
}

TEST_F(Drag, WithTheRightButtonBeforeAnyLeftPressKeepsToTheVertical) {
  colourSpaceView.viewCode = ViewCode::RgbCube;
  rotateByMouse({}, 100, 100);
  rotateByMouse(rightDrag, 300, 120);
  expectCamera(seenTurn(0.0, -5.0, 0.0));
}

TEST_F(Drag, FreeDragDoesNotChooseTheAxis) {
  press(0, 0);
  rotateByMouse(leftDrag, 0, 40);
  EXPECT_TRUE(colourSpaceView.firstDragMove);
  rotateByMouse(rightDrag, 40, 44);
  EXPECT_TRUE(colourSpaceView.lockHorizontal);
  EXPECT_FALSE(colourSpaceView.firstDragMove);
  expectCamera(seenTurn(-10.0, 0.0, 0.0) * seenTurn(0.0, -10.0, 0.0));
}

// Shift has set both parts to 0, so neither is larger.
TEST_F(Drag, WithShiftAndTheRightButtonRollsAndLocksToTheVertical) {
  lockToHorizontal();
  press(0, 0);
  rotateByMouse(rightShift, 80, 0);
  expectCamera(seenTurn(0.0, 0.0, -20.0));
  EXPECT_FALSE(colourSpaceView.lockHorizontal);
  EXPECT_FALSE(colourSpaceView.firstDragMove);
}

TEST_F(Drag, BothButtonsLockTheAxis) {
  press(0, 0);
  rotateByMouse({.left = true, .right = true}, 40, 8);
  expectCamera(seenTurn(-10.0, 0.0, 0.0));
}

TEST_F(Drag, MovesWithoutAButtonOnlyRecordThePlace) {
  colourSpaceView.viewCode = ViewCode::RgbCube;
  const Calls calls = callsOf([] {
    rotateByMouse({}, 300, 200);
    rotateByMouse({.shift = true}, 310, 190);
  });
  EXPECT_EQ(calls, Calls{});
  EXPECT_EQ(colourSpaceView.lastMouseX, 310);
  EXPECT_EQ(colourSpaceView.lastMouseY, 190);
  expectCamera({});
}

TEST_F(Drag, AfterMovesWithoutAButtonStartsWithoutAJump) {
  press(0, 0);
  rotateByMouse(leftDrag, 40, 0);
  rotateByMouse({}, 350, 390);
  rotateByMouse(leftDrag, 354, 390);
  expectCamera(seenTurn(-11.0, 0.0, 0.0));
}

TEST_F(Drag, EveryStepDrawsAFrameAndRecordsThePlace) {
  press(5, 6);
  rotateByMouse(leftDrag, 25, 16);
  EXPECT_EQ(nullGraphics().picturesShown, 1);
  EXPECT_EQ(nullGraphics().drawn.at(0).view, colourSpaceView.viewMatrix);
  EXPECT_EQ(colourSpaceView.lastMouseX, 25);
  EXPECT_EQ(colourSpaceView.lastMouseY, 16);
}

TEST_F(Drag, LeavesTheObjectsWhereTheyAre) {
  press(0, 0);
  rotateByMouse(leftDrag, 100, 100);
  for (const SceneObject& each : colourSpaceView.objects) EXPECT_EQ(each.world, identity4x4);
}

TEST_F(Drag, OfTheObjectsTurnsThemAllInPlaceOfTheCamera) {
  press(0, 0);
  colourSpaceView.cameraMode = false;
  rotateByMouse(leftDrag, 40, 80);
  rotateByMouse(leftDrag, 44, 80);
  expectCamera({});
  constexpr double degree = std::numbers::pi / 180.0;
  for (const SceneObject& each : colourSpaceView.objects) {
    EXPECT_NEAR(each.rotation.x, -20.0 * degree, 1e-6);
    EXPECT_NEAR(each.rotation.y, -11.0 * degree, 1e-6);
    EXPECT_EQ(each.rotation.z, 0.0F);
    SceneObject expected = each;
    buildWorldMatrix(expected);
    EXPECT_EQ(each.world, expected.world);
    EXPECT_NE(each.world, identity4x4);
  }
}

// Objects are turned about x and y only, and Shift leaves neither of a drag's parts.
TEST_F(Drag, OfTheObjectsWithShiftTurnsNothing) {
  for (const DragKeys& held : {leftShift, rightShift}) {
    press(0, 0);
    colourSpaceView.cameraMode = false;
    rotateByMouse(held, 40, 80);
    expectCamera({});
    for (const SceneObject& each : colourSpaceView.objects) {
      EXPECT_EQ(each.rotation.x, 0.0F);
      EXPECT_EQ(each.rotation.y, 0.0F);
      EXPECT_EQ(each.rotation.z, 0.0F);
      EXPECT_EQ(each.world, identity4x4);
    }
  }
  EXPECT_EQ(nullGraphics().picturesShown, 2);
}

TEST_F(Drag, CubeKeepsItsShapeThroughAThousandMoves) {
  press(0, 0);
  Quaternion expected;
  int x = 0;
  int y = 0;
  for (int i = 0; i < 1000; ++i) {
    const int dx = (i * 37) % 23 - 11;
    const int dy = (i * 53) % 19 - 9;
    x += dx;
    y += dy;
    rotateByMouse(leftDrag, x, y);
    expected = seenTurn(-0.25 * dx, -0.25 * dy, 0.0) * expected;
  }
  expectCamera(expected, 2e-4);
}

TEST_F(Drag, WithExtremePlacesLeavesTheCameraFinite) {
  press(0, 0);
  for (const int place : {2147483647, -2147483647 - 1, 0, 32767, -32768}) {
    rotateByMouse(leftDrag, place, place);
    rotateByMouse(leftDrag, place, -1);
    for (const auto& row : colourSpaceView.viewMatrix) {
      for (const float entry : row) EXPECT_TRUE(std::isfinite(entry));
    }
  }
}

}  // namespace
}  // namespace tintora
