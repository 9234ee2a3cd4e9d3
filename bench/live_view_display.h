// A virtual display with the program on it, for measuring: what is drawn beneath, and when the view
// shows it.
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

// A process of the measurement, ended with it.
class Process {
 public:
  // Arguments between blanks; an X server writes its display's number to the pipe.
  Process(const std::string& program, const std::string& arguments, const std::string& display,
          int displayPipe = -1);
  ~Process();
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;
  pid_t id() const { return id_; }
  Clock::time_point started() const { return started_; }

  double processorSeconds() const;
  // Voluntary and forced switches of all its threads: what the kernel woke it for.
  std::uint64_t contextSwitches() const;
  double residentMegabytes() const;

 private:
  pid_t id_ = -1;
  Clock::time_point started_;
};

// A virtual screen with nothing on it.
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
  // One pixel of what the screen shows.
  std::uint32_t pixel(int x, int y) const;
  // The first top-level window with this title; XCB_NONE where there is none.
  xcb_window_t windowTitled(const std::string& wanted) const;
  void finish() const;  // returns when the server has done everything

 private:
  int width_;
  int height_;
  std::string display_;
  std::unique_ptr<Process> server_;
  xcb_connection_t* connection_ = nullptr;
  const xcb_screen_t* screen_ = nullptr;
};

// Tells of every drawing in a window.
class DrawingWatch {
 public:
  DrawingWatch(const Screen& screen, xcb_window_t window);
  // The next place that was drawn, or nothing until a time has come.
  std::optional<xcb_rectangle_t> next(Clock::time_point until);

 private:
  xcb_connection_t* connection_;
  std::uint8_t event_ = 0;
};

// Settings of the measurement's own, in a folder of its own that goes with it.
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
