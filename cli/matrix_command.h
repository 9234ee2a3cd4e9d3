// tintora-cli matrix: the title and the matrices of a transform.
#pragma once

#include <string>
#include <string_view>

namespace tintora::cli {

enum class MatrixFormat { Text, Json, Csv, Svg };

// The matrix in force (effectMatrix, and modelContext where it is a simulation) as text. Throws
// RunError where the format cannot hold an infinite entry or one that is not a number.
std::string formatMatrix(MatrixFormat format, const std::string& title, bool simulated);

}  // namespace tintora::cli
