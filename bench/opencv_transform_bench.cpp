#include <benchmark/benchmark.h>

#include <opencv2/core.hpp>

#include "bench/interleaved.h"
#include "engine/pixel_filter.h"

namespace tintora::bench {
namespace {

// Compares with cv::transform of the same frame by the same matrix on one thread. The goal: a ratio
// of at most 0.125 for an ordinary matrix, and at most 1 for any.
void compareWithOpenCv(benchmark::State& state, const EffectMatrix& matrix) {
  cv::setNumThreads(1);
  // Rows are output channels in memory order, the last column is the offset.
  cv::Mat rows = cv::Mat::zeros(4, 5, CV_32F);
  const int channel[] = {2, 1, 0, 3};
  for (int out = 0; out < 4; ++out) {
    for (int in = 0; in < 4; ++in) {
      rows.at<float>(out, in) = matrix.at(static_cast<std::size_t>(channel[in]))
                                    .at(static_cast<std::size_t>(channel[out]));
    }
    rows.at<float>(out, 4) = matrix[4].at(static_cast<std::size_t>(channel[out])) * 255.0F;
  }
  const cv::Mat source(static_cast<int>(Frames::height), static_cast<int>(Frames::width), CV_8UC4,
                       frames().source.data());
  cv::Mat destination(source.size(), CV_8UC4, frames().destination.data());
  const PixelFilter filter = makePixelFilter(matrix);
  compare(
      state,
      [&] {
        filterPixels(filter, frames().source.data(), frames().destination.data(),
                     Frames::width * Frames::height);
      },
      [&] { cv::transform(source, destination, rows); });
}

void frameToOpenCv(benchmark::State& state) {
  compareWithOpenCv(state, ordinaryMatrix());
}
BENCHMARK(frameToOpenCv)->UseManualTime()->Iterations(8)->Unit(benchmark::kMillisecond);

void outOfRangeFrameToOpenCv(benchmark::State& state) {
  compareWithOpenCv(state, outOfRangeMatrix());
}
BENCHMARK(outOfRangeFrameToOpenCv)->UseManualTime()->Iterations(8)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tintora::bench
