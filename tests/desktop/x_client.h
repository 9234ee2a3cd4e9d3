// What a test needs from the X server: other programs' windows, pixels and properties, and control
// of keyboard and mouse.
#pragma once

#include <xcb/xcb.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "picture.h"

namespace tintora::desktop_test {

class XClient {
 public:
  explicit XClient(const std::string& display);
  ~XClient();
  XClient(const XClient&) = delete;
  XClient& operator=(const XClient&) = delete;

  xcb_connection_t* connection() const { return x_; }
  const xcb_screen_t& screen() const { return *screen_; }
  xcb_window_t root() const { return screen_->root; }
  // Returns the whole screen's current area.
  Area screenArea() const;
  // Returns when the server has handled all requests.
  void sync() const;
  // Sends a request, and fails the test if the server refuses it.
  void check(xcb_void_cookie_t cookie) const;

  xcb_atom_t atom(const std::string& name) const;
  std::string property(xcb_window_t window, xcb_atom_t name) const;
  std::string text(xcb_window_t window, const std::string& name) const;
  std::vector<std::uint32_t> numbers(xcb_window_t window, const std::string& name) const;
  void setNumbers(xcb_window_t window, const std::string& name, xcb_atom_t type,
                  const std::vector<std::uint32_t>& values) const;
  // Sends the window manager a request about a window.
  void tellManager(xcb_window_t window, const std::string& message,
                   const std::vector<std::uint32_t>& values) const;

  std::vector<xcb_window_t> children(xcb_window_t window) const;
  // Returns the child of the root that contains a window.
  xcb_window_t topLevelOf(xcb_window_t window) const;
  bool isShown(xcb_window_t window) const;
  bool exists(xcb_window_t window) const;
  // Returns the area of a window's inside, on the root.
  Area areaOf(xcb_window_t window) const;
  // Returns the area with the window's frame.
  Area outerAreaOf(xcb_window_t window) const;
  void configure(xcb_window_t window, std::uint16_t mask,
                 const std::vector<std::uint32_t>& values) const;
  void move(xcb_window_t window, int x, int y) const;
  void resize(xcb_window_t window, int width, int height) const;
  // Asks the window manager to show, raise and focus a window, as a taskbar does.
  void activate(xcb_window_t window) const;
  // Asks a window to close, as its close button does.
  void close(xcb_window_t window) const;
  // Puts a window directly below or above another, or below or above all.
  void restack(xcb_window_t window, xcb_stack_mode_t mode, xcb_window_t sibling = XCB_NONE) const;

  // Reads pixels off the screen.
  Picture read(const Area& area) const;
  // Reads pixels of a pixmap or window.
  Picture read(xcb_drawable_t drawable, const Area& area) const;
  void draw(xcb_drawable_t drawable, const Picture& picture, int x = 0, int y = 0,
            std::uint8_t depth = 24) const;
  xcb_pixmap_t pixmapOf(const Picture& picture) const;

  void moveMouse(int x, int y) const;
  void moveMouse(const Area& area) const;
  void button(std::uint8_t number, bool down) const;
  void click(std::uint8_t number) const;
  void key(xcb_keysym_t symbol, bool down) const;
  void press(xcb_keysym_t symbol, const std::vector<xcb_keysym_t>& holding = {}) const;
  xcb_window_t focus() const;
  // Returns the child of the root that would get a click.
  xcb_window_t underMouse() const;

  // Handles the events that have arrived.
  void takeEvents(const std::function<void(const xcb_generic_event_t&)>& take) const;

  // Returns a visual of 32 bits with an alpha channel.
  xcb_visualid_t translucentVisual() const;

 private:
  xcb_keycode_t codeOf(xcb_keysym_t symbol) const;

  xcb_connection_t* x_;
  const xcb_screen_t* screen_;
};

// Frees blocks that come from malloc.
struct Free {
  void operator()(void* block) const;
};
template <typename Block>
using Received = std::unique_ptr<Block, Free>;

inline std::int16_t i16(int value) {
  return static_cast<std::int16_t>(value);
}
inline std::uint16_t u16(int value) {
  return static_cast<std::uint16_t>(value);
}
inline std::uint32_t u32(int value) {
  return static_cast<std::uint32_t>(value);
}

}  // namespace tintora::desktop_test
