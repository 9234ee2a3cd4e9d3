// Measures the live view on a virtual display: the time from a change beneath it until the view
// shows it. Prints one table. The argument is the program.
#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "live_view_display.h"

namespace tintora {

namespace {

using Milliseconds = std::chrono::duration<double, std::milli>;
using std::chrono::seconds;

constexpr int changes = 500;
constexpr seconds idleTime{30};
constexpr seconds animationTime{5};
constexpr int markSize = 16;
constexpr std::uint8_t fullScreenKey = 41;  // F on an X11 keyboard

std::uint32_t inverted(std::uint32_t colour) {
  return 0xFFFFFFU - colour;
}

// Runs the program in full screen, inverting a picture that the measurement draws.
class View {
 public:
  View(Screen& screen, std::string program) : screen_(screen), program_(std::move(program)) {
    createPicture();
    tintora_ = std::make_unique<Process>(program_, "", screen_.display());
    main_ = wait([&] { return screen_.windowTitled("Invert "); });
    waitForPixel(screen_.width() / 2, screen_.height() / 2, inverted(background));
    firstPixel_ = Clock::now() - tintora_->started();
    screen_.pressKey(main_, fullScreenKey);
    waitForPixel(1, 1, inverted(background));
    waitForPixel(screen_.width() - 2, screen_.height() - 2, inverted(background));
    watch_ = std::make_unique<DrawingWatch>(screen_, main_);
  }

  const Process& tintora() const { return *tintora_; }
  Milliseconds firstPixel() const { return firstPixel_; }

  // Draws a small mark at a random place. Returns when the view shows it.
  Milliseconds changeMark() {
    std::uniform_int_distribution<int> x(0, screen_.width() - markSize);
    std::uniform_int_distribution<int> y(0, screen_.height() / 4);  // beside the control window
    const int left = x(random_);
    const int top = y(random_);
    const std::uint32_t colour = nextColour();
    const auto start = Clock::now();
    fill(left, top, colour);
    return waitForView(left, top, inverted(colour)) - start;
  }

  // Draws the whole picture again. Returns when the view shows all of it.
  Milliseconds changeAll() {
    const auto start = Clock::now();
    const std::uint32_t mark = drawFrame();
    return waitForView(screen_.width() - 1, screen_.height() - 1, inverted(mark)) - start;
  }

  // Draws new frames at a rate for a while. Returns how many the view showed per second.
  double animate(double framesPerSecond) {
    int seen = 0;
    std::uint32_t last = 0;
    const auto start = Clock::now();
    for (int frame = 0; Clock::now() - start < animationTime; ++frame) {
      drawFrame();
      const auto next = start + std::chrono::duration_cast<Clock::duration>(
                                    std::chrono::duration<double>((frame + 1) / framesPerSecond));
      while (true) {
        const std::uint32_t corner = cornerShown(next);
        if (corner != last) ++seen;
        last = corner;
        if (Clock::now() >= next) break;
      }
    }
    return seen / std::chrono::duration<double>(Clock::now() - start).count();
  }

 private:
  static constexpr std::uint32_t background = 0x336699;

  xcb_connection_t* x() const { return screen_.connection(); }

  static xcb_window_t wait(const std::function<xcb_window_t()>& find) {
    const auto end = Clock::now() + seconds(10);
    while (Clock::now() < end) {
      if (const xcb_window_t window = find()) return window;
    }
    throw std::runtime_error("the program's window does not appear");
  }

  void waitForPixel(int left, int top, std::uint32_t colour) const {
    const auto end = Clock::now() + seconds(10);
    while (screen_.pixel(left, top) != colour) {
      if (Clock::now() > end) throw std::runtime_error("the view does not show what it should");
    }
  }

  void createPicture() {
    const auto width = static_cast<std::uint16_t>(screen_.width());
    const auto height = static_cast<std::uint16_t>(screen_.height());
    picture_ = xcb_generate_id(x());
    const std::array<std::uint32_t, 2> looks{background, 1};
    xcb_create_window(x(), XCB_COPY_FROM_PARENT, picture_, screen_.root(), 0, 0, width, height, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                      XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT, looks.data());
    xcb_map_window(x(), picture_);
    context_ = xcb_generate_id(x());
    const std::uint32_t noExposures = 0;
    xcb_create_gc(x(), context_, picture_, XCB_GC_GRAPHICS_EXPOSURES, &noExposures);
    for (xcb_pixmap_t& frame : frames_) {
      frame = xcb_generate_id(x());
      xcb_create_pixmap(x(), screen_.facts().root_depth, frame, screen_.root(), width, height);
      for (int top = 0; top < screen_.height(); top += markSize) {
        setColour(nextColour());
        const xcb_rectangle_t row{0, static_cast<std::int16_t>(top), width, markSize};
        xcb_poly_fill_rectangle(x(), frame, context_, 1, &row);
      }
    }
    screen_.finish();
  }

  void setColour(std::uint32_t colour) { xcb_change_gc(x(), context_, XCB_GC_FOREGROUND, &colour); }

  void fill(int left, int top, std::uint32_t colour) {
    setColour(colour);
    const xcb_rectangle_t mark{static_cast<std::int16_t>(left), static_cast<std::int16_t>(top),
                               markSize, markSize};
    xcb_poly_fill_rectangle(x(), picture_, context_, 1, &mark);
    xcb_flush(x());
  }

  // A colour that has not been drawn for a long time.
  std::uint32_t nextColour() {
    colour_ = (colour_ * 1664525U + 1013904223U) & 0xFFFFFFU;
    return colour_;
  }

