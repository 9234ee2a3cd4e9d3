#include "shell/window_forms.h"

#include "platform/magnifier.h"
#include "platform/program.h"
#include "platform/window.h"
#include "shell/colour_space_window.h"
#include "shell/control_window.h"
#include "shell/shell_state.h"
#include "shell/view_tracking.h"

namespace tintora {

namespace {

using platform::Rect;
using platform::ShowState;
using platform::Size;
using platform::WindowForm;

constexpr const char* fullScreenText = "Full screen mode, press F to exit";

Rect wholeScreen() {
  const Size screen = platform::screenSize();
  return {0, 0, screen.width, screen.height};
}

void becomeHitTransparent() {
  showControlWindow();
  platform::setHitTransparent(shellState.mainWindow, true);
}

void setFrame(bool framed, bool maximised) {
  ShellState& state = shellState;
  const WindowForm normal = framed ? WindowForm::Framed : WindowForm::Frameless;
  const WindowForm large = framed ? WindowForm::FramedMaximised : WindowForm::FramelessMaximised;
  platform::setWindowForm(state.mainWindow, maximised ? large : normal);
  state.framed = framed;
  platform::showWindow(state.mainWindow, ShowState::Shown);
  followMainWindowSize();
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
    becomeHitTransparent();
    state.hitTransparent = true;
  }
  state.fullScreen = true;
}

void leaveFullScreen() {
  ShellState& state = shellState;
  // On the way back the window may come to another scale, and must not be fitted to the screen.
  state.fullScreen = false;
  platform::setWindowForm(state.mainWindow, WindowForm::Framed);
  platform::setHitTransparent(state.mainWindow, false);
  state.framed = true;
  platform::setWindowBounds(state.mainWindow, state.boundsBeforeFullScreen);
  platform::showWindow(state.mainWindow, ShowState::Normal);
  fitMagnifierToMainWindow();
  updateSource();
  state.controlText = hitTransparentText;
  hideControlWindow();
  state.hitTransparent = false;
}

void toggleFullScreen(bool byKey) {
  if (platform::isMaximised(shellState.mainWindow)) {
    leaveFullScreen();
  } else {
    enterFullScreen(byKey);
  }
}

}  // namespace

void followMainWindowSize() {
  fitMagnifierToMainWindow();
  updateSource();
  layOutColourSpace();
}

void fitToScreen() {
  if (shellState.fullScreen) platform::setWindowBounds(shellState.mainWindow, wholeScreen());
  followMainWindowSize();
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
    hideControlWindow();
    platform::setHitTransparent(state.mainWindow, false);
  } else {
    becomeHitTransparent();
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
  hideControlWindow();
  platform::setHitTransparent(state.mainWindow, false);
  paintControlWindow();
  state.hitTransparent = false;
  if (platform::isMaximised(state.mainWindow)) leaveFullScreen();
}

}  // namespace tintora
