// The spectral model's record, and the simulation matrix derived from the cones of two observers.
#pragma once

#include <array>
#include <cstdint>

#include "spectral/cone_model.h"
#include "spectral/matrix3x3.h"
#include "spectral/spectral_tables.h"

namespace tintora {

// The published simulation algorithms, by the value that is stored. Any other value computes
// nothing.
enum class SimulationAlgorithm : std::uint32_t {
  Judd1948 = 0,
  Yang2008 = 1,  // the spectral one
  Machado2009 = 2,
  Vienot1997Approximated = 3,
  Vienot1999 = 4,
  Brettel1997 = 5,  // no single matrix: for pictures and palettes only, never on the screen
};

struct ModelContext {
  ConeModel normalObserver;
  ConeModel anomalousObserver;
  std::array<double, 297> machadoTable{};  // [type][severity 0.0 to 1.0 by 0.1][row][column]
  CvdType modelCvdType = CvdType::Protan;
  double modelSeverity = 1.0;  // 0..1
  SimulationAlgorithm Option = SimulationAlgorithm::Judd1948;
  bool Inversion = false;
  bool Daltonize = false;
  // Before daltonize or inversion: what the colour space window shows.
  Matrix3x3 uninvertedMatrix{0.12, 0.88, 0.0, 0.12, 0.88, 0.0, 0.0, 0.0, 1.0};
  Matrix3x3 simulationMatrix = uninvertedMatrix;
};

// The model of the program.
extern ModelContext modelContext;

// Fills the constants of the record: the prereceptoral filter of both observers and the Machado
// table. Call it once, before the first matrix is computed.
void initialiseModelContext(ModelContext& context);

// Computes RGB to LMS and back, for an observer and the spectra of the display's primaries. Each
// row of RGB to LMS sums to 1, so display white gives (1, 1, 1) for every observer. If RGB to LMS
// has no inverse, LMS to RGB is all 0.
void integrateConeMatrix(ConeModel& model, const SpectralCurve& red, const SpectralCurve& green,
                         const SpectralCurve& blue);

// Computes the same for the opponent curves: achromatic, yellow-blue, red-green.
void integrateOpponentMatrix(ConeModel& model, const SpectralCurve& red, const SpectralCurve& green,
                             const SpectralCurve& blue);

// Finds the colour that gives the normal observer the anomalous observer's cone responses: LMS to
// RGB of the one times RGB to LMS of the other, stored as the normal observer's simulation result.
void composeAnomalousMatrix(ConeModel& normal, const ConeModel& anomalous);

// Rebuilds both observers for the context's type and severity and returns the simulation matrix
// of Yang, Ro, Wong & Lee 2008.
Matrix3x3 deriveSpectralMatrix(ModelContext& context);

}  // namespace tintora