  std::uint32_t drawFrame() {
    const xcb_pixmap_t frame = frames_[frame_++ % frames_.size()];
    xcb_copy_area(x(), frame, picture_, context_, 0, 0, 0, 0,
                  static_cast<std::uint16_t>(screen_.width()),
                  static_cast<std::uint16_t>(screen_.height()));
    const std::uint32_t mark = nextColour();
    fill(screen_.width() - markSize, screen_.height() - markSize, mark);
    return mark;
  }

  // Waits until the view is drawn at a place. Returns false if that takes until a given time.
  bool viewDrawn(int left, int top, Clock::time_point until) {
    while (const auto area = watch_->next(until)) {
      if (left >= area->x && left < area->x + area->width && top >= area->y &&
          top < area->y + area->height) {
        return true;
      }
    }
    return false;
  }

  Clock::time_point waitForView(int left, int top, std::uint32_t colour) {
    const auto end = Clock::now() + seconds(10);
    while (viewDrawn(left, top, end)) {
      const auto shown = Clock::now();
      if (screen_.pixel(left, top) == colour) return shown;
    }
    throw std::runtime_error("the view does not show a change");
  }

  std::uint32_t cornerShown(Clock::time_point until) {
    const int left = screen_.width() - 1;
    const int top = screen_.height() - 1;
    viewDrawn(left, top, until);
    return screen_.pixel(left, top);
  }

  Screen& screen_;
  std::string program_;
  std::unique_ptr<Process> tintora_;
  Milliseconds firstPixel_{};
  xcb_window_t main_ = XCB_NONE;
  xcb_window_t picture_ = XCB_NONE;
  xcb_gcontext_t context_ = XCB_NONE;
  std::array<xcb_pixmap_t, 2> frames_{};
  std::size_t frame_ = 0;
  std::unique_ptr<DrawingWatch> watch_;
  std::uint32_t colour_ = 1;
  std::mt19937 random_{1};
};

// Returns the cost of a stretch of time, in percent of one processor.
class Cost {
 public:
  Cost(const Process& program, const Process& server)
      : program_(program),
        server_(server),
        programBefore_(program.processorSeconds()),
        serverBefore_(server.processorSeconds()),
        start_(Clock::now()) {}
  double program() const { return share(program_.processorSeconds() - programBefore_); }
  double server() const { return share(server_.processorSeconds() - serverBefore_); }

 private:
  double share(double used) const {
    return 100 * used / std::chrono::duration<double>(Clock::now() - start_).count();
  }
  const Process& program_;
  const Process& server_;
  double programBefore_;
  double serverBefore_;
  Clock::time_point start_;
};

void printDistribution(const char* name, const Screen& screen, const View& view,
                       const std::function<Milliseconds()>& change) {
  std::vector<double> times;
  const Cost cost(view.tintora(), screen.server());
  for (int i = 0; i < changes; ++i) {
    times.push_back(change().count());
    // A screen is not drawn all at once either.
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  const double program = cost.program();
  const double server = cost.server();
  std::ranges::sort(times);
  const auto at = [&](double part) {
    return times[static_cast<std::size_t>(part * static_cast<double>(times.size() - 1))];
  };
  std::printf("%4dx%-4d  %-22s  median %6.2f ms   90%% %6.2f   99%% %6.2f   most %6.2f",
              screen.width(), screen.height(), name, at(0.5), at(0.9), at(0.99), at(1.0));
  std::printf("   program %5.1f%%   server %5.1f%%\n", program, server);
}

void printAnimation(const Screen& screen, View& view, double rate) {
  const Cost cost(view.tintora(), screen.server());
  const double seen = view.animate(rate);
  std::printf("%4dx%-4d  %3.0f frames/s drawn      %6.1f frames/s seen %42s", screen.width(),
              screen.height(), rate, seen, "");
  std::printf("   program %5.1f%%   server %5.1f%%\n", cost.program(), cost.server());
}

void printIdle(const Screen& screen, const View& view) {
  // First lets the last change finish.
  std::this_thread::sleep_for(seconds(2));
  const Cost cost(view.tintora(), screen.server());
  const std::uint64_t before = view.tintora().contextSwitches();
  std::this_thread::sleep_for(idleTime);
  std::printf("%4dx%-4d  nothing for %ld s         %llu wake-ups %49s   program %5.3f%%\n",
              screen.width(), screen.height(), static_cast<long>(idleTime.count()),
              static_cast<unsigned long long>(view.tintora().contextSwitches() - before), "",
              cost.program());
}

void measure(const std::string& program, int width, int height, const std::vector<double>& rates) {
  Screen screen(width, height);
  View view(screen, program);
  std::printf("%4dx%-4d  start                   %6.1f ms to the first filtered pixel\n", width,
              height, view.firstPixel().count());
  printDistribution("small change", screen, view, [&] { return view.changeMark(); });
  printDistribution("whole screen changes", screen, view, [&] { return view.changeAll(); });
  for (const double rate : rates) printAnimation(screen, view, rate);
  printIdle(screen, view);
  std::printf("%4dx%-4d  memory                  %6.1f MB resident\n", width, height,
              view.tintora().residentMegabytes());
}

}  // namespace

}  // namespace tintora

int main(int count, char** arguments) {
  if (count != 2) {
    std::fprintf(stderr, "usage: tintora_live_view_bench PROGRAM\n");
    return 2;
  }
  std::setvbuf(stdout, nullptr, _IOLBF, 0);
  try {
    // Invert, without the colour space window.
    const tintora::SettingsFolder settings;
    settings.write("Selected=5\nColorSpace=0\nView=705\n");
    tintora::measure(arguments[1], 1920, 1080, {60, 120, 240});
    tintora::measure(arguments[1], 3840, 2160, {30, 50, 60, 100});
  } catch (const std::exception& fault) {
    std::fprintf(stderr, "%s\n", fault.what());
    return 1;
  }
  return 0;
}
