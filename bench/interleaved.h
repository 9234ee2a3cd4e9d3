// Times two functions in turns, so that other load on the machine affects both.
#pragma once

#include <benchmark/benchmark.h>

#include <array>
#include <cstdint>
#include <functional>
#include <vector>

#include "engine/effect_matrix.h"

namespace tintora::bench {

// Runs each a few times in turn in every iteration. The benchmark's time is the candidate's.
// Counters give the medians of both in milliseconds, and the ratio of candidate to baseline.
void compare(benchmark::State& state, const std::function<void()>& candidate,
             const std::function<void()>& baseline);

// Returns a frame of 3840x2160 pixels of 4 bytes, with random contents.
struct Frames {
  static constexpr std::size_t width = 3840;
  static constexpr std::size_t height = 2160;
  std::vector<std::uint8_t> source;
  std::vector<std::uint8_t> destination;
};
Frames& frames();

// Return a deutan simulation, and a matrix whose entries do not fit fixed point.
EffectMatrix ordinaryMatrix();
EffectMatrix outOfRangeMatrix();

}  // namespace tintora::bench
