#include "platform/windows/event_loop.h"

#include <windows.h>
#include <shellapi.h>
#include <windowsx.h>

#include "platform/windows/handles.h"
#include "platform/windows/magnifier.h"
#include "platform/windows/resolution.h"
#include "platform/windows/view_pace.h"

namespace tintora::platform {

namespace {

constexpr UINT_PTR timerId = 0;

EventHandler eventHandler = nullptr;
bool told = false;  // whether the handler got an event since the shell's last turn
int exitCode = 0;

bool handle(const Event& event) {
  told = true;
  return eventHandler(event);
}

// The window's user data holds its kind plus one. 0 means that the window is not known yet.
bool isKnown(HWND window) {
  return GetWindowLongPtrW(window, GWLP_USERDATA) != 0;
}
WindowKind kindOf(HWND window) {
  return static_cast<WindowKind>(GetWindowLongPtrW(window, GWLP_USERDATA) - 1);
}

Event at(EventKind kind, Window* window, LPARAM place) {
  return {.kind = kind, .window = window, .position = {GET_X_LPARAM(place), GET_Y_LPARAM(place)}};
}

bool onMouseMoved(Window* window, WPARAM held, LPARAM place) {
  Event event = at(EventKind::MouseMoved, window, place);
  event.leftHeld = (held & MK_LBUTTON) != 0;
  event.rightHeld = (held & MK_RBUTTON) != 0;
  event.shiftHeld = (held & MK_SHIFT) != 0;
  return handle(event);
}

// Captures the mouse, so that a drag continues outside the window. Drags in the colour space window
// stop at its edge.
bool onLeftDown(Window* window, LPARAM place) {
  if (kindOf(native(window)) != WindowKind::ColourSpace) {
    SetCapture(native(window));
    if (GetCapture() == native(window)) holdSize(native(window));
  }
  return handle(at(EventKind::LeftDown, window, place));
}

bool onLeftUp(Window* window, LPARAM place) {
  const bool handled = handle(at(EventKind::LeftUp, window, place));
  if (GetCapture() == native(window)) ReleaseCapture();
  return handled;
}

bool onMouseLost(Window* window) {
  const bool handled = handle({.kind = EventKind::MouseLost, .window = window});
  releaseSize(native(window));
  return handled;
}

// Draws the view at once if the window is being moved. Windows handles paints only after all input,
// so the picture would stay behind the frame.
bool onPlaced(const Event& event) {
  followMonitor();
  const bool handled = handle(event);
  if (isBeingMoved(native(event.window))) UpdateWindow(viewWindow());
  return handled;
}

// Reads only the length of the first file name, and does not release the drop.
bool onFilesDropped(Window* window, HDROP drop) {
  DragQueryFileW(drop, 0, nullptr, 0);
  return handle({.kind = EventKind::FilesDropped, .window = window});
}

bool onResolutionChanged(Window* window, const Rect& suggested) {
  takeSuggestedBounds(native(window), suggested);
  handle({.kind = EventKind::ScaleChanged, .window = window});
  return true;
}

// Returns true if the message's default handling waits until a button on the frame is released,
// without saying when it begins and ends.
constexpr bool tracksFrameButton(UINT message) {
  return message == WM_NCLBUTTONDOWN || message == WM_NCRBUTTONDOWN;
}

bool handleMessage(Window* window, UINT message, WPARAM first, LPARAM second) {
  switch (message) {
    case WM_KEYDOWN:
      return handle({.kind = EventKind::KeyDown, .window = window, .key = static_cast<int>(first)});
    case WM_KEYUP:
      return handle({.kind = EventKind::KeyUp, .window = window, .key = static_cast<int>(first)});
    case WM_MOUSEWHEEL:
      return handle({.kind = EventKind::WheelTurned,
                     .window = window,
                     .wheelUp = GET_WHEEL_DELTA_WPARAM(first) > 0});
    case WM_COMMAND:
      return handle({.kind = EventKind::Command, .window = window, .command = LOWORD(first)});
    case WM_LBUTTONDOWN:
      return onLeftDown(window, second);
    case WM_LBUTTONUP:
      return onLeftUp(window, second);
    case WM_RBUTTONDOWN:
      return handle(at(EventKind::RightDown, window, second));
    case WM_RBUTTONUP:
      return handle(at(EventKind::RightUp, window, second));
    case WM_MOUSEMOVE:
      return onMouseMoved(window, first, second);
    case WM_CAPTURECHANGED:
      return onMouseLost(window);
    case WM_SIZE:
      return onPlaced(
          {.kind = EventKind::Sized, .window = window, .maximised = first == SIZE_MAXIMIZED});
    case WM_SIZING:
      return handle({.kind = EventKind::Sizing, .window = window});
    case WM_MOVING:
      return handle({.kind = EventKind::Moving, .window = window});
    case WM_MOVE:
      return onPlaced({.kind = EventKind::Moved, .window = window});
    case WM_PAINT:
      return handle({.kind = EventKind::Painting, .window = window});
    case WM_DROPFILES:
      return onFilesDropped(window, reinterpret_cast<HDROP>(first));
    case WM_DISPLAYCHANGE:
      forgetPace();
      return handle({.kind = EventKind::ScreenChanged, .window = window});
    case WM_DPICHANGED:
      return onResolutionChanged(window, fromNative(*reinterpret_cast<const RECT*>(second)));
    case WM_ENDSESSION:
      // The desktop may end the process as soon as this returns.
      return first != FALSE && handle({.kind = EventKind::SessionEnding, .window = window});
    case WM_ENTERMENULOOP:
    case WM_ENTERSIZEMOVE:
      beginModalLoop();
      return false;
    case WM_EXITMENULOOP:
    case WM_EXITSIZEMOVE:
      endModalLoop();
      return false;
    case pictureDue:
      drawDuePicture();
      return true;
    case WM_CLOSE:
      return handle({.kind = EventKind::Closing, .window = window});
    case WM_DESTROY:
      return handle({.kind = EventKind::Destroyed, .window = window});
    default:
      return false;
  }
}

void CALLBACK timerElapsed(HWND window, UINT /*message*/, UINT_PTR /*id*/, DWORD /*time*/) {
  handle({.kind = EventKind::TimerElapsed, .window = fromNative(window)});
}

void dispatch(const MSG& message) {
  TranslateMessage(&message);
  DispatchMessageW(&message);
}

bool isDown(int key) {
  return GetKeyState(key) < 0;
}

bool onlyPaintsWait() {
  MSG message{};
  return PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE) != 0 && message.message == WM_PAINT;
}

// Takes a timer message that is due. Windows would deliver it only after all paints, and there is
// always something to paint. WM_QUIT is returned too, whatever the filter.
bool takeTimer(MSG& message) {
  return PeekMessageW(&message, nullptr, WM_TIMER, WM_TIMER, PM_REMOVE) != 0;
}

}  // namespace

