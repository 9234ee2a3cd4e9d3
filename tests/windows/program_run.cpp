#include "program_run.h"

#include <windows.h>
#include <psapi.h>

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "stored_values.h"

namespace tintora::windows_test {

namespace {

struct WindowSearch {
  DWORD process;
  std::string className;
  std::vector<HWND> found;
};

BOOL CALLBACK collect(HWND window, LPARAM parameter) {
  auto& search = *reinterpret_cast<WindowSearch*>(parameter);
  DWORD process = 0;
  GetWindowThreadProcessId(window, &process);
  std::array<char, 64> name{};
  GetClassNameA(window, name.data(), static_cast<int>(name.size()));
  if (process == search.process && search.className == name.data()) search.found.push_back(window);
  return TRUE;
}

// Finds the windows of the program. The control window is the one that cannot be resized.
ProgramWindows findWindows(DWORD process) {
  ProgramWindows windows;
  for (const HWND window : windowsOf(process, "WindowClassZub")) {
    windows.main = window;
    windows.magnifier = FindWindowExA(window, nullptr, "Magnifier", nullptr);
  }
  for (const HWND window : windowsOf(process, "WindowClassZub2")) {
    const bool resizable = (GetWindowLongA(window, GWL_STYLE) & WS_THICKFRAME) != 0;
    (resizable ? windows.colourSpace : windows.control) = window;
  }
  return windows;
}

std::string inWindows1252(const std::wstring& text) {
  constexpr UINT codePage = 1252;
  std::string result(text.size(), '\0');
  const auto size = static_cast<int>(text.size());
  WideCharToMultiByte(codePage, 0, text.data(), size, result.data(), size, nullptr, nullptr);
  return result;
}

// Tells Wine how Direct3D draws in the programs that start from now on.
void drawWith(const char* renderer) {
  RegSetKeyValueA(HKEY_CURRENT_USER, direct3dKey, "renderer", REG_SZ, renderer,
                  static_cast<DWORD>(std::strlen(renderer) + 1));
}

}  // namespace

std::string titleOf(HWND window) {
  std::array<char, 256> title{};
  GetWindowTextA(window, title.data(), static_cast<int>(title.size()));
  return title.data();
}

std::wstring wideTitleOf(HWND window) {
  std::array<wchar_t, 256> title{};
  GetWindowTextW(window, title.data(), static_cast<int>(title.size()));
  return title.data();
}

GUITHREADINFO threadOf(HWND window) {
  GUITHREADINFO facts{};
  facts.cbSize = sizeof facts;
  GetGUIThreadInfo(GetWindowThreadProcessId(window, nullptr), &facts);
  return facts;
}

std::ostream& operator<<(std::ostream& out, const Bounds& bounds) {
  return out << bounds.left << "," << bounds.top << "," << bounds.right << "," << bounds.bottom;
}

Bounds boundsOf(const RECT& rectangle) {
  return {rectangle.left, rectangle.top, rectangle.right, rectangle.bottom};
}

Bounds boundsOf(HWND window) {
  RECT bounds{};
  GetWindowRect(window, &bounds);
  return boundsOf(bounds);
}

Bounds clientBoundsOf(HWND window) {
  RECT bounds{};
  GetClientRect(window, &bounds);
  MapWindowPoints(window, nullptr, reinterpret_cast<POINT*>(&bounds), 2);
  return boundsOf(bounds);
}

Bounds screenBounds() {
  return {0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
}

MagnifierRecord& magnifierRecord() {
  static MagnifierRecord* const record = [] {
    const HANDLE section = CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0,
                                              sizeof(MagnifierRecord), magnifierRecordName);
    return static_cast<MagnifierRecord*>(MapViewOfFile(section, FILE_MAP_WRITE, 0, 0, 0));
  }();
  return *record;
}

std::vector<HWND> windowsOf(DWORD process, const std::string& className) {
  WindowSearch search{process, className, {}};
  EnumWindows(&collect, reinterpret_cast<LPARAM>(&search));
  return search.found;
}

void ProgramTest::SetUp() {
  drawWith("gl");
  removeStoredValues();
  DeleteFileA(customFile().c_str());
  magnifierRecord().calls = 0;
  magnifierRecord().marker = 0;
  magnifierRecord().refusal = Refusal::Nothing;
  MagnifierHabits& habits = magnifierRecord().habits;
  for (std::atomic<bool>* const habit :
       {&habits.throttled, &habits.keepsMouse, &habits.restsWhenModal, &habits.drawsNothing,
        &habits.showsLastPicture}) {
    *habit = false;
  }
  magnifierRecord().refreshRate = 0;
  magnifierRecord().otherRefreshRate = 0;
  magnifierRecord().menusFade = false;
  magnifierRecord().programPath = {};
  magnifierRecord().dpi = 0;
  magnifierRecord().border = 0;
  magnifierRecord().resolutionChanges = 0;
  magnifierRecord().corners = 0;
  magnifierRecord().copies = 0;
}

void ProgramTest::TearDown() {
  process_.reset();
  ProgramTest::SetUp();
}

void UndrawnTest::SetUp() {
  ProgramTest::SetUp();
  drawWith("no3d");
}

void ProgramTest::start(const std::string& arguments) {
  start(Launch{.arguments = arguments});
}

void ProgramTest::start(const Launch& launch) {
  menu_ = nullptr;
  constexpr ULONGLONG aStart = 30000;
  const auto appears = [&] {
    magnifierRecord().calls = 0;
    magnifierRecord().copies = 0;
    process_ = std::make_unique<Process>(launch);
    return eventually(
        [this] {
          windows_ = findWindows(process_->id());
          return windows_.magnifier != nullptr && windows_.control != nullptr &&
                 windows_.colourSpace != nullptr && IsWindowVisible(windows_.main) != 0;
        },
        aStart);
  };
  // Wine's own processes sometimes hang while a program starts, so try once more. A fault of the
  // program would fail again.
  if (!appears()) {
    std::puts("The program did not appear; starting it again.");
    process_.reset();
    ASSERT_TRUE(appears());
  }
  settle();
}

void ProgramTest::end() {
  PostMessageA(windows_.main, WM_CLOSE, 0, 0);
  ASSERT_TRUE(process_->hasEnded());
}

// The program's turn follows each message, so the first marker's turn is over when the second one
// is reached.
void ProgramTest::settle() const {
  static UINT marker = 0;
  for (int i = 0; i < 2; ++i) PostMessageA(windows_.magnifier, ReachMarker, ++marker, 0);
  ASSERT_TRUE(eventually([] { return magnifierRecord().marker == marker; }));
}

void ProgramTest::finishDrawing() {
  settle();
  ask(FinishDrawing, 0);
  settle();
}

// The desktop knows the new position at once and the display a little later. Wine asks the display
// again only after a tenth of a second.
void ProgramTest::moveCursor(LONG x, LONG y) {
  constexpr DWORD untilAsked = 110;
  SetCursorPos(static_cast<int>(x), static_cast<int>(y));
  EXPECT_TRUE(eventually([&] {
    Sleep(untilAsked);
    POINT place{};
    if (GetCursorPos(&place) != 0 && place.x == x && place.y == y) return true;
    // The display's answer to an earlier move came late, or it refused the move because a drag had
    // not quite ended. Wine does not ask it again for a position that the desktop has already.
    SetCursorPos(static_cast<int>(x) - 1, static_cast<int>(y));
    SetCursorPos(static_cast<int>(x), static_cast<int>(y));
    return false;
  }));
  settle();
}

// The program captures the mouse first and then reads where the drag begins. A mouse that moved in
// between would begin the drag there.
void ProgramTest::beginDrag() {
  mouse_event(MOUSEEVENTF_LEFTDOWN, 0, 0, 0, 0);
  ASSERT_TRUE(eventually([this] { return threadOf(windows_.main).hwndCapture == windows_.main; }));
  settle();
}

bool ProgramTest::hasCopied() const {
  return eventually([] { return magnifierRecord().copies > 0; });
}

void ProgramTest::send(HWND window, UINT message, WPARAM first, LPARAM second) {
  PostMessageA(window, message, first, second);
  settle();
}

void ProgramTest::press(int key) {
  send(windows_.main, WM_KEYDOWN, static_cast<WPARAM>(key));
}

void ProgramTest::pressHolding(int held, int key) {
  ask(HoldKey, static_cast<WPARAM>(held));
  press(key);
  ask(HoldKey, 0);
}

void ProgramTest::turnWheel(bool up, int times) {
  for (int i = 0; i < times; ++i) {
    PostMessageA(windows_.main, WM_MOUSEWHEEL,
                 MAKEWPARAM(0, static_cast<WORD>(up ? WHEEL_DELTA : -WHEEL_DELTA)), 0);
  }
  settle();
}

void ProgramTest::choose(int command) {
  send(windows_.main, WM_COMMAND, static_cast<WPARAM>(command));
}

std::vector<RecordedCall> ProgramTest::calls() const {
  const MagnifierRecord& record = magnifierRecord();
  const std::uint64_t end = record.calls;
  std::vector<RecordedCall> calls;
  for (std::uint64_t n = end > recordedCalls ? end - recordedCalls : 0; n < end; ++n) {
    calls.push_back(record.call[n % recordedCalls]);
  }
  return calls;
}

RecordedCall ProgramTest::lastCall(MagnifierCall kind) const {
  const MagnifierRecord& record = magnifierRecord();
  const std::uint64_t end = record.calls;
  for (std::uint64_t n = end; n > 0 && end - n < recordedCalls; --n) {
    const RecordedCall& call = record.call[(n - 1) % recordedCalls];
    if (call.call == kind) return call;
  }
  return {};
}

HWND ProgramTest::openMenuWindow() const {
  for (const HWND window : windowsOf(process_->id(), "#32768")) {
    if (IsWindowVisible(window) != 0) return window;
  }
  return nullptr;
}

HMENU ProgramTest::openMenu(HWND window) {
  // A late focus event from the display can close a menu that has just opened. Click again, as a
  // user would.
  constexpr int clicks = 5;
  const MagnifierRecord& record = magnifierRecord();
  for (int click = 0; click < clicks; ++click) {
    const std::uint64_t left = record.menusLeft;
    PostMessageA(window, WM_RBUTTONUP, 0, 0);
    eventually([&] { return openMenuWindow() != nullptr || record.menusLeft != left; });
    finishDrawing();
    DWORD_PTR menu = 0;
    SendMessageTimeoutA(openMenuWindow(), MN_GETHMENU, 0, 0, SMTO_NORMAL, longestWait, &menu);
    if (menu != 0) return reinterpret_cast<HMENU>(menu);
  }
  ADD_FAILURE() << "No menu opened.";
  return nullptr;
}

void ProgramTest::closeMenu() {
  PostMessageA(windows_.main, WM_KEYDOWN, VK_ESCAPE, 0);
  ASSERT_TRUE(eventually([this] { return openMenuWindow() == nullptr; }));
  settle();
}

DWORD_PTR ProgramTest::ask(UINT request, WPARAM first, LPARAM second) const {
  DWORD_PTR answer = 0;
  EXPECT_NE(SendMessageTimeoutA(windows_.magnifier, request, first, second, SMTO_NORMAL,
                                longestWait, &answer),
            0);
  return answer;
}

std::vector<MenuItem> ProgramTest::menu() {
  // The program opens the same menu every time, so a known menu can be read without opening it.
  if (menu_ == nullptr) {
    menu_ = openMenu(windows_.main);
    closeMenu();
  }
  ask(ReadMenu, reinterpret_cast<WPARAM>(menu_));
  const MagnifierRecord& record = magnifierRecord();
  std::vector<MenuItem> items;
  for (std::size_t i = 0; i < record.menuItems; ++i) {
    const RecordedMenuItem& item = record.menuItem[i];
    items.push_back({item.depth, item.type, item.state, item.command, item.submenu,
                     inWindows1252(item.text.data())});
  }
  return items;
}

std::vector<MenuItem> ProgramTest::checkedItems() {
  std::vector<MenuItem> items = menu();
  std::erase_if(items, [](const MenuItem& item) { return (item.state & MFS_CHECKED) == 0; });
  return items;
}

const RecordedClass& ProgramTest::classOf(HWND window) {
  ask(ReadClass, reinterpret_cast<WPARAM>(window));
  return magnifierRecord().windowClass;
}

ProgramTest::Objects ProgramTest::objects() {
  ask(CountObjects, 0);
  const MagnifierRecord& record = magnifierRecord();
  return {record.graphicsObjects, record.userObjects, record.handles};
}

std::size_t ProgramTest::memory() const {
  const HANDLE handle =
      OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, process().id());
  PROCESS_MEMORY_COUNTERS counters{};
  K32GetProcessMemoryInfo(handle, &counters, sizeof counters);
  CloseHandle(handle);
  return counters.WorkingSetSize;
}

double ProgramTest::processorTime() {
  constexpr double unitsPerMillisecond = 10000;
  ask(ReadProcessorTime, 0);
  return static_cast<double>(magnifierRecord().processorTime) / unitsPerMillisecond;
}

std::vector<RecordedPaint> ProgramTest::paintsSince(std::uint64_t first) const {
  const MagnifierRecord& record = magnifierRecord();
  const std::uint64_t end = record.paints;
  std::vector<RecordedPaint> paints;
  for (std::uint64_t n = std::max(first, end > recordedPaints ? end - recordedPaints : 0); n < end;
       ++n) {
    paints.push_back(record.paint[n % recordedPaints]);
  }
  return paints;
}

}  // namespace tintora::windows_test
