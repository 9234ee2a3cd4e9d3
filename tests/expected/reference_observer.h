// An independent spectral model in extended precision, to compare the program's with. It uses
// explicit powers for the template, Gauss-Jordan elimination for the inverse, and densities read
// directly from the published tables.
#pragma once

#include <array>

#include "spectral/cone_model.h"
#include "spectral/matrix3x3.h"
#include "spectral/spectral_tables.h"

namespace tintora {

using ReferenceCurve = std::array<long double, 401>;
using ReferenceMatrix = std::array<std::array<long double, 3>, 3>;
using ReferenceCurves = std::array<ReferenceCurve, 3>;

ReferenceCurve referenceLensDensity();
ReferenceCurve referenceMacularDensity();
ReferenceCurve referenceTransmittance();
ReferenceCurve referenceGaussian(long double amplitude, long double peak, long double width);

ReferenceCurve referenceTemplate(long double peak);
ReferenceCurve referenceAbsorptance(const ReferenceCurve& absorbance, long double density);
// Returns the curve behind the lens and the macular pigment; its largest sample is 1.
ReferenceCurve referenceCone(long double peak, long double density);

// Returns L, M, S.
ReferenceCurves referenceCones(const ConeValues& peaks, const ConeValues& densities);
// Returns achromatic, yellow-blue, red-green.
ReferenceCurves referenceOpponents(const ReferenceCurves& cones);

// Returns the responses of the curves to the display primaries. Each row is scaled to a sum of 1.
ReferenceMatrix referenceResponses(const ReferenceCurves& curves);
ReferenceMatrix referenceProduct(const ReferenceMatrix& a, const ReferenceMatrix& b);
ReferenceMatrix referenceInverse(ReferenceMatrix matrix);

// Returns the simulation for an anomalous observer with these peaks.
ReferenceMatrix referenceSimulation(const ConeValues& anomalousPeaks);

Matrix3x3 inDoubles(const ReferenceMatrix& matrix);

}  // namespace tintora
