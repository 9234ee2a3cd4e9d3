// How different two colours look, and how well one reads on the other.
#pragma once

#include "engine/colour_transform.h"

namespace tintora {

// CIELAB with the white of the sRGB display: lightness 0..100, a green to red, b blue to yellow.
struct Lab {
  double lightness = 0.0;
  double a = 0.0;
  double b = 0.0;
};

// Returns the place of a colour in CIELAB: CIE 15 on the tristimulus values of IEC 61966-2-1
// (sRGB). Display white is (100, 0, 0).
Lab toLab(const Colour& colour);

// Returns the colour of a place in CIELAB. Channels outside 0..1 are colours that the display does
// not have.
Colour fromLab(const Lab& lab);

// Returns the CIEDE2000 colour difference, all parametric factors 1: CIE 142, in the formulation of
// Sharma, Wu & Dalal 2005, The CIEDE2000 color-difference formula: implementation notes,
// supplementary test data, and mathematical observations, Color Research & Application 30, 21-30.
// About 1 is just noticeable side by side.
double ciede2000(const Lab& first, const Lab& second);

// Returns true if the CIEDE2000 difference is at least this much, without the whole computation if
// the lightnesses alone tell.
bool differsAtLeast(const Lab& first, const Lab& second, double least);

// Returns the relative luminance of WCAG 2, from 0 (black) to 1 (white).
double relativeLuminance(const Colour& colour);

// Returns the contrast ratio of WCAG 2 from two relative luminances, 1 to 21, in either order.
double contrastRatio(double first, double second);

}  // namespace tintora
