// The RGB cube as it should be seen, worked out from the eye's place, its field of view and the
// turns of the mouse.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "colour_space_run.h"
#include "expected_effects.h"
#include "picture.h"

namespace tintora::windows_test {

// Degrees by which the front of the cube was moved to the right, its front downwards, and its top
// to the right, in this order.
struct Turn {
  double right = 0.0;
  double down = 0.0;
  double clockwise = 0.0;
};

struct CubeForm {
  std::vector<Turn> turns{};  // one after the other
  expected::Weights weights{
      {{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}}};  // of the solid cube
};

// Whether the sides of the solid cube that face the eye carry their colours in a picture.
testing::AssertionResult showsSolidCube(const Picture& picture, const CubeForm& form);

// Whether the edges of the frame around it do, as far as nothing hides them.
testing::AssertionResult showsFrame(const Picture& picture, const CubeForm& form);

}  // namespace tintora::windows_test
