#include "cli/icc_conversion.h"

#include <lcms2.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string_view>
#include <vector>

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

// Greys of the sRGB transfer function (IEC 61966-2-1), as Little CMS writes it.
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
};

namespace {

// Some colours from all over the cube, or all greys.
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
  return conversion;
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
