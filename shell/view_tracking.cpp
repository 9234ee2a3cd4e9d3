#include "shell/view_tracking.h"

#include <array>
#include <string>

#include "colour_space/renderer.h"
#include "platform/canvas.h"
#include "platform/magnifier.h"
#include "platform/program.h"
#include "platform/window.h"
#include "shell/shell_state.h"
#include "shell/window_procedure.h"

namespace tintora {

namespace {

using platform::Colour;
using platform::Point;
using platform::Rect;
using platform::ShowState;
using platform::Size;
using platform::WindowForm;

constexpr const char* fullScreenText = "Full screen mode, press F to exit";

constexpr int dockingGap = 4;
constexpr Size controlWindowSize{400, 120};

Rect wholeScreen() {
  const Size screen = platform::screenSize();
  return {0, 0, screen.width, screen.height};
}

void moveColourSpaceBesideMain() {
  platform::Window* const window = shellState.colourSpaceWindow;
  const Rect bounds = platform::windowBounds(window);
  // As the main window stands now: during a drag the last source update is a move behind.
  const Rect main = platform::windowBounds(shellState.mainWindow);
  const int left = main.right + dockingGap;
  const int top = main.top;
  platform::setWindowBounds(window, {left, top, left + bounds.width(), top + bounds.height()});
}

void showControlWindowOverMain() {
  ShellState& state = shellState;
  state.mainBounds = platform::windowBounds(state.mainWindow);
  const int left =
      (state.mainBounds.left + state.mainBounds.right) / 2 - controlWindowSize.width / 2;
  const int top =
      (state.mainBounds.top + state.mainBounds.bottom) / 2 - controlWindowSize.height / 2;
  platform::setWindowBounds(state.controlWindow, {left, top, left + controlWindowSize.width,
                                                  top + controlWindowSize.height});
  platform::showWindow(state.controlWindow, ShowState::Shown);
  platform::setHitTransparent(state.mainWindow, true);
}

void setFrame(bool framed, bool maximised) {
  ShellState& state = shellState;
  const WindowForm normal = framed ? WindowForm::Framed : WindowForm::Frameless;
  const WindowForm large = framed ? WindowForm::FramedMaximised : WindowForm::FramelessMaximised;
  platform::setWindowForm(state.mainWindow, maximised ? large : normal);
  state.framed = framed;
  platform::showWindow(state.mainWindow, ShowState::Shown);
  // As if the window had been sized, so that the magnifier is fitted again.
  handleEvent({.kind = platform::EventKind::Sized, .window = state.mainWindow});
}

void enterFullScreen(bool byKey) {
  ShellState& state = shellState;
  state.docked = false;
  state.boundsBeforeFullScreen = platform::windowBounds(state.mainWindow);
  platform::setWindowForm(state.mainWindow, WindowForm::FullScreen);
  if (byKey) platform::setHitTransparent(state.mainWindow, true);
  state.framed = false;
  platform::setWindowBounds(state.mainWindow, wholeScreen());
  platform::fitMagnifier(state.magnifier, wholeScreen());
  platform::showWindow(state.mainWindow, ShowState::Maximised);
  updateSource();
  state.controlText = fullScreenText;
  paintControlWindow();
  if (!state.hitTransparent) {
    showControlWindowOverMain();
    state.hitTransparent = true;
  }
  state.fullScreen = true;
}

void leaveFullScreen() {
  ShellState& state = shellState;
  platform::setWindowForm(state.mainWindow, WindowForm::Framed);
  platform::setHitTransparent(state.mainWindow, false);
  state.framed = true;
  platform::setWindowBounds(state.mainWindow, state.boundsBeforeFullScreen);
  platform::showWindow(state.mainWindow, ShowState::Normal);
  fitMagnifierToMainWindow();
  updateSource();
  state.controlText = hitTransparentText;
  platform::showWindow(state.controlWindow, ShowState::Hidden);
  state.hitTransparent = false;
  state.fullScreen = false;
}

void toggleFullScreen(bool byKey) {
  if (platform::isMaximised(shellState.mainWindow)) {
    leaveFullScreen();
  } else {
    enterFullScreen(byKey);
  }
}

}  // namespace

void updateSource() {
  ShellState& state = shellState;
  state.mainBounds = platform::windowBounds(state.mainWindow);
  const Point origin = platform::clientOrigin(state.mainWindow);
  Rect source{origin.x, origin.y + state.magnifierTopOffset,
              state.mainBounds.right - state.magnifierRightMargin, state.mainBounds.bottom};
  if (platform::isMaximised(state.mainWindow)) {
    const Size screen = platform::screenSize();
    source.right = screen.width;
    source.bottom = screen.height;
  }
  platform::setMagnifierSource(state.magnifier, source);
  invalidateView();
}

void fitMagnifierToMainWindow() {
  const ShellState& state = shellState;
  const int top = state.magnifierTopOffset;
  if (platform::isMaximised(state.mainWindow)) {
    const Size screen = platform::screenSize();
    platform::fitMagnifier(state.magnifier, {0, top, screen.width, top + screen.height});
    return;
  }
  const Rect client = platform::clientArea(state.mainWindow);
  platform::fitMagnifier(state.magnifier, {client.left, client.top + top,
                                           client.left + client.right - state.magnifierRightMargin,
                                           client.top + top + client.bottom});
}

void invalidateView() {
  platform::invalidateMagnifier(shellState.magnifier);
}

void layOutColourSpace() {
  ShellState& state = shellState;
  if (state.colourSpaceVisible && state.docked) moveColourSpaceBesideMain();
  const Rect client = platform::clientArea(state.colourSpaceWindow);
  const Size size{client.width(), client.height()};
  if (size != state.colourSpaceClientSize) {
    state.colourSpaceClientSize = size;
    resizeDevice(size.width, size.height);
    refreshTransformViews();
  }
  paintControlWindow();
}

void showColourSpace() {
  ShellState& state = shellState;
  if (state.docked) moveColourSpaceBesideMain();
  platform::showWindow(state.colourSpaceWindow, ShowState::Shown);
  state.colourSpaceVisible = true;
}

void hideColourSpace() {
  platform::showWindow(shellState.colourSpaceWindow, ShowState::Hidden);
  shellState.colourSpaceVisible = false;
}

void toggleDocking() {
  shellState.docked = !shellState.docked;
  layOutColourSpace();
}

void toggleFrame() {
  if (shellState.fullScreen) return;
  setFrame(!shellState.framed, platform::isMaximised(shellState.mainWindow));
}

void toggleFrameByCommand() {
  if (shellState.fullScreen) return;
  setFrame(!shellState.framed, false);
}

void toggleHitTransparency() {
  ShellState& state = shellState;
  if (state.fullScreen) return;
  if (state.hitTransparent) {
    platform::showWindow(state.controlWindow, ShowState::Hidden);
    platform::setHitTransparent(state.mainWindow, false);
  } else {
    showControlWindowOverMain();
  }
  state.hitTransparent = !state.hitTransparent;
  paintControlWindow();
}

void toggleFullScreenByKey() {
  toggleFullScreen(true);
}

void toggleFullScreenByCommand() {
  toggleFullScreen(false);
}

void leaveByControlWindow() {
  ShellState& state = shellState;
  platform::showWindow(state.controlWindow, ShowState::Hidden);
  platform::setHitTransparent(state.mainWindow, false);
  paintControlWindow();
  state.hitTransparent = false;
  if (platform::isMaximised(state.mainWindow)) leaveFullScreen();
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
