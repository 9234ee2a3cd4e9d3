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

// What the stand-in refuses, as a desktop may.
enum class Refusal : std::uint32_t { Nothing, Initialize, MagnifierWindow };

// One item of a menu; the items of its submenu follow it, one level deeper.
struct RecordedMenuItem {
  std::int32_t depth = 0;
  std::uint32_t type = 0;
  std::uint32_t state = 0;
  std::uint32_t command = 0;
  bool submenu = false;
  std::array<char, 120> text{};
};

// What the program registered for a window's class.
struct RecordedClass {
  std::uint32_t style = 0;
  bool ownIcon = false;  // the program's icon resource 101
  bool arrowCursor = false;
  bool background = false;
  bool menu = false;
};

// The latest calls; call n stands at n modulo the room.
constexpr std::size_t recordedCalls = 8192;
constexpr std::size_t recordedMenuItems = 128;

struct MagnifierRecord {
  std::atomic<Refusal> refusal;
  std::atomic<std::uint64_t> calls;
  std::atomic<std::uint32_t> marker;  // the last one reached
  std::uint32_t menuItems;
  RecordedClass windowClass;
  std::uint32_t graphicsObjects;
  std::uint32_t userObjects;
  std::array<RecordedCall, recordedCalls> call;
  std::array<RecordedMenuItem, recordedMenuItems> menuItem;
};

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
};

}  // namespace tintora::windows_test
