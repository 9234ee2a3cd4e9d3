#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstring>

#include "bench/interleaved.h"
#include "engine/pixel_filter.h"
#include "engine/pixel_kernels.h"

namespace tintora::bench {
namespace {

constexpr std::size_t framePixels = Frames::width * Frames::height;

void copyFrame() {
  std::memcpy(frames().destination.data(), frames().source.data(), frames().source.size());
}

// The goal: at most 1.10.
void frameToMemcpy(benchmark::State& state) {
  const PixelFilter filter = makePixelFilter(ordinaryMatrix());
  compare(
      state,
      [&] {
        filterPixels(filter, frames().source.data(), frames().destination.data(), framePixels);
      },
      copyFrame);
}
BENCHMARK(frameToMemcpy)->UseManualTime()->Iterations(25)->Unit(benchmark::kMillisecond);

void frameInPlaceToMemcpy(benchmark::State& state) {
  const PixelFilter filter = makePixelFilter(ordinaryMatrix());
  std::vector<std::uint8_t> frame = frames().source;
  compare(
      state, [&] { filterPixels(filter, frame.data(), frame.data(), framePixels); }, copyFrame);
}
BENCHMARK(frameInPlaceToMemcpy)->UseManualTime()->Iterations(25)->Unit(benchmark::kMillisecond);

// As the live view works: strips that stay in the second-level cache.
void stripsToMemcpy(benchmark::State& state) {
  const PixelFilter filter = makePixelFilter(ordinaryMatrix());
  constexpr std::size_t stripPixels = Frames::width * 16;
  std::vector<std::uint8_t> strip(stripPixels * 4);
  const auto everyStrip = [&](const auto& work) {
    for (std::size_t i = 0; i < framePixels / stripPixels; ++i) work();
  };
  compare(
      state,
      [&] {
        everyStrip(
            [&] { filterPixels(filter, frames().source.data(), strip.data(), stripPixels); });
      },
      [&] {
        everyStrip([&] { std::memcpy(strip.data(), frames().source.data(), strip.size()); });
      });
}
BENCHMARK(stripsToMemcpy)->UseManualTime()->Iterations(25)->Unit(benchmark::kMillisecond);

void outOfRangeFrameToMemcpy(benchmark::State& state) {
  const PixelFilter filter = makePixelFilter(outOfRangeMatrix());
  compare(
      state,
      [&] {
        filterPixels(filter, frames().source.data(), frames().destination.data(), framePixels);
      },
      copyFrame);
}
BENCHMARK(outOfRangeFrameToMemcpy)->UseManualTime()->Iterations(8)->Unit(benchmark::kMillisecond);

// Runs each kernel that this processor supports, numbered from the fastest. The goal for SSE2: at
// most 3.
void kernelToMemcpy(benchmark::State& state) {
  const auto place = static_cast<std::size_t>(state.range(0));
  if (place >= pixelKernels().size()) {
    state.SkipWithError("not on this processor");
    return;
  }
  const PixelKernel& kernel = pixelKernels()[place];
  state.SetLabel(std::string(kernel.name));
  const PixelFilter filter = makePixelFilter(ordinaryMatrix());
  compare(
      state,
      [&] {
        filterWithKernel(kernel, *filter.fixedPoint, frames().source.data(),
                         frames().destination.data(), framePixels, true);
      },
      copyFrame);
}
BENCHMARK(kernelToMemcpy)
    ->DenseRange(0, 3)
    ->UseManualTime()
    ->Iterations(8)
    ->Unit(benchmark::kMillisecond);

void preparation(benchmark::State& state) {
  const EffectMatrix matrix = ordinaryMatrix();
  for (auto iteration : state) benchmark::DoNotOptimize(makePixelFilter(matrix));
}
BENCHMARK(preparation);

}  // namespace
}  // namespace tintora::bench
