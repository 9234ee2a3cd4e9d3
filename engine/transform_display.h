// What the engine tells the program around it, through one record of functions.
#pragma once

#include <array>
#include <string_view>

#include "engine/effect_matrix.h"

namespace tintora {

enum class TransformMenu { Main, AlternativeTransforms };

// The positions of the viewer items in the main menu. The menu's builder records them and does not
// count the custom transforms at the top.
struct ViewerItemPositions {
  int simulation;
  int daltonize;
  int inverseTransform;
  int swapRedAndBlue;
  int otherColourEffects;
};

// The position of each algorithm in the menu of alternative transforms, in the order of
// SimulationAlgorithm. The menu's builder records these, too.
using AlgorithmPositions = std::array<int, 5>;

// The functions through which the engine tells the program what to show. By default they do
// nothing, so that the engine runs alone; the program replaces them.
struct TransformDisplay {
  // Shows the screen through this matrix.
  void (*showEffectMatrix)(const EffectMatrix&) = [](const EffectMatrix&) {};
  // Shows the name of the transform in force, in Windows-1252.
  void (*showTitle)(std::string_view) = [](std::string_view) {};
  // Sets or clears a check mark, by position.
  void (*checkMenuItem)(TransformMenu, int position, bool checked) = [](TransformMenu, int, bool) {
  };
  // Refreshes the colour space views after the model's matrices have changed.
  void (*refreshTransformViews)() = [] {};

  ViewerItemPositions positions{};
  AlgorithmPositions algorithmPositions{};
};

extern TransformDisplay transformDisplay;

}  // namespace tintora
