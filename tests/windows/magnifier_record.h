// What the stand-in for the Magnification API writes down, in memory that the tests share with it,
// and what the tests may ask of it inside the program under test.
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
  std::array<float, 25> values{};  // of a transform only the first nine
  std::array<char, 120> title{};   // of the window around the magnifier, at the time of the call
};

// What the stand-in refuses, as a desktop may. A setter that is refused changes nothing.
enum class Refusal : std::uint32_t {
  Nothing,
  Initialize,
  MagnifierWindow,
  SetWindowTransform,
  SetWindowSource,
  SetColorEffect,
  SettingsKey,
};

// How the stand-in behaves where the documentation leaves it open. Cleared, it is as harsh as a
// desktop may be: it paints as often as it is asked to.
struct MagnifierHabits {
  std::atomic<bool> throttled;         // holds each paint up until the screen's next picture
  std::atomic<bool> keepsMouse;        // answers HTCLIENT to hit tests, else HTTRANSPARENT
  std::atomic<bool> restsWhenModal;    // paints nothing while a menu is open or a window is moved
  std::atomic<bool> drawsNothing;      // paints without reading the screen, to be measured alone
  std::atomic<bool> showsLastPicture;  // what was drawn is seen after the desktop composed it
};

// Where the view stood and what it was aimed at when it was painted.
struct RecordedPaint {
  POINT corner{};  // of the magnifier's client area, on the screen
  RECT source{};
  bool modal = false;  // a menu was open or a window was being moved or sized
};

// One item of a menu; the items of its submenu follow it, one level deeper.
struct RecordedMenuItem {
  std::int32_t depth = 0;
  std::uint32_t type = 0;
  std::uint32_t state = 0;
  std::uint32_t command = 0;
  bool submenu = false;
  std::array<wchar_t, 120> text{};
};

// What the program registered for a window's class.
struct RecordedClass {
  std::uint32_t style = 0;
  bool ownIcon = false;  // the program's icon resource 101
  bool arrowCursor = false;
  bool background = false;
  bool menu = false;
};

// A page that the program had the desktop open.
struct RecordedPage {
  std::uint32_t com = 0;  // the flags by which COM was ready; 0 if it was not
  std::int32_t show = 0;
  std::uintptr_t answer = 0;  // above 32 if the desktop found and opened it
  std::array<wchar_t, 512> path{};
};

// The latest calls; call n stands at n modulo the room.
constexpr std::size_t recordedCalls = 8192;
constexpr std::size_t recordedMenuItems = 128;
constexpr std::size_t recordedPaints = 1024;

struct MagnifierRecord {
  std::atomic<Refusal> refusal;
  MagnifierHabits habits;
  std::atomic<std::uint64_t> calls;
  std::atomic<std::uint32_t> marker;          // the last one reached
  std::atomic<std::uint64_t> paints;          // the latest stand in the ring below, as calls do
  std::atomic<std::uint64_t> titleSets;       // WM_SETTEXT to any of the program's windows
  std::atomic<std::uint64_t> copies;          // of these, the confirmations of a copy
  std::atomic<std::uint64_t> copiedAt;        // when the latest was set, by GetTickCount64
  std::atomic<std::uint64_t> renamedAt;       // when the main window got its latest other title
  std::atomic<std::uint64_t> menusLeft;       // WM_EXITMENULOOP to any of the program's windows
  std::atomic<std::uint64_t> paintsAtKeys;    // when keys were queued
  std::atomic<std::uint64_t> paintsAtMarker;  // when the last marker was reached
  std::atomic<std::uint64_t> composed;        // calls to DwmFlush
  std::atomic<std::uint32_t> corners;         // the corner preference asked for, 0 if none
  std::atomic<std::int32_t> mainShown;        // the latest show command for the main window
  std::atomic<std::uint32_t> titleTimer;      // milliseconds of the main window's latest timer
  std::atomic<std::uint32_t> unhandledKey;    // the latest that was left to the desktop
  std::atomic<std::uint64_t> pagesOpened;
  RecordedPage page;
  RECT suggested;  // bounds at another resolution
  std::uint32_t menuItems;
  RecordedClass windowClass;
  std::uint32_t graphicsObjects;
  std::uint32_t userObjects;
  std::uint64_t processorTime;  // of the program so far, in units of 100 ns
  std::array<RecordedCall, recordedCalls> call;
  std::array<RecordedMenuItem, recordedMenuItems> menuItem;
  std::array<RecordedPaint, recordedPaints> paint;
};

constexpr const wchar_t* copyConfirmation = L"Image Copied To Clipboard";

constexpr const char* magnifierRecordName = "Local\\TintoraMagnifierRecord";

// Messages to the magnifier's window, each carried out by the program's own thread.
enum Request : UINT {
  // Posted: writes the first parameter down as the marker once everything posted before is done.
  ReachMarker = WM_APP,
  // Writes the items of the menu in the first parameter down.
  ReadMenu,
  // Writes the class of the window in the first parameter down.
  ReadClass,
  // Counts the objects that the program holds.
  CountObjects,
  // Holds down the key in the first parameter as far as the program can see; 0 lets all go.
  HoldKey,
  // Tells the window in the first parameter of another resolution, the new dpi in the second, and
  // suggests the bounds in the record.
  ChangeResolution,
  // Drops a file on the window in the first parameter and answers 1 if it keeps the drop.
  DropFile,
  // Writes down how much processor time the program has taken.
  ReadProcessorTime,
  // Puts as many presses as the second parameter says of the key in the first into the main
  // window's
  // queue at once.
  QueueKeys,
  // Waits until the display has carried out everything that the program has asked of it.
  FinishDrawing,
  // From now on, the program's graphics devices are lost.
  LoseDevices,
};

}  // namespace tintora::windows_test
