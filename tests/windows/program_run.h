// Runs the program under test: finds its windows, sends input and reads what it does.
#pragma once

#include <windows.h>
#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "magnifier_record.h"
#include "process.h"

namespace tintora::windows_test {

struct ProgramWindows {
  HWND main = nullptr;
  HWND magnifier = nullptr;
  HWND control = nullptr;
  HWND colourSpace = nullptr;
};

// Bounds in screen pixels. Right and bottom are exclusive.
struct Bounds {
  LONG left = 0;
  LONG top = 0;
  LONG right = 0;
  LONG bottom = 0;
  bool operator==(const Bounds&) const = default;

  LONG width() const { return right - left; }
  LONG height() const { return bottom - top; }
};
std::ostream& operator<<(std::ostream& out, const Bounds& bounds);

struct MenuItem {
  int depth = 0;
  UINT type = 0;
  UINT state = 0;
  UINT command = 0;
  bool submenu = false;
  std::string text;
};

std::string titleOf(HWND window);
std::wstring wideTitleOf(HWND window);

// Returns the state of a window's thread: open menu, drag, mouse capture.
GUITHREADINFO threadOf(HWND window);
Bounds boundsOf(HWND window);
Bounds clientBoundsOf(HWND window);
Bounds boundsOf(const RECT& rectangle);
Bounds screenBounds();

// Wine's settings of Direct3D for the program, in the registry.
constexpr const char* direct3dKey = "Software\\Wine\\AppDefaults\\Tintora.exe\\Direct3D";

// Returns the record that all programs started by the tests write to.
MagnifierRecord& magnifierRecord();

// Returns the top-level windows of a process that have this class name.
std::vector<HWND> windowsOf(DWORD process, const std::string& className);

// Starts each test with an empty store and without custom transforms. A test may provide them
// before it starts the program.
class ProgramTest : public testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  // Starts the program and waits until it handles events.
  void start(const std::string& arguments = "");
  void start(const Launch& launch);
  // Closes the main window and waits for the end.
  void end();
  // Kills the program, as the desktop's task manager does.
  void kill() { process_.reset(); }

  const ProgramWindows& windows() const { return windows_; }
  const Process& process() const { return *process_; }

  // Posts a message to a window and waits until it was handled.
  void send(HWND window, UINT message, WPARAM first = 0, LPARAM second = 0);
  void press(int key);
  void pressHolding(int held, int key);
  void turnWheel(bool up, int times = 1);
  void choose(int command);

  // Waits until all messages posted so far were handled and the program's turn after them is over.
  void settle() const;

  // Waits until the display has carried out the program's requests and the program has handled the
  // resulting events.
  void finishDrawing();

  // Moves the mouse through the desktop's own input queue.
  void moveCursor(LONG x, LONG y);

  // Presses the left button over the main window and waits until the program has begun its drag.
  void beginDrag();

  // Waits until the main window's title confirms a copy. Returns false if it never does.
  bool hasCopied() const;

  std::string title() const { return titleOf(windows_.main); }
  // Returns the latest call of one kind that the program made to the magnifier, or all in order.
  RecordedCall lastCall(MagnifierCall kind) const;
  std::vector<RecordedCall> calls() const;

  // Opens the popup menu at the cursor with the right button.
  HMENU openMenu(HWND window);
  HWND openMenuWindow() const;  // null if no menu is open
  void closeMenu();
  // Returns the current items of the popup menu and its submenus.
  std::vector<MenuItem> menu();
  std::vector<MenuItem> checkedItems();

  const RecordedClass& classOf(HWND window);

  // The numbers of objects of each kind that the program holds.
  struct Objects {
    std::uint32_t graphics = 0;
    std::uint32_t user = 0;
    std::uint32_t handles = 0;
    bool operator==(const Objects&) const = default;
  };
  Objects objects();

  // Returns the memory that the program occupies, in bytes.
  std::size_t memory() const;

  // Returns the processor time that the program has used so far, in milliseconds.
  double processorTime();

  // Returns the paints of the view from the given one on, oldest first.
  std::vector<RecordedPaint> paintsSince(std::uint64_t first) const;

  // Sends a request to the stand-in inside the program and returns its answer.
  DWORD_PTR ask(UINT request, WPARAM first, LPARAM second = 0) const;

 private:
  std::unique_ptr<Process> process_;
  ProgramWindows windows_;
  HMENU menu_ = nullptr;
};

// Tests of anything but the picture in the colour space window. Direct3D has nothing to draw with
// here, so that a start takes a third of the processor's time.
class UndrawnTest : public ProgramTest {
 protected:
  void SetUp() override;
};

}  // namespace tintora::windows_test
