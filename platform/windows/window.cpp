#include "platform/window.h"

#include <windows.h>
#include <shellapi.h>
#include <windowsx.h>

#include <array>
#include <string>

#include "platform/windows/handles.h"

namespace tintora::platform {

namespace {

struct WindowKindFacts {
  const char* className;
  DWORD extendedStyle;
  DWORD style;
};

constexpr const char* mainClass = "WindowClassZub";
constexpr const char* otherClass = "WindowClassZub2";

// By WindowKind.
constexpr std::array<WindowKindFacts, 3> windowKinds{{
    {mainClass, WS_EX_LAYERED | WS_EX_TOPMOST, WS_OVERLAPPEDWINDOW},
    {otherClass, WS_EX_TOPMOST, WS_CAPTION | WS_SYSMENU | WS_MINIMIZEBOX},
    {otherClass, WS_EX_TOPMOST, WS_OVERLAPPEDWINDOW},
}};

// By WindowForm.
constexpr std::array<DWORD, 5> formStyles{
    WS_OVERLAPPEDWINDOW,
    WS_POPUP | WS_BORDER,
    WS_OVERLAPPEDWINDOW | WS_MAXIMIZE,
    WS_POPUP | WS_BORDER | WS_MAXIMIZE,
    WS_POPUP | WS_MAXIMIZE,
};

// What whoever started the program asked for.
int startUpShowCommand() {
  STARTUPINFOA facts{};
  facts.cb = sizeof facts;
  GetStartupInfoA(&facts);
  return (facts.dwFlags & STARTF_USESHOWWINDOW) != 0 ? facts.wShowWindow : SW_SHOWDEFAULT;
}

// By ShowState.
std::array<int, 5> showCommands() {
  return {SW_HIDE, SW_SHOW, startUpShowCommand(), SW_SHOWNORMAL, SW_SHOWMAXIMIZED};
}

constexpr int iconResource = 101;
constexpr UINT_PTR timerId = 0;

EventHandler eventHandler = nullptr;
int result = 0;

template <typename Value, std::size_t size, typename Index>
const Value& at(const std::array<Value, size>& table, Index index) {
  return table[static_cast<std::size_t>(index)];
}

// A layered window shows nothing until it is told how opaque it is, and again after every new
// style.
void setOpaque(HWND window) {
  SetLayeredWindowAttributes(window, 0, 255, LWA_ALPHA);
}

bool handle(const Event& event) {
  return eventHandler(event);
}

Event at(EventKind kind, Window* window, LPARAM place) {
  return {.kind = kind, .window = window, .position = {GET_X_LPARAM(place), GET_Y_LPARAM(place)}};
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
      return handle(at(EventKind::LeftDown, window, second));
    case WM_LBUTTONUP:
      return handle(at(EventKind::LeftUp, window, second));
    case WM_RBUTTONDOWN:
      return handle(at(EventKind::RightDown, window, second));
    case WM_RBUTTONUP:
      return handle(at(EventKind::RightUp, window, second));
    case WM_MOUSEMOVE: {
      Event event = at(EventKind::MouseMoved, window, second);
      event.leftHeld = (first & MK_LBUTTON) != 0;
      event.rightHeld = (first & MK_RBUTTON) != 0;
      event.shiftHeld = (first & MK_SHIFT) != 0;
      return handle(event);
    }
    case WM_SIZE:
      return handle(
          {.kind = EventKind::Sized, .window = window, .maximised = first == SIZE_MAXIMIZED});
    case WM_SIZING:
      return handle({.kind = EventKind::Sizing, .window = window});
    case WM_MOVING:
      return handle({.kind = EventKind::Moving, .window = window});
    case WM_PAINT:
      return handle({.kind = EventKind::Painting, .window = window});
    case WM_DROPFILES:
      // Asked for and not used; the drop stays with the desktop.
      DragQueryFileA(reinterpret_cast<HDROP>(first), 0, nullptr, 0);
      return handle({.kind = EventKind::FilesDropped, .window = window});
    case WM_CLOSE:
      return handle({.kind = EventKind::Closing, .window = window});
    case WM_DESTROY:
      return handle({.kind = EventKind::Destroyed, .window = window});
    default:
      return false;
  }
}

LRESULT CALLBACK windowProcedure(HWND window, UINT message, WPARAM first, LPARAM second) {
  // Nothing comes from a window that the program does not know yet.
  const bool known = GetWindowLongPtrA(window, GWLP_USERDATA) != 0;
  if (known && handleMessage(fromNative(window), message, first, second)) return 0;
  return DefWindowProcA(window, message, first, second);
}

void CALLBACK timerElapsed(HWND window, UINT /*message*/, UINT_PTR /*id*/, DWORD /*time*/) {
  handle({.kind = EventKind::TimerElapsed, .window = fromNative(window)});
}

void registerWindowClass(const char* name) {
  const HINSTANCE program = GetModuleHandleA(nullptr);
  WNDCLASSEXA facts{};
  facts.cbSize = sizeof facts;
  facts.style = CS_HREDRAW | CS_VREDRAW;
  facts.lpfnWndProc = &windowProcedure;
  facts.hInstance = program;
  facts.hIcon = LoadIconA(program, MAKEINTRESOURCEA(iconResource));
  facts.hCursor = LoadCursorA(nullptr, MAKEINTRESOURCEA(32512));  // the arrow
  facts.lpszClassName = name;
  RegisterClassExA(&facts);
}

void dispatch(const MSG& message) {
  TranslateMessage(&message);
  DispatchMessageA(&message);
}

bool isDown(int key) {
  return GetKeyState(key) < 0;
}

}  // namespace

