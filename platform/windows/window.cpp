#include "platform/window.h"

#include <windows.h>
#include <shellapi.h>

#include <array>
#include <string>

#include "platform/windows/composition.h"
#include "platform/windows/event_loop.h"
#include "platform/windows/handles.h"
#include "platform/windows/resolution.h"
#include "platform/windows/scale.h"
#include "platform/windows/table.h"
#include "platform/windows/text.h"

namespace tintora::platform {

namespace {

struct WindowKindFacts {
  const wchar_t* className;
  DWORD extendedStyle;
  DWORD style;
};

constexpr const wchar_t* mainClass = L"WindowClassZub";
constexpr const wchar_t* otherClass = L"WindowClassZub2";

// Indexed by WindowKind.
constexpr std::array<WindowKindFacts, 3> windowKinds{{
    {mainClass, WS_EX_LAYERED | WS_EX_TOPMOST, WS_OVERLAPPEDWINDOW},
    {otherClass, WS_EX_TOPMOST, WS_CAPTION | WS_SYSMENU | WS_MINIMIZEBOX},
    {otherClass, WS_EX_TOPMOST, WS_OVERLAPPEDWINDOW},
}};

// Indexed by WindowForm.
constexpr std::array<DWORD, 5> formStyles{
    WS_OVERLAPPEDWINDOW,
    WS_POPUP | WS_BORDER,
    WS_OVERLAPPEDWINDOW | WS_MAXIMIZE,
    WS_POPUP | WS_BORDER | WS_MAXIMIZE,
    WS_POPUP | WS_MAXIMIZE,
};

// Returns the show command that the program was started with.
int startUpShowCommand() {
  STARTUPINFOW facts{};
  facts.cb = sizeof facts;
  GetStartupInfoW(&facts);
  return (facts.dwFlags & STARTF_USESHOWWINDOW) != 0 ? facts.wShowWindow : SW_SHOWDEFAULT;
}

// Returns the show commands, indexed by ShowState.
std::array<int, 5> showCommands() {
  return {SW_HIDE, SW_SHOW, startUpShowCommand(), SW_SHOWNORMAL, SW_SHOWMAXIMIZED};
}

constexpr int iconResource = 101;

// The style bits that the window forms differ in. The others are left alone.
constexpr DWORD formBits = WS_OVERLAPPEDWINDOW | WS_POPUP | WS_BORDER | WS_MAXIMIZE;

// Makes a layered window opaque. It shows nothing before that, and again after each change of its
// style.
void setOpaque(HWND window) {
  SetLayeredWindowAttributes(window, 0, 255, LWA_ALPHA);
}

// Replaces some bits of a style and keeps the others, which the desktop and other calls have set.
void setStyle(HWND window, int which, DWORD bits, DWORD values) {
  const auto now = static_cast<DWORD>(GetWindowLongPtrW(window, which));
  SetWindowLongPtrW(window, which, static_cast<LONG_PTR>((now & ~bits) | values));
}

void registerWindowClass(const wchar_t* name) {
  const HINSTANCE program = GetModuleHandleW(nullptr);
  WNDCLASSEXW facts{};
  facts.cbSize = sizeof facts;
  facts.style = CS_HREDRAW | CS_VREDRAW;
  facts.lpfnWndProc = &windowProcedure;
  facts.hInstance = program;
  facts.hIcon = LoadIconW(program, MAKEINTRESOURCEW(iconResource));
  facts.hCursor = LoadCursorW(nullptr, MAKEINTRESOURCEW(32512));  // the arrow
  facts.lpszClassName = name;
  RegisterClassExW(&facts);
}

std::wstring textOf(HWND window) {
  std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(window)) + 1, L'\0');
  const int length = GetWindowTextW(window, text.data(), static_cast<int>(text.size()));
  text.resize(static_cast<std::size_t>(length));
  return text;
}

}  // namespace

void registerWindowKinds(EventHandler handler) {
  setEventHandler(handler);
  registerWindowClass(mainClass);
  registerWindowClass(otherClass);
}

void unregisterWindowKinds() {
  UnregisterClassW(mainClass, GetModuleHandleW(nullptr));
  UnregisterClassW(otherClass, GetModuleHandleW(nullptr));
}

Window* createWindow(WindowKind kind, const std::string& title, const Rect& bounds) {
  const WindowKindFacts& facts = at(windowKinds, kind);
  const HWND window =
      CreateWindowExW(facts.extendedStyle, facts.className, wide(title).c_str(), facts.style,
                      bounds.left, bounds.top, bounds.width(), bounds.height(), nullptr, nullptr,
                      GetModuleHandleW(nullptr), nullptr);
  if (window == nullptr) return nullptr;
  if ((facts.extendedStyle & WS_EX_LAYERED) != 0) setOpaque(window);
  if (kind == WindowKind::Main) keepCornersSquare(window);
  translateEvents(window, kind);
  return fromNative(window);
}

void setWindowForm(Window* window, WindowForm form) {
  const HWND handle = native(window);
  setStyle(handle, GWL_STYLE, formBits, at(formStyles, form));
  setOpaque(handle);
  // Apply the frame of the new style.
  SetWindowPos(handle, nullptr, 0, 0, 0, 0,
               SWP_FRAMECHANGED | SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void setHitTransparent(Window* window, bool transparent) {
  const HWND handle = native(window);
  constexpr DWORD bits = WS_EX_LAYERED | WS_EX_TOPMOST | WS_EX_TRANSPARENT;
  setStyle(handle, GWL_EXSTYLE, bits, transparent ? bits : bits & ~DWORD{WS_EX_TRANSPARENT});
  setOpaque(handle);
}

void showWindow(Window* window, ShowState state) {
  ShowWindow(native(window), at(showCommands(), state));
}

void setWindowBounds(Window* window, const Rect& bounds) {
  placeWindow(native(window), bounds);
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

double windowScale(const Window* window) {
  return scaleOf(native(window));
}

bool isMaximised(const Window* window) {
  return IsZoomed(native(window)) != 0;
}

// Skips an unchanged title, which would repaint the caption and notify screen readers.
void setTitle(Window* window, const std::string& title) {
  const std::wstring text = wide(title);
  if (textOf(native(window)) != text) SetWindowTextW(native(window), text.c_str());
}

std::string windowTitle(const Window* window, std::size_t most) {
  return narrow(textOf(native(window))).substr(0, most);
}

void invalidateWindow(Window* window) {
  InvalidateRect(native(window), nullptr, TRUE);
}

void acceptDroppedFiles(Window* window, bool accept) {
  DragAcceptFiles(native(window), accept ? TRUE : FALSE);
}

}  // namespace tintora::platform
