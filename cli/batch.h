// Handles many files on several threads, with a progress bar and one error message for each file
// that fails.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace tintora::cli {

// Runs step(i) for every name on this many threads, at least one, and returns how many steps threw.
// Prints one line of error for each of those and continues with the others. The progress bar shows
// the names.
std::size_t runBatch(const std::vector<std::string>& names, std::size_t threads, bool showsProgress,
                     const std::function<void(std::size_t)>& step);

}  // namespace tintora::cli
