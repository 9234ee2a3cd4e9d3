// Works out how the RGB cube should look from the eye's place, its field of view and the turns of
// the mouse.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "colour_space_run.h"
#include "expected_effects.h"
#include "picture.h"

namespace tintora::windows_test {

// One turn in degrees: the front of the cube moves to the right, then downwards, then its top moves
// to the right.
struct Turn {
  double right = 0.0;
  double down = 0.0;
  double clockwise = 0.0;
};

struct CubeForm {
  std::vector<Turn> turns{};  // applied in order
  expected::Weights weights{
      {{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}}};  // the transform of the solid cube
};

// Succeeds if the sides of the solid cube that face the eye have their colours in a picture.
testing::AssertionResult showsSolidCube(const Picture& picture, const CubeForm& form);

// Succeeds if the visible edges of the frame around the cube have their colours in a picture.
testing::AssertionResult showsFrame(const Picture& picture, const CubeForm& form);

}  // namespace tintora::windows_test
