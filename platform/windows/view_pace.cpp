#include "platform/windows/view_pace.h"

#include <windows.h>

#include <algorithm>
#include <chrono>

#include "platform/windows/magnifier.h"

namespace tintora::platform {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::nanoseconds;

static_assert(pictureDue == WM_APP);

HMONITOR monitor = nullptr;  // that the period belongs to
bool monitorChecked = false;
nanoseconds period{};
Clock::time_point due;
int modalLoops = 0;

// Returns the pictures that a monitor shows in a second. Windows reports 0 or 1 for the hardware's
// default rate.
int refreshRateOf(HMONITOR screen) {
  constexpr int usualRate = 60;
  MONITORINFOEXW facts{};
  facts.cbSize = sizeof facts;
  DEVMODEW mode{};
  mode.dmSize = sizeof mode;
  if (GetMonitorInfoW(screen, &facts) == 0 ||
      EnumDisplaySettingsW(facts.szDevice, ENUM_CURRENT_SETTINGS, &mode) == 0) {
    return usualRate;
  }
  return mode.dmDisplayFrequency > 1 ? static_cast<int>(mode.dmDisplayFrequency) : usualRate;
}

// Asks the desktop only when necessary, because it does not answer quickly.
void checkMonitor() {
  if (monitorChecked) return;
  monitorChecked = true;
  const HMONITOR now = MonitorFromWindow(viewWindow(), MONITOR_DEFAULTTONEAREST);
  if (now == monitor) return;
  monitor = now;
  period = nanoseconds(std::chrono::seconds(1)) / refreshRateOf(now);
}

// Keeps an even pace, but starts afresh after a pause.
void planNextPicture() {
  checkMonitor();
  const Clock::time_point drawn = Clock::now();
  due += period;
  if (due < drawn) due = drawn + period;
}

// Returns null if no timer can be created.
HANDLE createTimer() {
  constexpr DWORD highResolution = 2;  // since Windows 10 version 1803
  const HANDLE precise = CreateWaitableTimerExW(nullptr, nullptr, highResolution, TIMER_ALL_ACCESS);
  return precise != nullptr ? precise
                            : CreateWaitableTimerExW(nullptr, nullptr, 0, TIMER_ALL_ACCESS);
}

bool setTimer(HANDLE timer, nanoseconds time) {
  LARGE_INTEGER relative{};
  relative.QuadPart = -std::max<std::int64_t>(time.count(), 0) / 100;
  return timer != nullptr && SetWaitableTimer(timer, &relative, 0, nullptr, nullptr, FALSE) != 0;
}

// Returns true when the time has passed, false if a message came first. Without a timer, it waits
// in whole milliseconds.
bool waitForTime(nanoseconds time) {
  static const HANDLE timer = createTimer();
  constexpr DWORD messages = QS_ALLINPUT & ~DWORD{QS_PAINT};
  if (!setTimer(timer, time)) {
    const auto milliseconds = std::chrono::ceil<std::chrono::milliseconds>(time).count();
    return MsgWaitForMultipleObjectsEx(0, nullptr, static_cast<DWORD>(milliseconds), messages, 0) ==
           WAIT_TIMEOUT;
  }
  // Wait for new messages only: an old one that the caller does not see would keep it spinning.
  return MsgWaitForMultipleObjectsEx(1, &timer, INFINITE, messages, 0) == WAIT_OBJECT_0;
}

BOOL CALLBACK paintWindow(HWND window, LPARAM /*unused*/) {
  RedrawWindow(window, nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
  return TRUE;
}

// Runs on a thread of the system's, which touches nothing of the program. Only a sent message
// reaches every modal loop: that of the caption's buttons receives nothing else but mouse messages.
void CALLBACK announcePicture(void* window, BOOLEAN /*timedOut*/) {
  SendNotifyMessageW(static_cast<HWND>(window), pictureDue, 0, 0);
}

// Returns the timer that announces pictures, or null if the system has no thread for it.
HANDLE announcingTimer() {
  static const HANDLE timer = [] {
    const HANDLE created = createTimer();
    HANDLE wait = nullptr;  // lasts as long as the program
    const BOOL waiting = RegisterWaitForSingleObject(&wait, created, &announcePicture,
                                                     GetAncestor(viewWindow(), GA_ROOT), INFINITE,
                                                     WT_EXECUTEINWAITTHREAD);
    return waiting != 0 ? created : nullptr;
  }();
  return timer;
}

void announceNextPicture() {
  planNextPicture();
  setTimer(announcingTimer(), due - Clock::now());
}

}  // namespace

bool awaitNextPicture() {
  const Clock::time_point now = Clock::now();
  if (due > now && !waitForTime(due - now)) return false;
  planNextPicture();
  return true;
}

// Usually only the view waits, and looking at every window takes longer than painting it.
void paintWaitingWindows() {
  UpdateWindow(viewWindow());
  MSG message{};
  if (PeekMessageW(&message, nullptr, WM_PAINT, WM_PAINT, PM_NOREMOVE) == 0) return;
  EnumThreadWindows(GetCurrentThreadId(), &paintWindow, 0);
}

void followMonitor() {
  monitorChecked = false;
}

void forgetPace() {
  monitor = nullptr;
  monitorChecked = false;
}

void beginModalLoop() {
  if (modalLoops++ == 0) announceNextPicture();
}

void endModalLoop() {
  if (--modalLoops == 0) CancelWaitableTimer(announcingTimer());
}

// Plans the next picture only now, so that the loop can handle input and timers in between however
// long the paint takes.
void drawDuePicture() {
  if (modalLoops == 0) return;  // announced before the loop ended
  refreshView();
  UpdateWindow(viewWindow());
  announceNextPicture();
}

}  // namespace tintora::platform
