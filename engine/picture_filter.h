// A colour transform on the samples of pictures: what double precision gives, rounded once.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "engine/colour_transform.h"
#include "engine/pixel_filter.h"

namespace tintora {

// How many bits a sample has; it counts the steps of 0..255 or 0..65535 that make up 0..1.
enum class SampleDepth { Bits8, Bits16 };

// Tables that convert steps of one depth to linear light and back.
struct LightSteps {
  std::vector<double> light;             // of each step, 0..1
  double intervals;                      // a power of two: equal parts of 0..1, each with one
                                         // threshold at most
  std::vector<double> thresholds;        // [step]: the least light that rounds to it, in intervals;
                                         // one more at end
  std::vector<std::uint16_t> firstStep;  // of each interval
};

// Two doubles in one register. Every 64-bit processor of x86 and ARM has such registers.
using DoublePair [[gnu::vector_size(16)]] = double;

// What one step of one channel gives, in intervals of light: to the channels of the filtered pixel,
// and to the scalar product that tells its effect.
struct LightShare {
  DoublePair redAndGreen, blueAndSide;
};

// All that an effect does to steps of 8 bits, in linear light.
struct EffectShares {
  std::array<std::array<LightShare, 256>, 3> channels;  // [red, green, blue][step]
  LightShare offset;
};

// A colour transform made ready for samples of one depth.
struct PictureFilter {
  SampleDepth depth;
  Light light;
  std::array<double, 3> division;      // as in ColourTransform
  std::array<ExactMatrix, 2> effects;  // offsets in the unit of the values that they work on
  LightSteps steps;                    // in linear light only
  std::vector<EffectShares> shares;    // with 8 bits in linear light only; one where there is no
                                       // division
};

PictureFilter makePictureFilter(const ColourTransform& transform, SampleDepth depth);

// Converts pixels of another colour space, of 8 bits, to linear light of an sRGB display. The entry
// [channel][step] holds the R, G, B that one channel adds; a pixel's light is the sum of its three
// entries. The channels are in the order R, G, B.
using ChannelLights = std::array<std::array<std::array<double, 3>, 256>, 3>;

// Filters pixels in place. Each channel becomes the nearest step to the result in double precision,
// halves rounded up; alpha stays. The filter is of the depth that the samples have.
void filterPicture(const PictureFilter& filter, std::uint8_t* bgra, std::size_t pixels);
void filterPicture(const PictureFilter& filter, std::uint16_t* rgba, std::size_t pixels);

// Filters pixels of another colour space in place; they become sRGB. What the display cannot show
// is clamped to 0..1 first. The filter is of 8 bits and works in linear light.
void filterPicture(const PictureFilter& filter, const ChannelLights& lights, std::uint8_t* bgra,
                   std::size_t pixels);

}  // namespace tintora
