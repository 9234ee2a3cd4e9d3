// A progress bar on standard error.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tintora::cli {

// Returns true if standard error is a terminal, where a bar is of use.
bool standardErrorIsTerminal();

// Draws the bar over the one drawn before: done of total steps, and the name of what is at work.
void drawProgressBar(std::size_t done, std::size_t total, std::string_view current);

// Returns that line for a terminal of so many columns, with fewer columns than that.
std::string progressLine(std::size_t done, std::size_t total, std::string_view current,
                         std::size_t columns);

// Removes the bar, so that a line can be written in its place.
void clearProgressBar();

}  // namespace tintora::cli
