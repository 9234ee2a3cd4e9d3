// The state of the shell: its windows, menus and modes.
#pragma once

#include <cstddef>
#include <string>

#include "colour_space/view_code.h"
#include "platform/geometry.h"
#include "platform/menu.h"
#include "platform/window.h"

namespace tintora {

// The most characters of the main window's title that other windows repeat.
inline constexpr std::size_t titleLength = 200;

inline constexpr const char* hitTransparentText = "Hit Transparent, Press H to exit";
// The version from CMake's project(), as the menu shows it.
extern const char* const programVersionText;

// The nine popup menus.
struct ShellMenus {
  platform::Menu* main = nullptr;
  platform::Menu* colourFilter = nullptr;
  platform::Menu* colourSwap = nullptr;
  platform::Menu* alternativeTransforms = nullptr;
  platform::Menu* help = nullptr;
  platform::Menu* viewOptions = nullptr;
  platform::Menu* otherColourEffects = nullptr;
  platform::Menu* spare = nullptr;  // never filled
  platform::Menu* colourSpace = nullptr;
};

struct WindowDrag {
  bool active = false;
  platform::Point cursor;  // on the screen, where the button went down
  platform::Point corner;  // the window's left top corner at that time
};

struct ShellState {
  platform::Window* mainWindow = nullptr;
  platform::Window* magnifier = nullptr;
  platform::Window* controlWindow = nullptr;
  platform::Window* colourSpaceWindow = nullptr;
  ShellMenus menus;

  platform::Rect mainBounds;  // of the main window, screen pixels
  platform::Rect boundsBeforeFullScreen;
  int magnifierTopOffset = 0;
  int magnifierRightMargin = 0;
  platform::Size colourSpaceClientSize;  // as last handed to the renderer
  double colourSpaceScale = 1.0;         // when the renderer was last handed a size

  bool fullScreen = false;
  bool hitTransparent = false;
  bool framed = true;
  bool docked = true;              // the colour space window follows the main window's right edge
  bool colourSpaceVisible = true;  // saved
  ViewCode view = ViewCode::Help;  // saved
  WindowDrag drag;
  bool titleTimerPending = false;

  bool tritanEnabled = false;
  bool simulationOptionsEnabled = false;
  std::string versionText = programVersionText;
  std::string controlText = hitTransparentText;
};

extern ShellState shellState;

}  // namespace tintora
