// Windows, their events and the event loop. Calls do not report failure unless their comment says
// so.
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

// Returns true if the program needs every mouse move over the window, even without a button held:
// the cube's rotation follows the mouse at all times.
constexpr bool hearsEveryMouseMove(WindowKind kind) {
  return kind == WindowKind::ColourSpace;
}

// Returns true if the loop draws the window's picture, so it has to run when part of the window is
// uncovered. Other windows are painted in their Painting event.
constexpr bool isDrawnByLoop(WindowKind kind) {
  return kind == WindowKind::ColourSpace;
}

// The forms of the main window.
enum class WindowForm { Framed, Frameless, FramedMaximised, FramelessMaximised, FullScreen };

// AsStarted is the state that the desktop requested at start. Shown keeps size and place.
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
  MouseLost,    // the desktop took the mouse away from a drag
  Sized,        // maximised
  Sizing,
  Moving,         // by the user; the window may not be at its new place yet
  Moved,          // the window is at its new place
  ScreenChanged,  // the size of the screen
  ScaleChanged,   // of the window's screen, or the window came to another screen
  Painting,
  FilesDropped,
  TimerElapsed,  // of the one timer of the main window
  Closing,
  Destroyed,
  SessionEnding,  // the process may be ended once this is handled
};

// An event of a window. Only the members named beside its kind are meaningful. From LeftDown to
// LeftUp the main window and the control window get all mouse events, wherever the mouse is. The
// colour space window gets moves only while the mouse is over it.
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

// Handles an event. Returns true if the desktop must not handle it as well.
using EventHandler = bool (*)(const Event&);

// Register the kinds of windows and the handler of all their events; remove both again.
void registerWindowKinds(EventHandler handler);
void unregisterWindowKinds();

// Creates a hidden window with outer bounds in screen coordinates. Returns null on failure.
Window* createWindow(WindowKind kind, const std::string& title, const Rect& bounds);

// Changes the main window's form. Its size and hit transparency stay.
void setWindowForm(Window* window, WindowForm form);

// Passes mouse input through to whatever lies beneath the window, or stops doing so.
void setHitTransparent(Window* window, bool transparent);

// Shows or hides a window.
void showWindow(Window* window, ShowState state);

// Moves and sizes a window by its outer bounds in screen coordinates.
void setWindowBounds(Window* window, const Rect& bounds);

// Returns the outer bounds in screen coordinates.
Rect windowBounds(const Window* window);

// Returns the client area in its own coordinates: left and top are 0.
Rect clientArea(const Window* window);

// Returns the screen coordinates of the client area's top left corner.
Point clientOrigin(const Window* window);

// Returns the scale of the window's screen, 1 at 96 dpi. Text and places on a canvas and on a
// graphics device are multiplied by it; bounds are in the screen's own pixels.
double windowScale(const Window* window);

// Returns true if the window fills the screen in one of the maximised forms.
bool isMaximised(const Window* window);

// Sets the window's title.
void setTitle(Window* window, const std::string& title);

// Returns the title, cut off after this number of characters.
std::string windowTitle(const Window* window, std::size_t most);

// Requests that the whole window is painted again.
void invalidateWindow(Window* window);

// Accepts dropped files, or stops accepting them.
void acceptDroppedFiles(Window* window, bool accept);

// Starts the one timer of a window. It elapses at this interval until it is stopped.
void startTimer(Window* window, int milliseconds);

// Stops the timer of a window.
void stopTimer(Window* window);

// Return true if the left or the right one of these keys was down when the current event happened.
bool isShiftDown();
bool isControlDown();

// Returns the cursor's place on the screen.
Point cursorPosition();

// Shows the cursor, or hides it while it is over the program's windows.
void showCursor(bool shown);

// Waits for the next event and passes it to the handler. Returns false if the loop must end.
bool handleNextEvent();

// Handles the events that are waiting, without waiting for more.
void handleWaitingEvents();

// Ends the loop with the exit status of the program.
void quit(int result);

// Returns the exit status with which the loop ended.
int quitResult();

}  // namespace tintora::platform
