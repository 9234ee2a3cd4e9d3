#include "bench/interleaved.h"

#include <algorithm>
#include <chrono>
#include <random>

#include "engine/apply_transform.h"
#include "engine/transform_settings.h"

namespace tintora::bench {

namespace {

// Enough runs that what the other left in the caches hardly matters.
constexpr int runsInTurn = 8;

double secondsOf(const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  benchmark::ClobberMemory();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double median(std::vector<double>& values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

}  // namespace

void compare(benchmark::State& state, const std::function<void()>& candidate,
             const std::function<void()>& baseline) {
  std::vector<double> candidateTimes;
  std::vector<double> baselineTimes;
  for (auto iteration : state) {
    double seconds = 0.0;
    for (int i = 0; i < runsInTurn; ++i) baselineTimes.push_back(secondsOf(baseline));
    for (int i = 0; i < runsInTurn; ++i) {
      candidateTimes.push_back(secondsOf(candidate));
      seconds += candidateTimes.back();
    }
    state.SetIterationTime(seconds / runsInTurn);
  }
  constexpr double milliseconds = 1e3;
  const double own = median(candidateTimes);
  const double other = median(baselineTimes);
  state.counters["own_ms"] = own * milliseconds;
  state.counters["baseline_ms"] = other * milliseconds;
  state.counters["ratio"] = own / other;
}

Frames& frames() {
  static Frames frames = [] {
    Frames made;
    made.source.resize(Frames::width * Frames::height * 4);
    std::mt19937 random(1);
    std::ranges::generate(made.source, [&] { return static_cast<std::uint8_t>(random()); });
    made.destination.resize(made.source.size());
    return made;
  }();
  return frames;
}

EffectMatrix ordinaryMatrix() {
  transformSettings = {};
  transformSettings.severity = 0.6;
  applyTransform();
  return effectMatrix;
}

EffectMatrix outOfRangeMatrix() {
  EffectMatrix matrix = identityEffectMatrix;
  for (std::size_t i = 0; i < 3; ++i) matrix[i] = {1e16F, -1e15F, 1e10F, 0.0F, 0.0F};
  return matrix;
}

}  // namespace tintora::bench
