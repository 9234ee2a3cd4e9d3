// Windows, what happens to them, and the loop that brings it in. No call reports a failure unless
// it says so.
#pragma once

#include <cstddef>
#include <string>

#include "platform/geometry.h"

namespace tintora::platform {

// A window of the program's own.
struct Window;

enum class WindowKind {
  Main,         // a resizable frame, always on top
  Control,      // a small captioned window, always on top
  ColourSpace,  // a resizable frame, always on top
};

// Returns true if the program wants to be told of every mouse move over the window, and not only of
// those with a button held: the cube's rotation follows the mouse at all times.
constexpr bool hearsEveryMouseMove(WindowKind kind) {
  return kind == WindowKind::ColourSpace;
}

// Returns true if the loop has to go round when part of the window is uncovered, because that is
// when its picture is drawn. Other windows are painted in their Painting event.
constexpr bool isDrawnByLoop(WindowKind kind) {
  return kind == WindowKind::ColourSpace;
}

// Returns true if the program wants to be told when the desktop moves the window, and not only when
// the user does.
constexpr bool hearsMovesByDesktop(WindowKind kind) {
  return kind == WindowKind::Main;
}

// The forms of the main window.
enum class WindowForm { Framed, Frameless, FramedMaximised, FramelessMaximised, FullScreen };

// AsStarted is how the desktop asked the program to appear; Shown keeps size and place.
enum class ShowState { Hidden, Shown, AsStarted, Normal, Maximised };

enum class EventKind {
  KeyDown,      // key
  KeyUp,        // key
  WheelTurned,  // wheelUp
  Command,      // command
  LeftDown,     // position
  LeftUp,       // position
  RightDown,    // position
  RightUp,      // position
  MouseMoved,   // position, leftHeld, rightHeld, shiftHeld
  Sized,        // maximised
  Sizing,
  Moving,
  Painting,
  FilesDropped,
  TimerElapsed,  // of the one timer of the main window
  Closing,
  Destroyed,
};

// One thing that happened to a window; only the members named with its kind count.
struct Event {
  EventKind kind;
  Window* window = nullptr;
  int key = 0;  // virtual-key code
  bool wheelUp = false;
  int command = 0;   // menu command, 0..65535
  Point position{};  // in the window's client area
  bool leftHeld = false;
  bool rightHeld = false;
  bool shiftHeld = false;
  bool maximised = false;
};

// Takes an event; true where the desktop's own handling must not follow.
using EventHandler = bool (*)(const Event&);

// Prepares the kinds of windows and takes the handler for all events; the counterpart lets both go.
void registerWindowKinds(EventHandler handler);
void unregisterWindowKinds();

// Creates a window, hidden, with outer bounds in screen coordinates; null where it cannot be had.
Window* createWindow(WindowKind kind, const std::string& title, const Rect& bounds);

// Puts the main window into a form; its size and hit transparency stay.
void setWindowForm(Window* window, WindowForm form);

// Lets mouse input through to what lies beneath the window, or takes it again.
void setHitTransparent(Window* window, bool transparent);

// Shows or hides a window.
void showWindow(Window* window, ShowState state);

// Moves and sizes a window by its outer bounds in screen coordinates.
void setWindowBounds(Window* window, const Rect& bounds);

// The outer bounds in screen coordinates.
Rect windowBounds(const Window* window);

// The client area in its own coordinates: left and top are 0.
Rect clientArea(const Window* window);

// The screen coordinates of the client area's left top corner.
Point clientOrigin(const Window* window);

// Whether the window fills the screen in one of the maximised forms.
bool isMaximised(const Window* window);

// Gives the window its title.
void setTitle(Window* window, const std::string& title);

// The first characters of the title, as many as are asked for at most.
std::string windowTitle(const Window* window, std::size_t most);

// Has the whole window painted again.
void invalidateWindow(Window* window);

// Takes files that are dropped on the window, or no longer.
void acceptDroppedFiles(Window* window, bool accept);

// Starts the one timer of a window, which elapses every so many milliseconds until it is stopped.
void startTimer(Window* window, int milliseconds);

// Stops the timer of a window.
void stopTimer(Window* window);

// Whether the left or the right of these keys is down, as of the event being handled.
bool isShiftDown();
bool isControlDown();

// The cursor's place on the screen.
Point cursorPosition();

// Shows the cursor, or hides it while it is over the program's windows.
void showCursor(bool shown);

// Waits for the next event and has it handled; false when the program was told to end.
bool handleNextEvent();

// Handles the events that wait, without waiting for more.
void handleWaitingEvents();

// Ends the loop; its result becomes the program's.
void quit(int result);

// The result that the loop ended with.
int quitResult();

}  // namespace tintora::platform
