#include "cli/curves_command.h"

#include <array>

#include "cli/text.h"
#include "cli/transform_options.h"
#include "engine/effect_matrix.h"

namespace tintora::cli {

std::string formatCurves(const TransformOptions& options) {
  if (!isSimulation(options.settings.Selected)) {
    throw UsageError("curves needs --mode protan, deutan, tritan or normal");
  }
  if (options.light) {
    throw UsageError("--light: the curves are the same in either light; filter and matrix take it");
  }
  // The spectral algorithm is the one that builds the observer, whichever shows the screen.
  TransformOptions spectral = options;
  spectral.settings.Option = SimulationAlgorithm::Yang2008;
  applyOptions(spectral);

  const ConeModel& observer = modelContext.anomalousObserver;
  const std::array<const SpectralCurve*, 6> curves{&observer.L,
                                                   &observer.M,
                                                   &observer.S,
                                                   &observer.achromaticCurve,
                                                   &observer.yellowBlueCurve,
                                                   &observer.redGreenCurve};
  std::string csv = "wavelength_nm,L,M,S,achromatic,yellow_blue,red_green\n";
  for (std::size_t i = 0; i < SpectralGrid::samples; ++i) {
    csv += shortest(SpectralGrid::wavelength(i));
    for (const SpectralCurve* curve : curves) csv += ',' + shortest((*curve)[i]);
    csv += '\n';
  }
  return csv;
}

}  // namespace tintora::cli
