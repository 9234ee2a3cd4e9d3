// What the engine tells the program around it, through one record of functions.
#pragma once

#include <array>
#include <string_view>

#include "engine/effect_matrix.h"

namespace tintora {

enum class TransformMenu { Main, AlternativeTransforms };

// Where the viewer items stand in the main menu, as its builder records them. Custom transforms at
// the top of the menu are not counted.
struct ViewerItemPositions {
  int simulation;
  int daltonize;
  int inverseTransform;
  int swapRedAndBlue;
  int otherColourEffects;
};

// Where each algorithm stands in the menu of alternative transforms, in the order of
// SimulationAlgorithm; recorded by the builder, too.
using AlgorithmPositions = std::array<int, 5>;

// What the engine tells the program around it. Every member may be replaced; as they stand they
// do nothing, so that the engine runs alone.
struct TransformDisplay {
  // Show the screen through this matrix.
  void (*showEffectMatrix)(const EffectMatrix&) = [](const EffectMatrix&) {};
  // Name the transform in force; Windows-1252.
  void (*showTitle)(std::string_view) = [](std::string_view) {};
  // Set or clear a check mark, by position.
  void (*checkMenuItem)(TransformMenu, int position, bool checked) = [](TransformMenu, int, bool) {
  };
  // The model's matrices have changed; the colour space views must follow.
  void (*refreshTransformViews)() = [] {};

  ViewerItemPositions positions{};
  AlgorithmPositions algorithmPositions{};
};

extern TransformDisplay transformDisplay;

}  // namespace tintora
