// The renderer on the desktop that is not there, and what its device holds.
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

// Every type at 0, 60 and 100 % by every algorithm.
std::vector<Simulation> allSimulations();

// Has the model compute a simulation, and the views show it.
void show(const Simulation& simulation);
// Has the views show a matrix.
void show(const Matrix3x3& matrix);

// What the device holds of an object.
const SceneObject& object(SceneRole role);
const Vertices& verticesOf(SceneRole role);
const std::vector<std::uint16_t>& indicesOf(SceneRole role);

void expectVertex(const ColourVertex& actual, const ExpectedVertex& expected);
void expectVertices(const Vertices& actual, const ExpectedVertices& expected);
// Where the colours are constants, to the last bit of them too.
void expectConstantColours(const Vertices& actual, const ExpectedVertices& expected);

// The calls that the device gets while something is done.
template <typename Action>
Calls callsOf(Action action) {
  platform::NullGraphics& graphics = platform::nullGraphics();
  graphics.calls.clear();
  graphics.keepsCalls = true;
  action();
  graphics.keepsCalls = false;
  return graphics.calls;
}

// A renderer just created for a client area of 400 by 400 pixels.
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
