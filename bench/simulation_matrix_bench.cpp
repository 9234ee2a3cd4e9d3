#include <benchmark/benchmark.h>

#include "engine/cvd_transforms.h"
#include "spectral/simulation_matrix.h"

namespace tintora::bench {
namespace {

const char* const algorithmLabels[] = {"Judd 1948", "Yang 2008", "Machado 2009",
                                       "Viénot 1997 approximated", "Viénot 1999"};

// The goal for the spectral one, Yang 2008: under 100 microseconds.
void simulationMatrix(benchmark::State& state) {
  initialiseModelContext(modelContext);
  const auto algorithm = static_cast<SimulationAlgorithm>(state.range(0));
  state.SetLabel(algorithmLabels[state.range(0)]);
  for (auto iteration : state) {
    benchmark::DoNotOptimize(
        computeSimulationMatrix(CvdType::Deutan, 0.6, algorithm, false, false));
  }
}
BENCHMARK(simulationMatrix)->DenseRange(0, 4)->Unit(benchmark::kMicrosecond);

// Times the steps of the spectral algorithm. Each label says how often the step runs for one
// matrix.
void stepTemplate(benchmark::State& state) {
  SpectralCurve curve;
  state.SetLabel("x 6");
  for (auto iteration : state) {
    photopigmentTemplate(curve, normalPeaks.L);
    benchmark::DoNotOptimize(curve);
  }
}
BENCHMARK(stepTemplate)->Unit(benchmark::kMicrosecond);

void stepOpticalDensity(benchmark::State& state) {
  SpectralCurve absorbance;
  photopigmentTemplate(absorbance, normalPeaks.L);
  state.SetLabel("x 6");
  for (auto iteration : state) {
    SpectralCurve curve = absorbance;
    applyOpticalDensity(curve, normalDensities.L);
    benchmark::DoNotOptimize(curve);
  }
}
BENCHMARK(stepOpticalDensity)->Unit(benchmark::kMicrosecond);

void stepPrereceptoralFilter(benchmark::State& state) {
  SpectralCurve filter;
  fillPrereceptoralFilter(filter);
  SpectralCurve curve;
  curve.fill(1.0);
  state.SetLabel("x 6");
  for (auto iteration : state) {
    multiplyAndNormalise(curve, filter);
    benchmark::DoNotOptimize(curve);
    curve.fill(1.0);
  }
}
BENCHMARK(stepPrereceptoralFilter)->Unit(benchmark::kMicrosecond);

void stepPrimaries(benchmark::State& state) {
  state.SetLabel("x 3");
  for (auto iteration : state) benchmark::DoNotOptimize(primarySpectrum(redPrimary));
}
BENCHMARK(stepPrimaries)->Unit(benchmark::kMicrosecond);

void stepIntegration(benchmark::State& state) {
  ConeModel model;
  fillPrereceptoralFilter(model.prereceptoralFilter);
  buildConeModel(model, normalPeaks.S, normalPeaks.M, normalPeaks.L, normalDensities.S,
                 normalDensities.M, normalDensities.L);
  const SpectralCurve red = primarySpectrum(redPrimary);
  const SpectralCurve green = primarySpectrum(greenPrimary);
  const SpectralCurve blue = primarySpectrum(bluePrimary);
  state.SetLabel("x 4");
  for (auto iteration : state) {
    integrateConeMatrix(model, red, green, blue);
    benchmark::DoNotOptimize(model);
  }
}
BENCHMARK(stepIntegration)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace tintora::bench
