#include "cli/icc_conversion.h"

#include <lcms2.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "cli/byte_stream.h"
#include "cli/image.h"

namespace tintora::cli {

namespace {

using namespace std::string_view_literals;

struct CloseProfile {
  void operator()(void* profile) const { cmsCloseProfile(profile); }
};
using Profile = std::unique_ptr<void, CloseProfile>;

struct DeleteTransform {
  void operator()(void* transform) const { cmsDeleteTransform(transform); }
};
using Transform = std::unique_ptr<void, DeleteTransform>;

struct FreeCurve {
  void operator()(cmsToneCurve* curve) const { cmsFreeToneCurve(curve); }
};

// Makes a profile for greys of the sRGB transfer function (IEC 61966-2-1), as Little CMS writes it.
Profile srgbGreys() {
  constexpr std::array<cmsFloat64Number, 5> parameters{2.4, 1.0 / 1.055, 0.055 / 1.055, 1.0 / 12.92,
                                                       0.04045};
  constexpr int withLinearPart = 4;
  const std::unique_ptr<cmsToneCurve, FreeCurve> curve(
      cmsBuildParametricToneCurve(nullptr, withLinearPart, parameters.data()));
  return curve ? Profile(cmsCreateGrayProfile(cmsD50_xyY(), curve.get())) : nullptr;
}

constexpr cmsUInt32Number relativeColorimetric = INTENT_RELATIVE_COLORIMETRIC;

}  // namespace

struct SrgbConversion {
  bool fromGrey = false;
  Transform from8;   // B G R A of 8 bits; none from greys
  Transform from16;  // R G B A of 16 bits, or single greys
  std::optional<ChannelLights> lights;
};

namespace {

// Returns some colours from all over the cube, or all greys.
std::vector<std::uint16_t> sampleColours(bool grey) {
  std::vector<std::uint16_t> samples;
  const auto add = [&](unsigned red, unsigned green, unsigned blue) {
    for (const unsigned value : {red, green, blue, 65535U}) {
      samples.push_back(static_cast<std::uint16_t>(value));
    }
  };
  for (unsigned value = 0; grey && value <= 65535; value += 257) add(value, value, value);
  constexpr unsigned step = 65535 / 5;
  for (unsigned i = 0; !grey && i < 216; ++i) {
    add(i / 36 * step, i / 6 % 6 * step, i % 6 * step);
  }
  return samples;
}

// Makes a profile of a display with the primaries of sRGB that is given linear light.
Profile linearSrgb() {
  const cmsCIExyY white{0.3127, 0.3290, 1.0};
  const cmsCIExyYTRIPLE primaries{{0.64, 0.33, 1.0}, {0.30, 0.60, 1.0}, {0.15, 0.06, 1.0}};
  const std::unique_ptr<cmsToneCurve, FreeCurve> line(cmsBuildGamma(nullptr, 1.0));
  if (!line) return nullptr;
  const std::array<cmsToneCurve*, 3> lines{line.get(), line.get(), line.get()};
  return Profile(cmsCreateRGBProfile(&white, &primaries, lines.data()));
}

// Returns the light of each channel, taken from the colours in which the other two are 0. Black's
// light is part of all three, so two thirds of it are subtracted from each.
ChannelLights lightsOf(cmsHTRANSFORM toLight) {
  const auto lightOf = [&](const std::array<std::uint8_t, 3>& rgb) {
    std::array<double, 3> light{};
    cmsDoTransform(toLight, rgb.data(), light.data(), 1);
    return light;
  };
  const std::array<double, 3> black = lightOf({});
  ChannelLights lights{};
  for (std::size_t channel = 0; channel < lights.size(); ++channel) {
    for (std::size_t step = 0; step < lights[channel].size(); ++step) {
      std::array<std::uint8_t, 3> rgb{};
      rgb[channel] = static_cast<std::uint8_t>(step);
      lights[channel][step] = lightOf(rgb);
      for (std::size_t part = 0; part < 3; ++part) {
        lights[channel][step][part] -= black[part] * 2.0 / 3.0;
      }
    }
  }
  return lights;
}

// Returns true if the lights of the channels add up to that of each of some colours.
bool addUp(const ChannelLights& lights, cmsHTRANSFORM toLight) {
  // A hundredth of the least step of 8 bits in linear light.
  constexpr double tolerance = 3e-6;
  constexpr unsigned step = 51;
  for (unsigned i = 0; i < 216; ++i) {
    const std::array<std::uint8_t, 3> rgb{static_cast<std::uint8_t>(i / 36 * step),
                                          static_cast<std::uint8_t>(i / 6 % 6 * step),
                                          static_cast<std::uint8_t>(i % 6 * step)};
    std::array<double, 3> light{};
    cmsDoTransform(toLight, rgb.data(), light.data(), 1);
    for (std::size_t part = 0; part < light.size(); ++part) {
      const double sum =
          lights[0][rgb[0]][part] + lights[1][rgb[1]][part] + lights[2][rgb[2]][part];
      if (!(std::abs(sum - light[part]) <= tolerance)) return false;
    }
  }
  return true;
}

std::optional<ChannelLights> lightsOfProfile(cmsHPROFILE source) {
  const Profile target = linearSrgb();
  if (!target) return std::nullopt;
  const Transform toLight(cmsCreateTransform(source, TYPE_RGB_8, target.get(), TYPE_RGB_DBL,
                                             relativeColorimetric,
                                             cmsFLAGS_NOCACHE | cmsFLAGS_NOOPTIMIZE));
  if (!toLight) return std::nullopt;
  std::optional<ChannelLights> lights = lightsOf(toLight.get());
  if (!addUp(*lights, toLight.get())) lights.reset();
  return lights;
}

bool changesColours(const SrgbConversion& conversion) {
  constexpr int halfStep = 128;
  const std::vector<std::uint16_t> before = sampleColours(conversion.fromGrey);
  std::vector<std::uint16_t> after(before.size());
  convertToSrgb(conversion, before.data(), after.data(), before.size() / rgbaChannels);
  return !std::equal(before.begin(), before.end(), after.begin(),
                     [](int a, int b) { return std::abs(a - b) <= halfStep; });
}

}  // namespace

ProfileColours profileColours(std::span<const std::uint8_t> profile) {
  constexpr std::size_t headerAndTagCount = 132;
  constexpr std::size_t colourSpaceOffset = 16;
  constexpr std::size_t signatureOffset = 36;
  if (profile.size() < headerAndTagCount) return ProfileColours::None;
  const std::uint32_t statedSize = std::uint32_t{profile[0]} << 24 |
                                   std::uint32_t{profile[1]} << 16 |
                                   std::uint32_t{profile[2]} << 8 | profile[3];
  if (statedSize != profile.size() || !holdsAt(profile, signatureOffset, "acsp"sv)) {
    return ProfileColours::None;
  }
  if (holdsAt(profile, colourSpaceOffset, "RGB "sv)) return ProfileColours::Rgb;
  return holdsAt(profile, colourSpaceOffset, "GRAY"sv) ? ProfileColours::Grey
                                                       : ProfileColours::None;
}

std::shared_ptr<const SrgbConversion> conversionToSrgb(std::span<const std::uint8_t> profile) {
  const ProfileColours colours = profileColours(profile);
  if (colours == ProfileColours::None) return nullptr;
  const Profile source(
      cmsOpenProfileFromMem(profile.data(), static_cast<cmsUInt32Number>(profile.size())));
  const bool fromGrey = colours == ProfileColours::Grey;
  const Profile target = fromGrey ? srgbGreys() : Profile(cmsCreate_sRGBProfile());
  if (!source || !target) return nullptr;

  const auto conversion = std::make_shared<SrgbConversion>();
  conversion->fromGrey = fromGrey;
  const auto transform = [&](cmsUInt32Number from, cmsUInt32Number to) {
    // Without a cache of the last colour, threads may share it. The optimised pipelines are a step
    // or two off in dark colours.
    constexpr cmsUInt32Number flags = cmsFLAGS_NOCACHE | cmsFLAGS_NOOPTIMIZE | cmsFLAGS_COPY_ALPHA;
    return Transform(
        cmsCreateTransform(source.get(), from, target.get(), to, relativeColorimetric, flags));
  };
  if (fromGrey) {
    conversion->from16 = transform(TYPE_GRAY_16, TYPE_GRAY_16);
  } else {
    conversion->from8 = transform(TYPE_BGRA_8, TYPE_RGBA_16);
    conversion->from16 = transform(TYPE_RGBA_16, TYPE_RGBA_16);
    if (!conversion->from8) return nullptr;
  }
  if (!conversion->from16 || !changesColours(*conversion)) return nullptr;
  if (!fromGrey) conversion->lights = lightsOfProfile(source.get());
  return conversion;
}

const ChannelLights* channelLights(const SrgbConversion& conversion) {
  return conversion.lights ? &*conversion.lights : nullptr;
}

void convertToSrgb(const SrgbConversion& conversion, const std::uint8_t* bgra, std::uint16_t* rgba,
                   std::size_t pixels) {
  if (!conversion.fromGrey) {
    cmsDoTransform(conversion.from8.get(), bgra, rgba, static_cast<cmsUInt32Number>(pixels));
    return;
  }
  constexpr std::uint16_t wider = 257;
  for (std::size_t i = 0; i < pixels * rgbaChannels; ++i) {
    rgba[i] = static_cast<std::uint16_t>(bgra[i] * wider);
  }
  convertToSrgb(conversion, rgba, rgba, pixels);
}

void convertToSrgb(const SrgbConversion& conversion, const std::uint16_t* source,
                   std::uint16_t* rgba, std::size_t pixels) {
  if (!conversion.fromGrey) {
    cmsDoTransform(conversion.from16.get(), source, rgba, static_cast<cmsUInt32Number>(pixels));
    return;
  }
  for (std::size_t i = 0; i < pixels * rgbaChannels; i += rgbaChannels) {
    std::uint16_t grey = 0;
    cmsDoTransform(conversion.from16.get(), source + i, &grey, 1);
    const std::uint16_t alpha = source[i + 3];
    std::fill_n(rgba + i, 3, grey);
    rgba[i + 3] = alpha;
  }
}

}  // namespace tintora::cli
