// Two things timed turn by turn, so that whatever else the machine does befalls both.
#pragma once

#include <benchmark/benchmark.h>

#include <array>
#include <cstdint>
#include <functional>
#include <vector>

#include "engine/effect_matrix.h"

namespace tintora::bench {

// Runs each a few times in turn in every iteration. The benchmark's time is the candidate's;
// counters give the medians of both in milliseconds and their ratio, candidate to baseline.
void compare(benchmark::State& state, const std::function<void()>& candidate,
             const std::function<void()>& baseline);

// A screenful at 3840x2160, 4 bytes a pixel, with contents of no pattern.
struct Frames {
  static constexpr std::size_t width = 3840;
  static constexpr std::size_t height = 2160;
  std::vector<std::uint8_t> source;
  std::vector<std::uint8_t> destination;
};
Frames& frames();

// A deutan simulation, and one whose entries no fixed point holds.
EffectMatrix ordinaryMatrix();
EffectMatrix outOfRangeMatrix();

}  // namespace tintora::bench
