#include "cli/progress_bar.h"

#include <unistd.h>

#include <iostream>
#include <string>

namespace tintora::cli {

namespace {

// To the start of the line, and clear it.
constexpr std::string_view lineStart = "\r\x1b[K";
constexpr std::size_t barWidth = 30;
constexpr std::size_t nameWidth = 30;

}  // namespace

bool standardErrorIsTerminal() {
  return isatty(STDERR_FILENO) == 1;
}

void drawProgressBar(std::size_t done, std::size_t total, std::string_view current) {
  const std::size_t filled = done * barWidth / total;
  std::cerr << lineStart << '[' << std::string(filled, '#') << std::string(barWidth - filled, '.')
            << "] " << done << '/' << total << ' ' << current.substr(0, nameWidth) << std::flush;
}

void clearProgressBar() {
  std::cerr << lineStart << std::flush;
}

}  // namespace tintora::cli
