// What the tests of filtered files share: a few transforms, the file that one makes of another, and
// the pixels that it should have.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "cli/filter_stream.h"
#include "cli/image_file.h"
#include "engine/colour_effects.h"
#include "engine/colour_simulation.h"
#include "tests/cli/image_samples.h"

namespace tintora::cli {

inline ColourTransform transformOf(const ColourEffect& effect, Light light = Light::Encoded) {
  return {light, {effect, effect}, {}};
}

inline const ColourTransform inverting = transformOf(invertEffect());
inline const ColourTransform redOnly = transformOf(filterEffect({1.0, 0.0, 0.0}, 1.0));

// Returns the file that the transform makes of another.
inline Bytes filtered(const Bytes& file, const ColourTransform& transform,
                      ImageFormat format = ImageFormat::Png) {
  ByteSource source;
  source.rest = file;
  ByteSink sink;
  filterStream(source, sink, FilterSet(transform), {format, 95, defaultPixelLimit});
  return sink.bytes;
}

// Returns the colour type and the bit depth of a PNG file.
inline std::pair<int, int> kindOf(const Bytes& png) {
  return {png.at(25), png.at(24)};
}

// Returns what the transform makes of each BGRA pixel, by its definition.
inline Bytes expectedFrom(Bytes pixels, const ColourTransform& transform) {
  for (std::size_t i = 0; i < pixels.size(); i += 4) {
    const Colour shown = transformColour(
        transform, {pixels[i + 2] / 255.0, pixels[i + 1] / 255.0, pixels[i] / 255.0});
    for (std::size_t k = 0; k < 3; ++k) {
      pixels[i + 2 - k] = static_cast<std::uint8_t>(std::lround(shown[k] * 255.0));
    }
  }
  return pixels;
}

}  // namespace tintora::cli
