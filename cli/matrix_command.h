// tintora-cli matrix: the title and the matrices of a transform.
#pragma once

#include <string>
#include <string_view>

namespace tintora::cli {

struct TransformOptions;

enum class MatrixFormat { Text, Json, Csv, Svg };

// Applies the chosen transform and returns its matrix as text. Throws RunError if the format cannot
// hold an infinite entry or one that is not a number, and UsageError for a transform that is no
// single matrix.
std::string formatMatrix(MatrixFormat format, const TransformOptions& options);

}  // namespace tintora::cli
