#include "engine/picture_filter.h"

#include <bit>
#include <limits>

#include "engine/pixel_kernels.h"
#include "engine/srgb.h"

namespace tintora {

namespace {

std::size_t mostStep(SampleDepth depth) {
  return depth == SampleDepth::Bits8 ? 255 : 65535;
}

LightSteps makeLightSteps(SampleDepth depth) {
  // The transfer function is steepest at black.
  constexpr double steepest = 12.92;
  const std::size_t most = mostStep(depth);
  const auto scale = static_cast<double>(most);

  LightSteps steps;
  for (std::size_t step = 0; step <= most; ++step) {
    steps.light.push_back(decodeSrgb(static_cast<double>(step) / scale));
    steps.thresholds.push_back(decodeSrgb((static_cast<double>(step) - 0.5) / scale));
  }
  steps.thresholds.front() = 0.0;
  steps.thresholds.push_back(std::numeric_limits<double>::infinity());

  const std::size_t intervals = std::bit_ceil(static_cast<std::size_t>(scale * steepest));
  std::size_t step = 0;
  for (std::size_t i = 0; i <= intervals; ++i) {
    const double start = static_cast<double>(i) / static_cast<double>(intervals);
    while (steps.thresholds[step + 1] <= start) ++step;
    steps.firstStep.push_back(static_cast<std::uint16_t>(step));
  }
  return steps;
}

// What is not a number compares false and becomes 0.
double clampTo(double most, double value) {
  const double atMost = value < most ? value : most;
  return value > 0.0 ? atMost : 0.0;
}

std::size_t stepOfLight(const LightSteps& steps, double light) {
  const double clamped = clampTo(1.0, light);
  const auto intervals = static_cast<double>(steps.firstStep.size() - 1);
  const std::size_t step = steps.firstStep[static_cast<std::size_t>(clamped * intervals)];
  return step + (clamped >= steps.thresholds[step + 1] ? 1 : 0);
}

// The values of a pixel that the transform works on.
struct Values {
  double red, green, blue;
};

double apply(const ExactMatrix::Channel& channel, const Values& values) {
  return channel.red * values.red + channel.green * values.green + channel.blue * values.blue +
         channel.offset;
}

const ExactMatrix& effectAt(const PictureFilter& filter, const Values& values) {
  const auto& [red, green, blue] = filter.division;
  return filter.effects[red * values.red + green * values.green + blue * values.blue < 0.0 ? 1 : 0];
}

// Where the channels of a pixel stand; the fourth is alpha.
struct ChannelOrder {
  std::size_t red, green, blue;
};
constexpr ChannelOrder bgraOrder{2, 1, 0};
constexpr ChannelOrder rgbaOrder{0, 1, 2};
constexpr std::size_t channels = 4;

// `lightOf` returns the linear light that a pixel stands for.
template <typename Sample, typename LightOf>
void filterLight(const PictureFilter& filter, ChannelOrder order, LightOf lightOf, Sample* samples,
                 std::size_t pixels) {
  const LightSteps& steps = filter.steps;
  for (Sample* pixel = samples; pixel != samples + pixels * channels; pixel += channels) {
    const Values values = lightOf(pixel);
    const auto& [toBlue, toGreen, toRed] = effectAt(filter, values).channels;
    pixel[order.red] = static_cast<Sample>(stepOfLight(steps, apply(toRed, values)));
    pixel[order.green] = static_cast<Sample>(stepOfLight(steps, apply(toGreen, values)));
    pixel[order.blue] = static_cast<Sample>(stepOfLight(steps, apply(toBlue, values)));
  }
}

void filterLight16(const PictureFilter& filter, std::uint16_t* samples, std::size_t pixels) {
  const std::vector<double>& light = filter.steps.light;
  const auto lightOf = [&](const std::uint16_t* pixel) {
    return Values{light[pixel[0]], light[pixel[1]], light[pixel[2]]};
  };
  filterLight(filter, rgbaOrder, lightOf, samples, pixels);
}

EffectShares makeShares(const PictureFilter& filter, const ExactMatrix& effect) {
  using Channel = ExactMatrix::Channel;
  constexpr std::array<double Channel::*, 3> inputs{&Channel::red, &Channel::green, &Channel::blue};
  const auto& [toBlue, toGreen, toRed] = effect.channels;
  EffectShares shares{};
  for (std::size_t input = 0; input < inputs.size(); ++input) {
    const auto entry = inputs[input];
    for (std::size_t step = 0; step < shares.channels[input].size(); ++step) {
      const double light = filter.steps.light[step];
      shares.channels[input][step] = {
          DoublePair{toRed.*entry * light, toGreen.*entry * light},
          DoublePair{toBlue.*entry * light, filter.division[input] * light}};
    }
  }
  shares.offset = {DoublePair{toRed.offset, toGreen.offset}, DoublePair{toBlue.offset, 0.0}};
  return shares;
}

// What is not a number compares false and becomes 0.
inline DoublePair clampPair(DoublePair value) {
  const DoublePair positive = value > 0.0 ? value : DoublePair{};
  return positive < 1.0 ? positive : DoublePair{1.0, 1.0};
}

// Adds up products that were made before, in the order of the other functions.
template <bool divides>
void filterLight8(const PictureFilter& filter, std::uint8_t* bgra, std::size_t pixels) {
  const EffectShares* const shares = filter.shares.data();
  const std::uint16_t* const firstStep = filter.steps.firstStep.data();
  const double* const thresholds = filter.steps.thresholds.data();
  const auto intervals = static_cast<double>(filter.steps.firstStep.size() - 1);
  const auto stepOf = [=](double light) {
    const std::size_t step = firstStep[static_cast<std::int32_t>(light * intervals)];
    return static_cast<std::uint8_t>(step + (light >= thresholds[step + 1] ? 1 : 0));
  };
  for (std::uint8_t* pixel = bgra; pixel != bgra + pixels * channels; pixel += channels) {
    const auto share = [pixel](const EffectShares& of, std::size_t channel) -> const LightShare& {
      return of.channels[channel][pixel[2 - channel]];
    };
    std::size_t side = 0;
    if (divides) {
      const double product = share(*shares, 0).blueAndSide[1] + share(*shares, 1).blueAndSide[1] +
                             share(*shares, 2).blueAndSide[1];
      side = product < 0.0 ? 1 : 0;
    }
    const EffectShares& effect = shares[side];
    const LightShare& red = share(effect, 0);
    const LightShare& green = share(effect, 1);
    const LightShare& blue = share(effect, 2);
    const DoublePair redAndGreen = clampPair(red.redAndGreen + green.redAndGreen +
                                             blue.redAndGreen + effect.offset.redAndGreen);
    const DoublePair blueAndSide = clampPair(red.blueAndSide + green.blueAndSide +
                                             blue.blueAndSide + effect.offset.blueAndSide);
    pixel[2] = stepOf(redAndGreen[0]);
    pixel[1] = stepOf(redAndGreen[1]);
    pixel[0] = stepOf(blueAndSide[0]);
  }
}

void filterEncoded16(const PictureFilter& filter, std::uint16_t* samples, std::size_t pixels) {
  const auto most = static_cast<double>(mostStep(SampleDepth::Bits16));
  const auto step = [most](double value) {
    return static_cast<std::uint16_t>(clampTo(most, value) + 0.5);
  };
  const auto& [toBlue, toGreen, toRed] = filter.effects[0].channels;
  for (std::uint16_t* pixel = samples; pixel != samples + pixels * channels; pixel += channels) {
    const Values values{static_cast<double>(pixel[0]), static_cast<double>(pixel[1]),
                        static_cast<double>(pixel[2])};
    pixel[0] = step(apply(toRed, values));
    pixel[1] = step(apply(toGreen, values));
    pixel[2] = step(apply(toBlue, values));
  }
}

}  // namespace

PictureFilter makePictureFilter(const ColourTransform& transform, SampleDepth depth) {
  const bool linear = transform.light == Light::Linear;
  const double unit = linear ? 1.0 : static_cast<double>(mostStep(depth));
  PictureFilter filter{depth, transform.light, transform.division, {}, {}, {}};
  for (std::size_t side = 0; side < 2; ++side) {
    const ColourEffect& effect = transform.effects[side];
    for (std::size_t output = 0; output < 3; ++output) {
      const double* const row = &effect.matrix[3 * output];
      filter.effects[side].channels[2 - output] = {row[0], row[1], row[2],
                                                   unit * effect.offset[output]};
    }
  }
  if (linear) filter.steps = makeLightSteps(depth);
  if (linear && depth == SampleDepth::Bits8) {
    const bool divides = filter.division != std::array<double, 3>{};
    for (std::size_t side = 0; side < (divides ? 2U : 1U); ++side) {
      filter.shares.push_back(makeShares(filter, filter.effects[side]));
    }
  }
  return filter;
}

void filterPicture(const PictureFilter& filter, std::uint8_t* bgra, std::size_t pixels) {
  if (filter.light == Light::Linear) {
    const bool divides = filter.shares.size() > 1;
    (divides ? &filterLight8<true> : &filterLight8<false>)(filter, bgra, pixels);
  } else {
    pixelKernels().front().filterExactly(filter.effects[0], bgra, bgra, pixels);
  }
}

void filterPicture(const PictureFilter& filter, std::uint16_t* rgba, std::size_t pixels) {
  if (filter.light == Light::Linear) {
    filterLight16(filter, rgba, pixels);
  } else {
    filterEncoded16(filter, rgba, pixels);
  }
}

void filterPicture(const PictureFilter& filter, const ChannelLights& lights, std::uint8_t* bgra,
                   std::size_t pixels) {
  const auto lightOf = [&](const std::uint8_t* pixel) {
    const std::array<double, 3>& fromRed = lights[0][pixel[bgraOrder.red]];
    const std::array<double, 3>& fromGreen = lights[1][pixel[bgraOrder.green]];
    const std::array<double, 3>& fromBlue = lights[2][pixel[bgraOrder.blue]];
    const auto sum = [&](std::size_t part) {
      return clampTo(1.0, fromRed[part] + fromGreen[part] + fromBlue[part]);
    };
    return Values{sum(0), sum(1), sum(2)};
  };
  filterLight(filter, bgraOrder, lightOf, bgra, pixels);
}

}  // namespace tintora
