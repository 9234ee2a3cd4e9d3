// The windows beneath the view, and the picture that they make: computed, not read off the screen.
#pragma once

#include <deque>
#include <map>
#include <optional>
#include <vector>

#include "picture.h"
#include "x_client.h"

namespace tintora::desktop_test {

// A window of the test, drawn completely.
struct Sheet {
  Area place;  // its inside, on the root
  Picture picture;
  int border = 0;
  std::uint32_t borderColour = 0;
  bool translucent = false;  // its pixels have an alpha, which only counts on composed screens
  bool managed = false;      // framed by the window manager
  double opacity = 1;
  std::optional<std::vector<Area>> shape = {};  // relative to the window's inside
  bool shown = true;
  xcb_window_t window = XCB_NONE;
};

class Scene {
 public:
  // Puts all windows beneath this window or its frame; at the top if it is XCB_NONE.
  Scene(const std::string& display, xcb_window_t above);

  // Puts all unmanaged windows directly beneath a window or its frame, and keeps their order.
  void putBelow(xcb_window_t above);

  void setBackdrop(const Picture& tile);
  // Creates a window and shows it directly beneath the view, above those added before.
  Sheet& add(const Sheet& added);
  Sheet& addNoise(const Area& place, std::uint32_t seed);

  // Changes a window and its record.
  void move(Sheet& sheet, int x, int y);
  void resize(Sheet& sheet, const Picture& picture);
  void draw(Sheet& sheet, const Picture& part, int x, int y);
  void shape(Sheet& sheet, const std::vector<Area>& shape);
  void setOpacity(Sheet& sheet, double opacity);
  void show(Sheet& sheet, bool shown);
  void remove(Sheet& sheet);
  // Moves a window to a position in the stack, counted from the lowest.
  void restack(Sheet& sheet, std::size_t place);

  // Redraws what the server asks for, as every program does, and counts clicks.
  void takeEvents();
  int clicksIn(const Sheet& sheet);

  // Returns what a part of the root should show without the window above it. Assumes that nothing
  // composes the screen.
  std::vector<Colour> colours(const Area& area) const;
  Sheet& at(std::size_t place) { return *stack_[place]; }
  std::size_t size() const { return stack_.size(); }
  const XClient& client() const { return client_; }

 private:
  void paint(const Sheet& sheet, const Area& area, std::vector<Colour>& colours) const;
  void restackBelow(xcb_window_t window) const;
  void drawWhole(const Sheet& sheet) const;

  XClient client_;
  xcb_window_t above_;
  Picture backdrop_;
  std::deque<Sheet> sheets_;
  std::vector<Sheet*> stack_;  // from the lowest to the highest
  std::map<xcb_window_t, int> clicks_;
};

}  // namespace tintora::desktop_test
