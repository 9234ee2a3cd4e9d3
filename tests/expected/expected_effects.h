// The colour effects that the program should ask for, computed from the published matrices and
// plain formulas.
#pragma once

#include <gtest/gtest.h>

#include <array>

#include "colour_effect.h"

namespace tintora::expected {

// The weights of red, green and blue, one row for each output channel.
using Weights = std::array<std::array<double, 3>, 3>;
using Offsets = std::array<double, 3>;

ColourEffect effectOf(const Weights& weights, const Offsets& offsets = {});

// Judd 1948, at a severity k from 0 to 1.
Weights juddProtan(double k);
Weights juddDeutan(double k);
Weights juddTritan(double k);

// The other algorithms, at full severity.
Weights machadoProtan();
Weights vienot1997Protan();
Weights vienot1999Protan();

// Yang 2008 at a severity of 60 %.
Weights yangDeutanAt60();

// Returns the correction that spreads what a simulation loses over green and blue.
Weights daltonized(const Weights& simulation);
Weights inverse(const Weights& m);

ColourEffect greyscale();
ColourEffect inverted();
ColourEffect brightened(double brightness);
ColourEffect withContrast(double contrast);
ColourEffect withSaturation(double saturation);
ColourEffect filtered(const std::array<double, 3>& passed, double strength);
ColourEffect circadian(double brightness);

// Exchanges two channels, counted from red, by a strength from 0 to 1.
ColourEffect swapped(std::size_t one, std::size_t other, double strength);

testing::AssertionResult areEqual(const ColourEffect& actual, const ColourEffect& expected);

}  // namespace tintora::expected
