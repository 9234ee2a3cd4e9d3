#include "engine/cvd_transforms.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace tintora {

namespace {

// One matrix for each of protan, deutan and tritan.
using MatrixByType = std::array<Matrix3x3, 3>;

// Judd 1948, Color perceptions of deuteranopic and protanopic observers, Journal of Research of the
// National Bureau of Standards 41, 247-271: what full severity adds to the identity. The article
// does not treat tritanopes, and the origin of the tritan matrix is not published.
constexpr MatrixByType judd1948{{
    {-0.88, 0.88, 0.0,  //
     0.12, -0.12, 0.0,  //
     0.0, 0.0, 0.0},
    {-0.72, 0.72, 0.0,  //
     0.28, -0.28, 0.0,  //
     0.0, 0.0, 0.0},
    {-0.216, 0.1054, 0.1106,    //
     -0.0271, -0.1398, 0.1669,  //
     0.1693, 0.6768, -0.8461},
}};

// Viénot, Brettel & Mollon 1997, approximated by one matrix a type (after Brettel, Viénot & Mollon
// 1997, Computerized simulation of color appearance for dichromats, Journal of the Optical Society
// of America A 14, 2647-2655): what full severity adds to the identity. The tritan matrix passes
// blue negatively.
constexpr MatrixByType vienot1997{{
    {-0.778, 1.006, -0.228,  //
     0.191, -0.277, 0.086,   //
     -0.01, -0.019, 0.029},
    {-0.541, 0.711, -0.17,  //
     0.334, -0.454, 0.12,   //
     -0.066, 0.053, 0.013},
    {-0.001, 0.093, -0.092,  //
     -0.042, -0.117, 0.159,  //
     0.3, 0.795, -1.095},
}};

// Viénot, Brettel & Mollon 1999, Digital video colourmaps for checking the legibility of displays
// by dichromats, Color Research & Application 24, 243-252. LMS to RGB is a table of its own, not
// the computed inverse. A projection replaces the missing cone's signal and keeps the other two.
constexpr Matrix3x3 vienot1999RgbToLms{
    17.8824,   43.5161,  4.11935,  //
    3.45565,   27.1554,  3.86714,  //
    0.0299566, 0.184309, 1.46709,
};
constexpr Matrix3x3 vienot1999LmsToRgb{
    0.0809444479,    -0.130504409,   0.116721066,   //
    -0.0102485335,   0.0540193266,   -0.113614708,  //
    -0.000365296938, -0.00412161469, 0.693511405,
};
constexpr MatrixByType vienot1999Projection{{
    {0.0, 2.02344, -2.52581,  //
     0.0, 1.0, 0.0,           //
     0.0, 0.0, 1.0},
    {1.0, 0.0, 0.0,           //
     0.494207, 0.0, 1.24827,  //
     0.0, 0.0, 1.0},
    {1.0, 0.0, 0.0,  //
     0.0, 1.0, 0.0,  //
     -0.395913, 0.801109, 0.0},
}};

// The redistribution of Fidaner, Lin & Ozguven 2005, Analysis of color blindness, every factor
// doubled: the lost red goes to green and blue, the lost green and blue return where they were
// lost.
constexpr Matrix3x3 errorRedistribution{
    0.0, 0.0, 0.0,  //
    1.4, 2.0, 0.0,  //
    1.4, 0.0, 2.0,
};

// Returns the index of a type in the tables, or nothing for a value that is not a type.
std::optional<std::size_t> typeIndex(CvdType type) {
  const auto index = static_cast<std::uint32_t>(type) - 1U;
  if (index > 2U) return std::nullopt;
  return index;
}

// Returns identity + severity * change.
Matrix3x3 weightedChange(const Matrix3x3& change, double severity) {
  Matrix3x3 matrix = identity3x3;
  for (std::size_t i = 0; i < matrix.size(); ++i) matrix[i] += severity * change[i];
  return matrix;
}

Matrix3x3 vienot1999Matrix(std::size_t type, double severity) {
  Matrix3x3 change =
      multiply3x3(multiply3x3(vienot1999LmsToRgb, vienot1999Projection[type]), vienot1999RgbToLms);
  for (std::size_t i = 0; i < change.size(); ++i) change[i] -= identity3x3[i];
  return weightedChange(change, severity);
}

Matrix3x3 machadoMatrix(const ModelContext& context, std::size_t type, double severity) {
  constexpr std::size_t lastStep = 10;
  constexpr std::size_t matrixEntries = 9;
  const double x = static_cast<double>(lastStep) * severity;
  const auto step = static_cast<std::size_t>(std::clamp(x, 0.0, lastStep - 1.0));
  const double fraction = x - static_cast<double>(step);
  const double* const lower = &context.machadoTable[matrixEntries * ((lastStep + 1) * type + step)];
  const double* const upper = lower + matrixEntries;
  Matrix3x3 matrix;
  for (std::size_t i = 0; i < matrix.size(); ++i) {
    matrix[i] = lower[i] + (upper[i] - lower[i]) * fraction;
  }
  return matrix;
}

// Returns the simulation for the context, or the previous result if there is none.
Matrix3x3 simulate(ModelContext& context) {
  if (context.Option == SimulationAlgorithm::Yang2008) return deriveSpectralMatrix(context);
  const std::optional<std::size_t> type = typeIndex(context.modelCvdType);
  if (!type) return context.simulationMatrix;
  switch (context.Option) {
    case SimulationAlgorithm::Judd1948:
      return weightedChange(judd1948[*type], context.modelSeverity);
    case SimulationAlgorithm::Machado2009:
      return machadoMatrix(context, *type, context.modelSeverity);
    case SimulationAlgorithm::Vienot1997Approximated:
      return weightedChange(vienot1997[*type], context.modelSeverity);
    case SimulationAlgorithm::Vienot1999:
      return vienot1999Matrix(*type, context.modelSeverity);
    case SimulationAlgorithm::Yang2008:
    case SimulationAlgorithm::Brettel1997:
      break;
  }
  return context.simulationMatrix;
}

}  // namespace

Matrix3x3 computeSimulationMatrix(CvdType modelCvdType, double modelSeverity,
                                  SimulationAlgorithm Option, bool Inversion, bool Daltonize) {
  ModelContext& context = modelContext;
  context.modelCvdType = modelCvdType;
  context.modelSeverity = modelSeverity;
  context.Option = Option;
  context.Inversion = Inversion;
  context.Daltonize = Daltonize;

  context.simulationMatrix = simulate(context);
  context.uninvertedMatrix = context.simulationMatrix;
  if (Daltonize) {
    context.simulationMatrix = daltonize(context.uninvertedMatrix);
  } else if (Inversion) {
    const Inverse3x3 inverse = invert3x3(context.uninvertedMatrix);
    if (inverse.succeeded) context.simulationMatrix = inverse.matrix;
  }
  return context.simulationMatrix;
}

Matrix3x3 simulationMatrix(CvdType type, double severity, SimulationAlgorithm algorithm) {
  ModelContext context;
  initialiseModelContext(context);
  context.modelCvdType = type;
  context.modelSeverity = severity;
  context.Option = algorithm;
  context.simulationMatrix = identity3x3;
  return simulate(context);
}

Matrix3x3 daltonize(const Matrix3x3& simulation) {
  Matrix3x3 error;
  for (std::size_t i = 0; i < error.size(); ++i) error[i] = identity3x3[i] - simulation[i];
  return weightedChange(multiply3x3(errorRedistribution, error), 1.0);
}

}  // namespace tintora
