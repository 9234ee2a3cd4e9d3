// The renderer on the null desktop, and what its device holds.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "colour_space/camera.h"
#include "colour_space/colour_space_view.h"
#include "colour_space/frame.h"
#include "colour_space/renderer.h"
#include "expected_vertex.h"
#include "platform/null/null_graphics.h"
#include "platform/null/null_platform.h"
#include "spectral/simulation_matrix.h"

namespace tintora {

using Calls = std::vector<std::string>;
using Vertices = std::vector<ColourVertex>;

struct Simulation {
  CvdType type;
  double severity;
  SimulationAlgorithm algorithm;
  std::string name;
};

// Returns every type at 0, 60 and 100 % by every algorithm.
std::vector<Simulation> allSimulations();

// Computes a simulation and shows it in the views.
void show(const Simulation& simulation);
// Shows a matrix in the views.
void show(const Matrix3x3& matrix);

// Return an object and what the device holds of it.
const SceneObject& object(SceneRole role);
const Vertices& verticesOf(SceneRole role);
const std::vector<std::uint16_t>& indicesOf(SceneRole role);

void expectVertex(const ColourVertex& actual, const ExpectedVertex& expected);
void expectVertices(const Vertices& actual, const ExpectedVertices& expected);
// Expects colours that are constants, to the last bit.
void expectConstantColours(const Vertices& actual, const ExpectedVertices& expected);

// Returns the calls to the device during an action.
template <typename Action>
Calls callsOf(Action action) {
  platform::NullGraphics& graphics = platform::nullGraphics();
  graphics.calls.clear();
  graphics.keepsCalls = true;
  action();
  graphics.keepsCalls = false;
  return graphics.calls;
}

// Each test starts with a new device for a client area of 400 by 400 pixels.
class ColourSpaceTest : public ::testing::Test {
 protected:
  ColourSpaceTest();

  static void render(ViewCode view) {
    colourSpaceView.viewCode = view;
    renderFrame();
  }

  platform::Window window;
};

}  // namespace tintora
