// The record that the stand-in for the Magnification API shares with the tests, and the requests by
// which tests have it act inside the program under test.
#pragma once

#include <windows.h>

#include <array>
#include <atomic>
#include <cstdint>

namespace tintora::windows_test {

enum class MagnifierCall : std::uint32_t {
  Initialize,
  Uninitialize,
  SetWindowTransform,
  SetWindowSource,
  SetColorEffect,
};

struct RecordedCall {
  MagnifierCall call{};
  std::uint64_t window = 0;
  RECT source{};
  std::array<float, 25> values{};  // a transform uses only the first nine
  std::array<char, 120> title{};   // of the magnifier's parent window, at the time of the call
};

// The call that the stand-in refuses, as a desktop may. A refused setter changes nothing.
enum class Refusal : std::uint32_t {
  Nothing,
  Initialize,
  MagnifierWindow,
  SetWindowTransform,
  SetWindowSource,
  SetColorEffect,
  SettingsKey,
};

// How the stand-in behaves where the documentation leaves it open. With everything cleared it is
// the hardest case: it paints as often as it is asked to.
struct MagnifierHabits {
  std::atomic<bool> throttled;         // delays each paint until the screen's next picture
  std::atomic<bool> keepsMouse;        // answers HTCLIENT to hit tests, else HTTRANSPARENT
  std::atomic<bool> restsWhenModal;    // paints nothing while a menu is open or a window is moved
  std::atomic<bool> drawsNothing;      // paints without reading the screen
  std::atomic<bool> showsLastPicture;  // shows a picture only after the desktop has composed it
};

// The position and source of the view at a paint.
struct RecordedPaint {
  POINT corner{};  // of the magnifier's client area, on the screen
  RECT source{};
  bool modal = false;  // a menu was open or a window was being moved or sized
};

// One menu item. The items of its submenu follow it, one level deeper.
struct RecordedMenuItem {
  std::int32_t depth = 0;
  std::uint32_t type = 0;
  std::uint32_t state = 0;
  std::uint32_t command = 0;
  bool submenu = false;
  std::array<wchar_t, 120> text{};
};

// The window class that the program registered.
struct RecordedClass {
  std::uint32_t style = 0;
  bool ownIcon = false;  // the program's icon resource 101
  bool arrowCursor = false;
  bool background = false;
  bool menu = false;
};

// A page that the program asked the desktop to open.
struct RecordedPage {
  std::uint32_t com = 0;  // the flags that COM was initialised with; 0 if it was not
  std::int32_t show = 0;
  std::uintptr_t answer = 0;  // above 32 if the desktop opened the page
  std::array<wchar_t, 512> path{};
};

// A ring of the latest calls: call n is at n modulo the size.
constexpr std::size_t recordedCalls = 8192;
constexpr std::size_t recordedMenuItems = 128;
constexpr std::size_t recordedPaints = 1024;

struct MagnifierRecord {
  std::atomic<Refusal> refusal;
  MagnifierHabits habits;
  std::atomic<std::uint64_t> calls;
  std::atomic<std::uint32_t> marker;          // the last one reached
  std::atomic<std::uint64_t> paints;          // the latest are in the ring below, as with calls
  std::atomic<std::uint64_t> looks;           // for messages, by PeekMessage
  std::atomic<std::uint64_t> titleSets;       // WM_SETTEXT to any of the program's windows
  std::atomic<std::uint64_t> copies;          // titles that confirmed a copy
  std::atomic<std::uint64_t> copiedAt;        // when the latest of those was set, by GetTickCount64
  std::atomic<std::uint64_t> renamedAt;       // when the main window last got any other title
  std::atomic<bool> menusFade;                // whether the desktop says so
  std::atomic<std::uint64_t> menuLeftAt;      // when a menu was last left, by GetTickCount64
  std::atomic<std::uint64_t> menusLeft;       // WM_EXITMENULOOP to any of the program's windows
  std::atomic<std::uint64_t> paintsAtKeys;    // paints when keys were queued
  std::atomic<std::uint64_t> paintsOverKeys;  // paints from then until all of them were handled
  std::atomic<std::uint64_t> composed;        // calls to DwmFlush
  std::atomic<std::uint32_t> corners;         // the requested corner preference; 0 if none
  std::atomic<std::int32_t> mainShown;        // the latest show command for the main window
  std::atomic<std::uint64_t> titleTimers;     // timers that were set on the main window
  std::atomic<std::uint64_t> timedAt;         // when the latest of those was set, by GetTickCount64
  std::atomic<std::uint32_t> titleTimer;      // its milliseconds
  std::atomic<std::uint32_t> unhandledKey;    // the latest key that the program left to the desktop
  std::atomic<std::uint64_t> pagesOpened;
  // What the desktop tells the program. 0 stands for its own answers.
  std::atomic<std::int32_t> refreshRate;       // of the primary monitor
  std::atomic<std::int32_t> otherRefreshRate;  // of other monitors
  std::atomic<std::int32_t> dpi;               // of the monitor, or of the left one of two
  std::atomic<std::int32_t> rightDpi;
  std::atomic<std::int32_t> border;  // from this column on is the right one of two monitors
  std::atomic<std::uint32_t> resolutionChanges;  // of windows that the program moved
  RecordedPage page;
  std::array<wchar_t, 512> programPath;  // what the desktop tells the program, unless empty
  RECT suggested;                        // bounds for another resolution
  std::uint32_t menuItems;
  RecordedClass windowClass;
  std::uint32_t graphicsObjects;
  std::uint32_t userObjects;
  std::uint32_t handles;
  std::uint64_t processorTime;  // used by the program so far, in units of 100 ns
  std::array<RecordedCall, recordedCalls> call;
  std::array<RecordedMenuItem, recordedMenuItems> menuItem;
  std::array<RecordedPaint, recordedPaints> paint;
};

constexpr const wchar_t* copyConfirmation = L"Image Copied To Clipboard";

constexpr const char* magnifierRecordName = "Local\\TintoraMagnifierRecord";

// Messages to the magnifier's window. The program's own thread handles them.
enum Request : UINT {
  // Writes the first parameter as the marker after all earlier posted messages. Must be posted.
  ReachMarker = WM_APP,
  // Writes the items of the menu in the first parameter.
  ReadMenu,
  // Writes the class of the window in the first parameter.
  ReadClass,
  // Counts the objects that the program holds.
  CountObjects,
  // Pretends to the program that the key in the first parameter is held; 0 releases all keys.
  HoldKey,
  // Tells the window in the first parameter of a new resolution: the dpi is in the second
  // parameter, the suggested bounds are in the record.
  ChangeResolution,
  // Drops a file on the window in the first parameter. Returns 1 if the drop was not released.
  DropFile,
  // Writes the processor time that the program has used.
  ReadProcessorTime,
  // Queues presses of a key in the main window all at once: the key is in the first parameter,
  // their number in the second.
  QueueKeys,
  // Follows the queued keys and counts the paints in the meantime.
  EndKeys,
  // Tells the main window as often as the first parameter says that it was moved, without handling
  // other messages in between.
  TellMoves,
  // Waits until the display has carried out all of the program's requests.
  FinishDrawing,
  // From now on, the program's graphics devices are lost when they show a picture.
  LoseDevices,
  // From now on, no more devices are lost. Those that are stay so.
  KeepDevices,
};

}  // namespace tintora::windows_test
