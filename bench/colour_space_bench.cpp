// Measures the colour space window on a virtual display, view by view: the time from a turn of the
// mouse wheel to the frame that shows it, and the time of a frame alone. Prints one table. The
// argument is the program.
#include <xcb/xtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "live_view_display.h"

namespace tintora {

namespace {

using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr int rounds = 200;
constexpr int width = 1280;
constexpr int height = 720;
constexpr std::uint8_t wheelUp = 4;
constexpr std::uint8_t wheelDown = 5;

struct View {
  int code;
  const char* caption;
};
constexpr std::array<View, 4> views{{{702, "Photoreceptor Response Curves"},
                                     {703, "RGB Cube"},
                                     {704, "Chromaticity Diagram"},
                                     {705, "Help"}}};

xcb_window_t waitForWindow(const Screen& screen, const std::string& title) {
  const auto end = Clock::now() + std::chrono::seconds(10);
  while (Clock::now() < end) {
    if (const xcb_window_t window = screen.windowTitled(title)) return window;
  }
  throw std::runtime_error("the window \"" + title + "\" does not appear");
}

void movePointer(const Screen& screen, int x, int y) {
  xcb_test_fake_input(screen.connection(), XCB_MOTION_NOTIFY, 0, 0, screen.root(),
                      static_cast<std::int16_t>(x), static_cast<std::int16_t>(y), 0);
  xcb_flush(screen.connection());
}

void turnWheel(const Screen& screen, bool up) {
  const std::uint8_t button = up ? wheelUp : wheelDown;
  for (const std::uint8_t what :
       std::to_array<std::uint8_t>({XCB_BUTTON_PRESS, XCB_BUTTON_RELEASE})) {
    xcb_test_fake_input(screen.connection(), what, button, 0, XCB_NONE, 0, 0, 0);
  }
  xcb_flush(screen.connection());
}

struct Measured {
  std::vector<double> times;
  int frames = 0;
};

// Repeats an action many times. Each time ends when the window has been drawn.
template <typename Action>
Measured measure(DrawingWatch& watch, Action action) {
  constexpr std::chrono::milliseconds rest{20};
  Measured result;
  for (int round = 0; round < rounds; ++round) {
    while (watch.next(Clock::now() + rest)) {
    }
    const auto start = Clock::now();
    action(round);
    if (!watch.next(start + std::chrono::seconds(5))) {
      throw std::runtime_error("no frame follows");
    }
    result.times.push_back(Milliseconds(Clock::now() - start).count());
    ++result.frames;
    while (watch.next(Clock::now() + rest)) ++result.frames;
  }
  std::ranges::sort(result.times);
  return result;
}

void print(const View& view, const char* what, const Measured& measured) {
  const auto at = [&](double part) {
    return measured
        .times[static_cast<std::size_t>(part * static_cast<double>(measured.times.size() - 1))];
  };
  std::printf("%-30s %-12s median %6.2f ms   90%% %6.2f   most %6.2f   frames each %.2f\n",
              view.caption, what, at(0.5), at(0.9), at(1.0),
              static_cast<double>(measured.frames) / rounds);
}

void measureView(const std::string& program, const SettingsFolder& settings, const View& view) {
  // Deutan.
  settings.write("Selected=2\nScrollPc=100\nColorSpace=1\nView=" + std::to_string(view.code) +
                 "\n");
  Screen screen(width, height);
  const Process tintora(program, "", screen.display());
  const xcb_window_t window = waitForWindow(screen, view.caption);
  DrawingWatch watch(screen, window);
  movePointer(screen, width / 2, height / 2);
  print(view, "wheel notch",
        measure(watch, [&](int round) { turnWheel(screen, (round / 10) % 2 == 1); }));
  // The window stands beside the main one, in the middle of the screen.
  print(view, "frame alone", measure(watch, [&](int round) {
          movePointer(screen, width / 2 + 350 + round % 2, height / 2);
        }));
}

}  // namespace

}  // namespace tintora

int main(int count, char** arguments) {
  if (count != 2) {
    std::fprintf(stderr, "usage: tintora_colour_space_bench PROGRAM\n");
    return 2;
  }
  std::setvbuf(stdout, nullptr, _IOLBF, 0);
  try {
    const tintora::SettingsFolder settings;
    for (const tintora::View& view : tintora::views) {
      tintora::measureView(arguments[1], settings, view);
    }
  } catch (const std::exception& fault) {
    std::fprintf(stderr, "%s\n", fault.what());
    return 1;
  }
  return 0;
}
