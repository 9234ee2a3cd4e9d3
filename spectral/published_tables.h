// The published tables as they stand, each with its source above it in published_tables.cpp.
// spectral_tables.h lays them on the program's wavelength grid.
#pragma once

#include <array>

namespace tintora {

// Samples at 360, 361, ... nm.
extern const std::array<double, 401> cie1931XBar;
extern const std::array<double, 401> cie1931YBar;
extern const std::array<double, 290> cie1931ZBar;

// Samples at 391, 392, ... nm.
extern const std::array<double, 269> lensOpticalDensity;
extern const std::array<double, 159> macularOpticalDensity;

// [protan, deutan, tritan][severity 0.0 to 1.0 in steps of 0.1][row][column]
extern const std::array<double, 297> machado2009;

}  // namespace tintora
