// The numbers of the menu commands.
#pragma once

#include "colour_space/view_code.h"
#include "engine/colour_effects.h"
#include "engine/transform_settings.h"

namespace tintora::command_ids {

// What a menu command can be.
inline constexpr int last = 65535;

// The custom transforms are the commands from 0. These follow, counted from the number of custom
// transforms, for as long as that stays below firstAbsolute.
struct Relative {
  int offset;
};
inline constexpr Relative protan{1};
inline constexpr Relative deutan{2};
inline constexpr Relative tritan{3};
inline constexpr Relative greyscale{4};
inline constexpr Relative invert{5};
inline constexpr Relative brightness{6};
inline constexpr Relative contrast{7};
inline constexpr Relative saturation{8};
inline constexpr Relative circadianLightBlock{9};
inline constexpr Relative toggleTransform{50};
inline constexpr Relative toggleFrame{51};
inline constexpr Relative copyToClipboard{52};
inline constexpr Relative toggleHitTransparency{53};
inline constexpr Relative toggleFullScreen{54};
inline constexpr Relative openUserGuide{55};

// The id of labels, which cannot be chosen.
inline constexpr int label = 99;

inline constexpr int firstAbsolute = 100;

// The filters of colourFilters and fullRedFilter; those above keep the filter's colour.
inline constexpr int firstFilter = colourFilters.front().command;
inline constexpr int lastFilter = 199;

// The swaps of ColourSwap, and every command that is nothing else.
inline constexpr int firstSwap = static_cast<int>(ColourSwap::RedBlue);

// The algorithms in the order of SimulationAlgorithm; those behind them apply the transform again.
inline constexpr int firstAlgorithm = 300;
inline constexpr int lastAlgorithm = 309;

inline constexpr int toggleColourSpace = 700;
inline constexpr int toggleDocking = 701;
inline constexpr int simulation = 775;
inline constexpr int daltonize = 776;
inline constexpr int inverseTransform = 777;

// Return the command that chooses a swap, an algorithm or a view.
constexpr int of(ColourSwap swap) {
  return static_cast<int>(swap);
}
constexpr int of(SimulationAlgorithm algorithm) {
  return firstAlgorithm + static_cast<int>(algorithm);
}
constexpr int of(ViewCode view) {
  return static_cast<int>(view);
}

}  // namespace tintora::command_ids
