#include "cli/progress_bar.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <iostream>
#include <string>

#include "cli/text.h"

namespace tintora::cli {

namespace {

// To the start of the line, and clear it.
constexpr std::string_view lineStart = "\r\x1b[K";
constexpr std::size_t widestBar = 30;
constexpr std::size_t narrowestBar = 5;
constexpr std::size_t longestName = 30;

std::size_t terminalColumns() {
  constexpr std::size_t usual = 80;
  winsize size{};
  const bool known = ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
  return known ? size.ws_col : usual;
}

}  // namespace

bool standardErrorIsTerminal() {
  return isatty(STDERR_FILENO) == 1;
}

void drawProgressBar(std::size_t done, std::size_t total, std::string_view current) {
  std::cerr << lineStart << progressLine(done, total, current, terminalColumns()) << std::flush;
}

std::string progressLine(std::size_t done, std::size_t total, std::string_view current,
                         std::size_t columns) {
  const std::string count = std::to_string(done) + '/' + std::to_string(total);
  constexpr std::size_t brackets = 3;  // and the blank behind them
  // The last column stays free, where a terminal would begin a new line.
  std::size_t room = columns > count.size() ? columns - count.size() - 1 : 0;
  std::string line;
  if (room >= narrowestBar + brackets) {
    const std::size_t width = std::min(room - brackets, widestBar);
    const std::size_t filled = done * width / total;
    line = '[' + std::string(filled, '#') + std::string(width - filled, '.') + "] ";
    room -= width + brackets;
  }
  line += count;
  if (room > 1) line += ' ' + leadingColumns(printable(current), std::min(room - 1, longestName));
  return line;
}

void clearProgressBar() {
  std::cerr << lineStart << std::flush;
}

}  // namespace tintora::cli
