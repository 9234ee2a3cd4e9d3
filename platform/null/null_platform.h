// A desktop for tests without a display. It records the calls made to it and plays back scripted
// events.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "engine/effect_matrix.h"
#include "platform/canvas.h"
#include "platform/geometry.h"
#include "platform/menu.h"
#include "platform/null/null_graphics.h"
#include "platform/value_store.h"
#include "platform/window.h"

namespace tintora::platform {

struct Window {
  std::string name;  // "main", "control", "colour space" or "magnifier"
  std::string title;
  Rect bounds;  // of the magnifier: in its parent's client area
  WindowForm form = WindowForm::Framed;
  ShowState shown = ShowState::Hidden;
  bool hitTransparent = false;
  bool maximised = false;
  bool acceptsFiles = false;
  std::optional<int> timer;  // milliseconds
};

struct MenuEntry {
  enum class Kind { Item, Label, Separator, Submenu };
  Kind kind;
  int command = 0;
  std::string text{};
  const Menu* submenu = nullptr;
  bool checked = false;
};

struct Menu {
  int number = 0;  // in the order of creation, from 1
  std::vector<MenuEntry> entries;
};

struct PaintedText {
  Point place;
  Colour colour;
  std::string text;
};

struct Canvas {
  Window* window = nullptr;
  std::optional<Colour> filled;
  std::vector<PaintedText> texts;
};

// The state of the desktop. A test prepares it, runs the program or parts of it, and then reads it.
struct NullDesktop {
  // Set before a run.
  std::string commandLine = "C:\\Tintora\\Tintora.exe";
  std::string arguments;
  Size screen{1920, 1080};
  double scale = 1.0;  // of the screen and of every window
  bool hasMagnifier = true;
  bool hasClipboard = true;
  std::string windowThatFails;  // the name of a window that cannot be created
  std::optional<std::map<std::string, std::uint32_t>> store;
  // Each step returns the event to handle next. The loop ends after the last step.
  std::deque<std::function<Event()>> script;

  // Read after a run: every call that changes something, with its name and arguments. Of the
  // graphics calls, only those that create and release the device, fill vertex buffers and show
  // pictures.
  std::vector<std::string> calls;
  std::vector<std::unique_ptr<Window>> windows;
  std::vector<std::unique_ptr<Menu>> menus;  // those not destroyed
  int menusCreated = 0;
  EventHandler handler = nullptr;
  bool handled = false;  // what the handler returned for the last event
  EffectMatrix colourEffect{};
  Rect magnifierSource;
  Canvas painted;  // the last painting that ended
  Point cursor;
  bool cursorShown = true;
  bool shiftDown = false;
  bool controlDown = false;
  int picturesTaken = 0;
  int picturesHeld = 0;
  std::vector<std::string> readNames;     // in the order of the last reading
  std::vector<std::string> writtenNames;  // in the order of the last writing
  std::optional<int> quitResult;
  NullGraphics graphics;

  Window* window(const std::string& name) const;  // null if there is none
};

NullDesktop& nullDesktop();

// Forgets everything, as if the process had just started.
void resetNullDesktop();

}  // namespace tintora::platform
