// How the tool ends.
#pragma once

namespace tintora::cli {

inline constexpr int exitDone = 0;
inline constexpr int exitFailed = 1;    // something failed, such as reading or writing a file
inline constexpr int exitUsage = 2;     // the command line is wrong
inline constexpr int exitFindings = 3;  // `check` has findings

}  // namespace tintora::cli
