#include "shell/window_procedure.h"

#include <array>

#include "colour_space/camera.h"
#include "platform/keys.h"
#include "platform/menu.h"
#include "shell/clipboard_capture.h"
#include "shell/colour_space_window.h"
#include "shell/commands.h"
#include "shell/control_window.h"
#include "shell/settings_store.h"
#include "shell/shell_state.h"
#include "shell/view_tracking.h"
#include "shell/window_forms.h"

namespace tintora {

namespace {

using platform::Event;
using platform::EventKind;
using platform::Point;
using platform::Rect;

bool isColourSpace(const Event& event) {
  return event.window == shellState.colourSpaceWindow;
}
bool isControl(const Event& event) {
  return event.window == shellState.controlWindow;
}

// Keys outside this range are left to the desktop.
constexpr int firstKey = platform::keys::tab;
constexpr int lastKey = platform::keys::minus;

bool onKeyDown(const Event& event) {
  if (event.key < firstKey || event.key > lastKey) return false;
  runKey(event.key);
  return true;
}

bool onWheelTurned(const Event& event) {
  stepValue(event.wheelUp);
  return true;
}

bool onCommand(const Event& event) {
  runCommand(event.command);
  return true;
}

bool onLeftDown(const Event& event) {
  if (isColourSpace(event)) {
    if (shellState.view == ViewCode::RgbCube) {
      beginDrag(event.position.x, event.position.y);
    }
    return true;
  }
  const Rect bounds = platform::windowBounds(event.window);
  shellState.drag = {true, platform::cursorPosition(), {bounds.left, bounds.top}};
  return true;
}

// Ends the drag in any window, because a fast drag may have left the one where it began.
bool onLeftUp(const Event& /*event*/) {
  shellState.drag.active = false;
  return true;
}

bool onMouseMoved(const Event& event) {
  if (isColourSpace(event)) {
    if (shellState.view == ViewCode::RgbCube) {
      rotateByMouse({event.leftHeld, event.rightHeld, event.shiftHeld}, event.position.x,
                    event.position.y);
    }
    return true;
  }
  const WindowDrag& drag = shellState.drag;
  if (!drag.active) return true;
  const Point cursor = platform::cursorPosition();
  const Rect bounds = platform::windowBounds(event.window);
  const int left = drag.corner.x + cursor.x - drag.cursor.x;
  const int top = drag.corner.y + cursor.y - drag.cursor.y;
  platform::setWindowBounds(event.window,
                            {left, top, left + bounds.width(), top + bounds.height()});
  layOutColourSpace();
  return true;
}

bool onRightUp(const Event& event) {
  platform::trackMenu(shellState.menus.main, platform::cursorPosition(), event.window);
  return true;
}

bool onSized(const Event& event) {
  if (event.kind == EventKind::Sized && event.maximised) shellState.docked = false;
  if (!isControl(event)) followMainWindowSize();
  return false;
}

bool onMoving(const Event& event) {
  if (isColourSpace(event)) {
    shellState.docked = false;
  } else if (event.window == shellState.mainWindow) {
    updateSource();
    layOutColourSpace();
  }
  return false;
}

// During a drag the desktop says that the window is moving before it has moved.
bool onMoved(const Event& event) {
  if (event.window != shellState.mainWindow) return false;
  updateSource();
  layOutColourSpace();
  return false;
}

bool onScreenChanged(const Event& event) {
  if (event.window != shellState.mainWindow) return false;
  fitToScreen();
  return false;
}

// A window in full screen keeps the screen's size. Text follows the scale even if the size stays.
bool onScaleChanged(const Event& event) {
  if (event.window == shellState.mainWindow) {
    fitToScreen();
  } else {
    layOutColourSpace();
  }
  return false;
}

bool onMouseLost(const Event& /*event*/) {
  shellState.drag.active = false;
  return false;
}

bool onSessionEnding(const Event& event) {
  if (event.window == shellState.mainWindow) saveSettings();
  return false;
}

bool onPainting(const Event& /*event*/) {
  paintControlWindow();
  return false;
}

bool onFilesDropped(const Event& /*event*/) {
  paintControlWindow();
  return true;
}

bool onTimerElapsed(const Event& /*event*/) {
  restoreTitle();
  return true;
}

bool onClosing(const Event& event) {
  if (isColourSpace(event)) {
    hideColourSpace();
    return true;
  }
  if (isControl(event)) {
    leaveByControlWindow();
    return true;
  }
  return false;
}

bool onDestroyed(const Event& /*event*/) {
  platform::quit(0);
  return true;
}

bool swallow(const Event& /*event*/) {
  return true;
}

struct EventAction {
  EventKind kind;
  bool (*handle)(const Event& event);
};

constexpr std::array<EventAction, 22> eventActions{{
    {EventKind::KeyDown, &onKeyDown},
    {EventKind::KeyUp, &swallow},
    {EventKind::WheelTurned, &onWheelTurned},
    {EventKind::Command, &onCommand},
    {EventKind::LeftDown, &onLeftDown},
    {EventKind::LeftUp, &onLeftUp},
    {EventKind::RightDown, &swallow},
    {EventKind::RightUp, &onRightUp},
    {EventKind::MouseMoved, &onMouseMoved},
    {EventKind::MouseLost, &onMouseLost},
    {EventKind::Sized, &onSized},
    {EventKind::Sizing, &onSized},
    {EventKind::Moving, &onMoving},
    {EventKind::Moved, &onMoved},
    {EventKind::ScreenChanged, &onScreenChanged},
    {EventKind::ScaleChanged, &onScaleChanged},
    {EventKind::Painting, &onPainting},
    {EventKind::FilesDropped, &onFilesDropped},
    {EventKind::TimerElapsed, &onTimerElapsed},
    {EventKind::Closing, &onClosing},
    {EventKind::Destroyed, &onDestroyed},
    {EventKind::SessionEnding, &onSessionEnding},
}};

}  // namespace

bool handleEvent(const Event& event) {
  for (const auto& [kind, handle] : eventActions) {
    if (kind == event.kind) return handle(event);
  }
  return false;
}

}  // namespace tintora
