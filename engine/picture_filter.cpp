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

  const std::size_t intervals = std::bit_ceil(static_cast<std::size_t>(scale * steepest));
  LightSteps steps{{}, static_cast<double>(intervals), {}, {}};
  for (std::size_t step = 0; step <= most; ++step) {
    steps.light.push_back(decodeSrgb(static_cast<double>(step) / scale));
    const double threshold = decodeSrgb((static_cast<double>(step) - 0.5) / scale);
    steps.thresholds.push_back(threshold * steps.intervals);
  }
  steps.thresholds.front() = 0.0;
  steps.thresholds.push_back(std::numeric_limits<double>::infinity());

  std::size_t step = 0;
  for (std::size_t i = 0; i <= intervals; ++i) {
    while (steps.thresholds[step + 1] <= static_cast<double>(i)) ++step;
    steps.firstStep.push_back(static_cast<std::uint16_t>(step));
  }
  return steps;
}

// Clamps to 0..`most`. NaN compares false and becomes 0.
double clampTo(double most, double value) {
  const double atMost = value < most ? value : most;
  return value > 0.0 ? atMost : 0.0;
}

// Returns the step of `light`, which is in intervals.
std::size_t stepAt(const std::uint16_t* firstStep, const double* thresholds, double light) {
  const std::size_t step = firstStep[static_cast<std::int32_t>(light)];
  return step + (light >= thresholds[step + 1] ? 1 : 0);
}

std::size_t stepOfLight(const LightSteps& steps, double light) {
  return stepAt(steps.firstStep.data(), steps.thresholds.data(),
                clampTo(1.0, light) * steps.intervals);
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

// Filters pixels in place. `lightOf` returns the linear light that a pixel stands for.
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

// Makes the shares of an effect. Products with the intervals, a power of two, are exact.
EffectShares makeShares(const PictureFilter& filter, const ExactMatrix& effect) {
  using Channel = ExactMatrix::Channel;
  constexpr std::array<double Channel::*, 3> inputs{&Channel::red, &Channel::green, &Channel::blue};
  const auto& [toBlue, toGreen, toRed] = effect.channels;
  const double intervals = filter.steps.intervals;
  EffectShares shares{};
  for (std::size_t input = 0; input < inputs.size(); ++input) {
    const auto entry = inputs[input];
    for (std::size_t step = 0; step < shares.channels[input].size(); ++step) {
      const double light = filter.steps.light[step] * intervals;
      shares.channels[input][step] = {
          DoublePair{toRed.*entry * light, toGreen.*entry * light},
          DoublePair{toBlue.*entry * light, filter.division[input] * light}};
    }
  }
  shares.offset = {DoublePair{toRed.offset, toGreen.offset} * intervals,
                   DoublePair{toBlue.offset, 0.0} * intervals};
  return shares;
}

// Adds up in the order of `apply`.
inline LightShare sumOfShares(const EffectShares& effect, const std::uint8_t* bgra) {
  const LightShare& red = effect.channels[0][bgra[2]];
  const LightShare& green = effect.channels[1][bgra[1]];
  const LightShare& blue = effect.channels[2][bgra[0]];
  return {red.redAndGreen + green.redAndGreen + blue.redAndGreen + effect.offset.redAndGreen,
          red.blueAndSide + green.blueAndSide + blue.blueAndSide + effect.offset.blueAndSide};
}

// Computes both effects where there is a division: in a photograph the side changes too often for a
// branch to be predicted.
template <bool divides>
void filterLight8(const PictureFilter& filter, std::uint8_t* bgra, std::size_t pixels) {
  const EffectShares* const effects = filter.shares.data();
  const std::uint16_t* const firstStep = filter.steps.firstStep.data();
  const double* const thresholds = filter.steps.thresholds.data();
  const DoublePair most{filter.steps.intervals, filter.steps.intervals};
  const auto clamped = [most](DoublePair value) {
    const DoublePair positive = value > 0.0 ? value : DoublePair{};
    return positive < most ? positive : most;
  };
  const auto stepOf = [=](double light) {
    return static_cast<std::uint8_t>(stepAt(firstStep, thresholds, light));
  };
  for (std::uint8_t* pixel = bgra; pixel != bgra + pixels * channels; pixel += channels) {
    LightShare light = sumOfShares(effects[0], pixel);
    if (divides) {
      const LightShare second = sumOfShares(effects[1], pixel);
      const auto isSecond = DoublePair{light.blueAndSide[1], light.blueAndSide[1]} < 0.0;
      light.redAndGreen = isSecond ? second.redAndGreen : light.redAndGreen;
      light.blueAndSide = isSecond ? second.blueAndSide : light.blueAndSide;
    }
    const DoublePair redAndGreen = clamped(light.redAndGreen);
    const DoublePair blueAndSide = clamped(light.blueAndSide);
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
