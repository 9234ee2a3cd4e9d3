// Many files at once: on several threads, with a progress bar, and with one complaint for each that
// fails.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace tintora::cli {

// Runs step(i) for every name on so many threads, at least one, and returns how many steps threw.
// Each of those is complained about in a line of its own, and does not keep the others back. The
// progress bar shows the names.
std::size_t runBatch(const std::vector<std::string>& names, std::size_t threads, bool showsProgress,
                     const std::function<void(std::size_t)>& step);

}  // namespace tintora::cli
