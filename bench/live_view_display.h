// A virtual display to measure the program on: draws beneath the view and tells when the view shows
// it.
#pragma once

#include <sys/types.h>
#include <xcb/xcb.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace tintora {

using Clock = std::chrono::steady_clock;

// A child process. The destructor ends it.
class Process {
 public:
  // Starts a command, its arguments separated by blanks. An X server writes its display number to
  // the pipe.
  Process(const std::string& program, const std::string& arguments, const std::string& display,
          int displayPipe = -1);
  ~Process();
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;
  pid_t id() const { return id_; }
  Clock::time_point started() const { return started_; }

  double processorSeconds() const;
  // Returns the voluntary and forced context switches of all its threads.
  std::uint64_t contextSwitches() const;
  double residentMegabytes() const;

 private:
  pid_t id_ = -1;
  Clock::time_point started_;
};

// An empty virtual screen.
class Screen {
 public:
  Screen(int width, int height);
  ~Screen();
  Screen(const Screen&) = delete;
  Screen& operator=(const Screen&) = delete;

  int width() const { return width_; }
  int height() const { return height_; }
  const std::string& display() const { return display_; }
  xcb_connection_t* connection() const { return connection_; }
  xcb_window_t root() const { return screen_->root; }
  const xcb_screen_t& facts() const { return *screen_; }
  const Process& server() const { return *server_; }

  // Presses and releases a key of the X11 keyboard in a window.
  void pressKey(xcb_window_t window, std::uint8_t keycode);
  // Returns one pixel of the screen.
  std::uint32_t pixel(int x, int y) const;
  // Returns the first top-level window with this title, or XCB_NONE.
  xcb_window_t windowTitled(const std::string& wanted) const;
  void finish() const;  // waits until the server has handled everything

 private:
  int width_;
  int height_;
  std::string display_;
  std::unique_ptr<Process> server_;
  xcb_connection_t* connection_ = nullptr;
  const xcb_screen_t* screen_ = nullptr;
};

// Reports everything that is drawn in a window.
class DrawingWatch {
 public:
  DrawingWatch(const Screen& screen, xcb_window_t window);
  // Returns the next place that was drawn, or nothing if none was until a given time.
  std::optional<xcb_rectangle_t> next(Clock::time_point until);

 private:
  xcb_connection_t* connection_;
  std::uint8_t event_ = 0;
};

// Settings for the program in a temporary folder. The destructor removes it.
class SettingsFolder {
 public:
  SettingsFolder();
  ~SettingsFolder();
  SettingsFolder(const SettingsFolder&) = delete;
  SettingsFolder& operator=(const SettingsFolder&) = delete;
  void write(const std::string& lines) const;

 private:
  std::string path_;
};

}  // namespace tintora
