#include "shell/control_window.h"

#include <array>
#include <string>

#include "platform/canvas.h"
#include "platform/program.h"
#include "platform/window.h"
#include "shell/shell_state.h"

namespace tintora {

namespace {

using platform::Colour;
using platform::Point;
using platform::ShowState;
using platform::Size;

constexpr Size windowSize{400, 120};

Size scaledSize(double scale) {
  return {platform::scaled(windowSize.width, scale), platform::scaled(windowSize.height, scale)};
}

void centreOverMainWindow(double scale) {
  const platform::Rect& main = shellState.mainBounds;
  const Size size = scaledSize(scale);
  const int left = (main.left + main.right) / 2 - size.width / 2;
  const int top = (main.top + main.bottom) / 2 - size.height / 2;
  platform::setWindowBounds(shellState.controlWindow,
                            {left, top, left + size.width, top + size.height});
}

}  // namespace

bool createControlWindow() {
  ShellState& state = shellState;
  const Size size = scaledSize(platform::screenScale());
  state.controlWindow = platform::createWindow(platform::WindowKind::Control, state.controlText,
                                               {0, 0, size.width, size.height});
  return state.controlWindow != nullptr;
}

void showControlWindow() {
  ShellState& state = shellState;
  state.mainBounds = platform::windowBounds(state.mainWindow);
  const double scale = platform::windowScale(state.controlWindow);
  centreOverMainWindow(scale);
  // It may now be on another screen, with another scale.
  const double scaleThere = platform::windowScale(state.controlWindow);
  if (scaleThere != scale) centreOverMainWindow(scaleThere);
  platform::showWindow(state.controlWindow, ShowState::Shown);
}

void hideControlWindow() {
  platform::showWindow(shellState.controlWindow, ShowState::Hidden);
}

void paintControlWindow() {
  const ShellState& state = shellState;
  if (!state.hitTransparent) return;

  constexpr Colour background{80, 100, 120};
  constexpr Colour black{0, 0, 0};
  constexpr Colour white{255, 255, 255};
  struct Line {
    Point shadow;  // the text itself stands one pixel up and left
    std::string text;
  };
  platform::Canvas* const canvas = platform::beginPainting(state.controlWindow);
  platform::fill(canvas, background);
  const std::array<Line, 3> lines{{
      {{15, 11}, platform::windowTitle(state.mainWindow, titleLength)},
      {{18, 31}, "Main window is now Hit-Transparent"},
      {{18, 51}, "Use this window to access options (right-click/mouse-wheel)"},
  }};
  for (const auto& [place, text] : lines) platform::drawText(canvas, place, black, text);
  for (const auto& [place, text] : lines) {
    platform::drawText(canvas, {place.x - 1, place.y - 1}, white, text);
  }
  platform::endPainting(canvas);
  platform::setTitle(state.controlWindow, state.controlText);
  platform::invalidateWindow(state.controlWindow);
}

}  // namespace tintora
