// A progress bar on standard error.
#pragma once

#include <cstddef>
#include <string_view>

namespace tintora::cli {

// Whether standard error is a terminal, where a bar is of use.
bool standardErrorIsTerminal();

// Draws the bar over the one drawn before; done of total steps, named by what is at work.
void drawProgressBar(std::size_t done, std::size_t total, std::string_view current);

// Takes the bar away, so that a line can be written in its place.
void clearProgressBar();

}  // namespace tintora::cli
