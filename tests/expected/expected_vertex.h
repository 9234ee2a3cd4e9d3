// A vertex as a test expects it, in extended precision.
#pragma once

#include <vector>

namespace tintora {

// A place, and the components of a colour from 0 to 255 before their fractions are cut off.
struct ExpectedVertex {
  long double x = 0.0L;
  long double y = 0.0L;
  long double z = 0.0L;
  long double red = 0.0L;
  long double green = 0.0L;
  long double blue = 0.0L;
};
using ExpectedVertices = std::vector<ExpectedVertex>;

}  // namespace tintora
