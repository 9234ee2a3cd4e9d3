#include "shell/colour_space_window.h"

#include <array>
#include <string>

#include "colour_space/colour_space_view.h"
#include "colour_space/frame.h"
#include "colour_space/renderer.h"
#include "platform/window.h"
#include "shell/control_window.h"
#include "shell/shell_state.h"

namespace tintora {

namespace {

using platform::Rect;
using platform::ShowState;
using platform::Size;

constexpr int dockingGap = 4;

struct ViewCaption {
  ViewCode view;
  const char* caption;
};
constexpr std::array<ViewCaption, 4> viewCaptions{{
    {ViewCode::ResponseCurves, "Photoreceptor Response Curves"},
    {ViewCode::RgbCube, "RGB Cube"},
    {ViewCode::ChromaticityDiagram, "Chromaticity Diagram"},
    {ViewCode::Help, "Help"},
}};

void moveColourSpaceBesideMain() {
  platform::Window* const window = shellState.colourSpaceWindow;
  const Rect bounds = platform::windowBounds(window);
  // Asks the desktop: during a drag, shellState.mainBounds is one move behind.
  const Rect main = platform::windowBounds(shellState.mainWindow);
  const int left = main.right + dockingGap;
  const int top = main.top;
  platform::setWindowBounds(window, {left, top, left + bounds.width(), top + bounds.height()});
}

}  // namespace

void layOutColourSpace() {
  ShellState& state = shellState;
  if (state.colourSpaceVisible && state.docked) moveColourSpaceBesideMain();
  const Rect client = platform::clientArea(state.colourSpaceWindow);
  const Size size{client.width(), client.height()};
  const double scale = platform::windowScale(state.colourSpaceWindow);
  if (size != state.colourSpaceClientSize || scale != state.colourSpaceScale) {
    state.colourSpaceClientSize = size;
    state.colourSpaceScale = scale;
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

void renderColourSpace() {
  const ShellState& state = shellState;
  if (!state.colourSpaceVisible) return;
  const std::string title = platform::windowTitle(state.mainWindow, titleLength);
  for (const auto& [view, caption] : viewCaptions) {
    if (view != state.view) continue;
    platform::setTitle(state.colourSpaceWindow, caption);
    colourSpaceView.viewCode = view;
    colourSpaceView.titleText = title;
  }
  renderFrame();
}

}  // namespace tintora