void registerWindowKinds(EventHandler handler) {
  eventHandler = handler;
  registerWindowClass(mainClass);
  registerWindowClass(otherClass);
}

void unregisterWindowKinds() {
  UnregisterClassA(mainClass, GetModuleHandleA(nullptr));
  UnregisterClassA(otherClass, GetModuleHandleA(nullptr));
}

Window* createWindow(WindowKind kind, const std::string& title, const Rect& bounds) {
  const WindowKindFacts& facts = at(windowKinds, kind);
  const HWND window = CreateWindowExA(
      facts.extendedStyle, facts.className, title.c_str(), facts.style, bounds.left, bounds.top,
      bounds.width(), bounds.height(), nullptr, nullptr, GetModuleHandleA(nullptr), nullptr);
  if (window == nullptr) return nullptr;
  if ((facts.extendedStyle & WS_EX_LAYERED) != 0) setOpaque(window);
  SetWindowLongPtrA(window, GWLP_USERDATA, 1);
  return fromNative(window);
}

void setWindowForm(Window* window, WindowForm form) {
  const HWND handle = native(window);
  SetWindowLongPtrA(handle, GWL_STYLE, static_cast<LONG_PTR>(at(formStyles, form)));
  setOpaque(handle);
  // The frame that the new style has or lacks.
  SetWindowPos(handle, nullptr, 0, 0, 0, 0,
               SWP_FRAMECHANGED | SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void setHitTransparent(Window* window, bool transparent) {
  const HWND handle = native(window);
  const DWORD style = WS_EX_LAYERED | WS_EX_TOPMOST | (transparent ? WS_EX_TRANSPARENT : DWORD{0});
  SetWindowLongPtrA(handle, GWL_EXSTYLE, static_cast<LONG_PTR>(style));
  setOpaque(handle);
}

void showWindow(Window* window, ShowState state) {
  ShowWindow(native(window), at(showCommands(), state));
}

void setWindowBounds(Window* window, const Rect& bounds) {
  SetWindowPos(native(window), nullptr, bounds.left, bounds.top, bounds.width(), bounds.height(),
               SWP_NOZORDER | SWP_NOACTIVATE);
}

Rect windowBounds(const Window* window) {
  RECT bounds{};
  GetWindowRect(native(window), &bounds);
  return fromNative(bounds);
}

Rect clientArea(const Window* window) {
  RECT area{};
  GetClientRect(native(window), &area);
  return fromNative(area);
}

Point clientOrigin(const Window* window) {
  POINT origin{};
  ClientToScreen(native(window), &origin);
  return {static_cast<int>(origin.x), static_cast<int>(origin.y)};
}

bool isMaximised(const Window* window) {
  return IsZoomed(native(window)) != 0;
}

void setTitle(Window* window, const std::string& title) {
  SetWindowTextA(native(window), title.c_str());
}

std::string windowTitle(const Window* window, std::size_t most) {
  std::string title(most + 1, '\0');
  const int length = GetWindowTextA(native(window), title.data(), static_cast<int>(title.size()));
  title.resize(static_cast<std::size_t>(length));
  return title;
}

void invalidateWindow(Window* window) {
  InvalidateRect(native(window), nullptr, TRUE);
}

void acceptDroppedFiles(Window* window, bool accept) {
  DragAcceptFiles(native(window), accept ? TRUE : FALSE);
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
  MSG message{};
  // A timer that is due goes first: while something is always left to paint, as with a view that is
  // drawn anew after every message, the desktop would never come to it.
  const bool timerIsDue = PeekMessageA(&message, nullptr, WM_TIMER, WM_TIMER, PM_REMOVE) != 0;
  const bool ends = !timerIsDue && GetMessageA(&message, nullptr, 0, 0) <= 0;
  if (ends || message.message == WM_QUIT) {
    result = static_cast<int>(message.wParam);
    return false;
  }
  dispatch(message);
  return true;
}

void handleWaitingEvents() {
  MSG message{};
  while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE) != 0) {
    if (message.message == WM_QUIT) {
      // For the loop, which must see it.
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
  return result;
}

}  // namespace tintora::platform
