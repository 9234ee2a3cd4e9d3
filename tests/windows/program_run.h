// A run of the program under test: its windows, what is done to it and what it does.
#pragma once

#include <windows.h>
#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "magnifier_record.h"

namespace tintora::windows_test {

struct ProgramWindows {
  HWND main = nullptr;
  HWND magnifier = nullptr;
  HWND control = nullptr;
  HWND colourSpace = nullptr;
};

// Screen pixels; right and bottom are the first column and row outside.
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

// Waits, as many milliseconds at most, for something to become true. A busy machine may take long;
// only what fails takes the whole time.
bool eventually(const std::function<bool()>& isTrue, ULONGLONG atMost = 60000);

std::string titleOf(HWND window);
std::wstring wideTitleOf(HWND window);

// What a window's thread is busy with: menus, drags, the mouse it has captured.
GUITHREADINFO threadOf(HWND window);
Bounds boundsOf(HWND window);
Bounds clientBoundsOf(HWND window);
Bounds boundsOf(const RECT& rectangle);
Bounds screenBounds();

std::string programPath();

// The folder in which the program under test stands, with a backslash at its end.
std::string programFolder();

// Where the program looks for the user's own transforms.
std::string customFile();

// What all programs started by the tests can write to.
MagnifierRecord& magnifierRecord();

// How the program is started.
struct Launch {
  std::string arguments{};
  std::string folder = programFolder();  // the current one
  WORD show = SW_SHOWNORMAL;
  bool pathGiven = true;   // on the command line
  std::wstring program{};  // its path, if it is not the one under test itself
};

// A process that the tests started; ended with it at the latest.
class Process {
 public:
  explicit Process(const Launch& launch = {});
  ~Process();
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;

  DWORD id() const { return id_; }
  // Waits for the end; false where it does not come within bounds.
  bool hasEnded() const;
  bool isRunning() const;
  DWORD result() const;

 private:
  HANDLE handle_ = nullptr;
  DWORD id_ = 0;
};

// For as long as it lives the desktop has no Magnification API.
class MissingMagnification {
 public:
  MissingMagnification();
  ~MissingMagnification();
  MissingMagnification(const MissingMagnification&) = delete;
  MissingMagnification& operator=(const MissingMagnification&) = delete;
};

// The top-level windows of a process with a class name.
std::vector<HWND> windowsOf(DWORD process, const std::string& className);

// Each test starts the program with an empty store and without custom transforms, unless it
// provides them before.
class ProgramTest : public testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  // Starts the program and waits until it handles events.
  void start(const std::string& arguments = "");
  void start(const Launch& launch);
  // Closes the main window and waits for the end.
  void end();
  // Ends it at once, as the desktop's task manager does.
  void kill() { process_.reset(); }

  const ProgramWindows& windows() const { return windows_; }
  const Process& process() const { return *process_; }

  // Posts a message to a window and waits until it was handled.
  void send(HWND window, UINT message, WPARAM first = 0, LPARAM second = 0);
  void press(int key);
  void pressHolding(int held, int key);
  void turnWheel(bool up, int times = 1);
  void choose(int command);

  // Waits until everything posted so far was handled, and the program's own turn after it is over.
  void settle();

  // Waits until the display has carried out what the program has asked of it so far, and the
  // program has handled what came of it.
  void finishDrawing();

  // Moves the mouse, through all of the desktop.
  void moveCursor(LONG x, LONG y);

  // Waits until the main window's title has confirmed a copy.
  bool hasCopied() const;

  std::string title() const { return titleOf(windows_.main); }
  // As the program asked for it, the latest and all of them in order.
  RecordedCall lastCall(MagnifierCall kind) const;
  std::vector<RecordedCall> calls() const;

  // Opens the popup menu by the mouse, at the cursor.
  HMENU openMenu(HWND window);
  HWND openMenuWindow() const;  // null while none is open
  void closeMenu();
  // The items of the popup menu and its submenus as they are at the time.
  std::vector<MenuItem> menu();
  std::vector<MenuItem> checkedItems();

  const RecordedClass& classOf(HWND window);

  // How many objects of each sort the program holds.
  struct Objects {
    std::uint32_t graphics = 0;
    std::uint32_t user = 0;
    bool operator==(const Objects&) const = default;
  };
  Objects objects();

  // The processor time that the program has taken so far, in milliseconds.
  double processorTime();

  // The latest paints of the view, the oldest first, from the given one on.
  std::vector<RecordedPaint> paintsSince(std::uint64_t first) const;

  // Has the stand-in do something inside the program; returns its answer.
  DWORD_PTR ask(UINT request, WPARAM first, LPARAM second = 0);

 private:
  std::unique_ptr<Process> process_;
  ProgramWindows windows_;
  HMENU menu_ = nullptr;
};

}  // namespace tintora::windows_test
