// tintora-cli curves: the response curves of the observer a transform simulates.
#pragma once

#include <string>

namespace tintora::cli {

struct TransformOptions;

// Returns the curves as CSV, one row per nanometre from 360 to 760. Throws UsageError for a mode
// that simulates no observer.
std::string formatCurves(const TransformOptions& options);

}  // namespace tintora::cli
