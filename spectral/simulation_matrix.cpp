#include "spectral/simulation_matrix.h"

#include "spectral/published_tables.h"

namespace tintora {

ModelContext modelContext;

namespace {

// Returns the responses of three curves to three primaries, each row divided by its sum.
Matrix3x3 integrateRows(const std::array<const SpectralCurve*, 3>& curves,
                        const std::array<const SpectralCurve*, 3>& primaries) {
  Matrix3x3 matrix;
  for (std::size_t row = 0; row < 3; ++row) {
    double* const entries = &matrix[3 * row];
    for (std::size_t column = 0; column < 3; ++column) {
      entries[column] = spectralDot(*curves[row], *primaries[column]);
    }
    const double sum = entries[0] + entries[1] + entries[2];
    for (std::size_t column = 0; column < 3; ++column) entries[column] /= sum;
  }
  return matrix;
}

}  // namespace

void initialiseModelContext(ModelContext& context) {
  fillPrereceptoralFilter(context.normalObserver.prereceptoralFilter);
  fillPrereceptoralFilter(context.anomalousObserver.prereceptoralFilter);
  context.machadoTable = machado2009;
}

void integrateConeMatrix(ConeModel& model, const SpectralCurve& red, const SpectralCurve& green,
                         const SpectralCurve& blue) {
  model.rgbToLms = integrateRows({&model.L, &model.M, &model.S}, {&red, &green, &blue});
  model.lmsToRgb = invert3x3(model.rgbToLms).matrix;
}

void integrateOpponentMatrix(ConeModel& model, const SpectralCurve& red, const SpectralCurve& green,
                             const SpectralCurve& blue) {
  model.rgbToOpponent =
      integrateRows({&model.achromaticCurve, &model.yellowBlueCurve, &model.redGreenCurve},
                    {&red, &green, &blue});
  model.opponentToRgb = invert3x3(model.rgbToOpponent).matrix;
}

void composeAnomalousMatrix(ConeModel& normal, const ConeModel& anomalous) {
  normal.simulationResult = multiply3x3(normal.lmsToRgb, anomalous.rgbToLms);
}

Matrix3x3 deriveSpectralMatrix(ModelContext& context) {
  const SpectralCurve red = primarySpectrum(redPrimary);
  const SpectralCurve green = primarySpectrum(greenPrimary);
  const SpectralCurve blue = primarySpectrum(bluePrimary);

  const auto buildObserver = [&](ConeModel& observer, const ConeValues& peaks) {
    buildConeModel(observer, peaks.S, peaks.M, peaks.L, normalDensities.S, normalDensities.M,
                   normalDensities.L);
    integrateConeMatrix(observer, red, green, blue);
    integrateOpponentMatrix(observer, red, green, blue);
  };
  buildObserver(context.normalObserver, normalPeaks);
  buildObserver(context.anomalousObserver,
                shiftedPeak(context.modelCvdType, context.modelSeverity));

  composeAnomalousMatrix(context.normalObserver, context.anomalousObserver);
  return context.normalObserver.simulationResult;
}

}  // namespace tintora