void setEventHandler(EventHandler handler) {
  eventHandler = handler;
}

void translateEvents(HWND window, WindowKind kind) {
  SetWindowLongPtrW(window, GWLP_USERDATA, static_cast<LONG_PTR>(kind) + 1);
  acceptSize(window);
}

LRESULT CALLBACK windowProcedure(HWND window, UINT message, WPARAM first, LPARAM second) {
  if (isKnown(window) && handleMessage(fromNative(window), message, first, second)) return 0;
  if (!tracksFrameButton(message)) return DefWindowProcW(window, message, first, second);
  beginModalLoop();
  const LRESULT result = DefWindowProcW(window, message, first, second);
  endModalLoop();
  return result;
}

void startTimer(Window* window, int milliseconds) {
  SetTimer(native(window), timerId, static_cast<UINT>(milliseconds), &timerElapsed);
}

void stopTimer(Window* window) {
  KillTimer(native(window), timerId);
}

bool isShiftDown() {
  return isDown(VK_LSHIFT) || isDown(VK_RSHIFT);
}

bool isControlDown() {
  return isDown(VK_LCONTROL) || isDown(VK_RCONTROL);
}

Point cursorPosition() {
  POINT place{};
  GetCursorPos(&place);
  return {static_cast<int>(place.x), static_cast<int>(place.y)};
}

void showCursor(bool shown) {
  ShowCursor(shown ? TRUE : FALSE);
}

bool handleNextEvent() {
  // Looking for messages handles those that were sent instead of posted.
  told = false;
  MSG message{};
  while (!takeTimer(message)) {
    if (!onlyPaintsWait()) {
      GetMessageW(&message, nullptr, 0, 0);
      break;
    }
    if (!awaitNextPicture()) continue;
    paintWaitingWindows();
    if (told) return true;
    // Refreshing the view is not an event, so the shell does not take its turn.
    refreshView();
  }
  if (message.message == WM_QUIT) {
    exitCode = static_cast<int>(message.wParam);
    return false;
  }
  dispatch(message);
  return true;
}

void handleWaitingEvents() {
  MSG message{};
  while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != 0) {
    if (message.message == WM_QUIT) {
      // Post it again, so that the event loop sees it.
      PostQuitMessage(static_cast<int>(message.wParam));
      return;
    }
    dispatch(message);
  }
}

void quit(int exitResult) {
  PostQuitMessage(exitResult);
}

int quitResult() {
  return exitCode;
}

}  // namespace tintora::platform
