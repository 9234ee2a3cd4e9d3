// The one colour matrix that is applied to the screen, made from the settings in force.
#pragma once

#include <array>
#include <string_view>

#include "engine/colour_effects.h"

namespace tintora {

// [input channel][output channel] in the order R, G, B, A; row 4 holds the offsets. A colour is the
// row vector (R, G, B, A, 1), channels 0..1, and the shown colour is that vector times the matrix.
// The alpha row and column and [4][4] always are those of the identity.
using EffectMatrix = std::array<std::array<float, 5>, 5>;

inline constexpr EffectMatrix identityEffectMatrix{{
    {1.0F, 0.0F, 0.0F, 0.0F, 0.0F},
    {0.0F, 1.0F, 0.0F, 0.0F, 0.0F},
    {0.0F, 0.0F, 1.0F, 0.0F, 0.0F},
    {0.0F, 0.0F, 0.0F, 1.0F, 0.0F},
    {0.0F, 0.0F, 0.0F, 0.0F, 1.0F},
}};

// The matrix in force.
extern EffectMatrix effectMatrix;

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

// What the engine asks of the program around it. Every member may be replaced; as they stand they
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
};

extern TransformDisplay transformDisplay;

// Applies the settings in force: check marks, matrix, title, display, views. Turns the transform
// on, unless it is a custom one and there are none.
void applyTransform();

// Shows the screen as it is and says so in the title; the settings stay.
void transformOffApply();

// Writes the nine colour entries and the three offsets of the matrix in force and nothing else.
void storeColourEffect(const ColourEffect& effect);

}  // namespace tintora
