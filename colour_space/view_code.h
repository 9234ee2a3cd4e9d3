// The views of the colour space window.
#pragma once

#include <cstdint>

namespace tintora {

// Each value is also the id of the menu command that chooses the view. Any other value may stand in
// a stored setting and is kept.
enum class ViewCode : std::int32_t {
  ResponseCurves = 702,
  RgbCube = 703,
  ChromaticityDiagram = 704,
  Help = 705,
  NormalCurves = 706,  // no key or command chooses it
};

}  // namespace tintora
