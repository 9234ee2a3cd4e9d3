#include "shell/view_tracking.h"

#include "platform/magnifier.h"
#include "platform/program.h"
#include "platform/window.h"
#include "shell/shell_state.h"

namespace tintora {

using platform::Point;
using platform::Rect;
using platform::Size;

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
  // Maximised on another monitor, the window may lie right of or below the primary screen.
  if (source.width() <= 0) source.right = state.mainBounds.right;
  if (source.height() <= 0) source.bottom = state.mainBounds.bottom;
  if (source.width() > 0 && source.height() > 0) {
    platform::setMagnifierSource(state.magnifier, source);
  }
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

}  // namespace tintora
