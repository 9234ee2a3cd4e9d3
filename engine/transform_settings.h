// The user's choices: what to apply to the screen, and how strongly.
#pragma once

#include <cstdint>
#include <string>

#include "spectral/simulation_matrix.h"

namespace tintora {

// A stored setting may hold any other value, which is kept.
enum class TransformMode : std::int32_t {
  Custom = 0,
  Protan = 1,
  Deutan = 2,
  Tritan = 3,
  ColourFilter = 4,
  Greyscale = 5,
  Invert = 6,
  Brightness = 7,
  Normal = 8,
  Contrast = 9,
  Saturation = 10,
  ColourSwap = 11,
  CircadianLightBlock = 12,
  RedFilter = 13,
};

// Which channels change places. A stored setting may hold any other value, which is kept.
enum class ColourSwap : std::int32_t {
  RedBlue = 200,
  RedGreen = 201,
  GreenBlue = 202,
  RedBlueInFull = 203,
};

// The fields that are saved have the names under which they are stored.
struct TransformSettings {
  TransformMode Selected = TransformMode::Deutan;
  double severity = 1.0;  // 0..1; also the strength of filter, swap, light block and custom entries
  bool Daltonize = false;
  bool Inversion = false;
  SimulationAlgorithm Option = SimulationAlgorithm::Judd1948;
  double filterRed = 1.0;  // the share of each output channel that the colour filter passes, 0 or 1
  double filterGreen = 1.0;
  double filterBlue = 1.0;
  std::string filterName = "None";
  std::int32_t Filter = 100;  // the menu command that chose the filter
  ColourSwap Swap = ColourSwap::RedBlue;
  double brightness = 0.0;  // -1..1, added to every channel
  double contrast = 1.0;    // 0..1
  double saturation = 1.0;  // 0 grey .. 1 unchanged
  std::int32_t customIndex = 0;
  bool transformOff = false;
};

// The settings in force.
extern TransformSettings transformSettings;

// Returns true for Protan, Deutan and Tritan.
bool isDeficiency(TransformMode mode);

// Returns true for the modes whose matrix the model computes: the deficiencies and Normal.
bool isSimulation(TransformMode mode);

// Returns a fraction as a whole percentage, truncated towards zero after 0.001 is added in its
// direction to make up for what repeated steps of 0.01 lose. For |value| below 1e7.
std::int32_t wholePercent(double value);

// Returns the title of the main window for these settings, in Windows-1252. Custom transforms have
// titles of their own (apply_transform.h).
std::string transformTitle(const TransformSettings& settings);

}  // namespace tintora
