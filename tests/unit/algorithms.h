// The types of deficiency, and the simulation algorithms that are one matrix for each type and
// severity.
#pragma once

#include <array>

#include "engine/cvd_transforms.h"

namespace tintora {

constexpr std::array<CvdType, 3> cvdTypes{CvdType::Protan, CvdType::Deutan, CvdType::Tritan};

constexpr std::array<SimulationAlgorithm, 5> algorithms{
    SimulationAlgorithm::Judd1948, SimulationAlgorithm::Yang2008, SimulationAlgorithm::Machado2009,
    SimulationAlgorithm::Vienot1997Approximated, SimulationAlgorithm::Vienot1999};

}  // namespace tintora
