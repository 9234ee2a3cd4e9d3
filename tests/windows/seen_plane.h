// Where points of the flat views appear in a picture, and known points of the chromaticity diagram.
#pragma once

#include <array>

#include "picture.h"

namespace tintora::windows_test {

struct SeenPoint {
  int x = 0;
  int y = 0;
};

// The colour of the spectral locus and of the wavelengths beside it.
inline constexpr Colour lightGrey{180, 180, 180};

SeenPoint seen(const Picture& picture, double x, double y);
SeenPoint seenChromaticity(const Picture& picture, double x, double y);

struct Chromaticity {
  int nanometres;
  double x;
  double y;
};

// CIE 1931 2-degree observer, as published by the CIE (ISO/CIE 11664-1).
inline constexpr std::array spectralColours{
    Chromaticity{480, 0.09129, 0.13270}, Chromaticity{500, 0.00817, 0.53842},
    Chromaticity{520, 0.07430, 0.83380}, Chromaticity{540, 0.22962, 0.75433},
    Chromaticity{560, 0.37310, 0.62445}, Chromaticity{580, 0.51249, 0.48659},
    Chromaticity{600, 0.62704, 0.37249},
};

}  // namespace tintora::windows_test
