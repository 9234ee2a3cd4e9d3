// Colour profiles: what they are for, and conversion to sRGB by Little CMS.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "engine/picture_filter.h"

namespace tintora::cli {

enum class ProfileColours { None, Grey, Rgb };  // None: damaged, or for other colours

// Returns the kind of colours that the header of a profile names.
ProfileColours profileColours(std::span<const std::uint8_t> profile);

// A relative colorimetric conversion from a profile's colours to sRGB. Several threads may use it.
struct SrgbConversion;

// Returns the conversion, or null for a profile that cannot be used or changes no colour by half a
// step of 255.
std::shared_ptr<const SrgbConversion> conversionToSrgb(std::span<const std::uint8_t> profile);

// Returns the light that the channels of pixels of 8 bits add up to, or null if the profile is more
// than curves and a matrix.
const ChannelLights* channelLights(const SrgbConversion& conversion);

// Converts pixels to R G B A of 16 bits; of a profile for greys, whose pixels must be grey, to
// greys. The second may work in place.
void convertToSrgb(const SrgbConversion& conversion, const std::uint8_t* bgra, std::uint16_t* rgba,
                   std::size_t pixels);
void convertToSrgb(const SrgbConversion& conversion, const std::uint16_t* source,
                   std::uint16_t* rgba, std::size_t pixels);

}  // namespace tintora::cli
