#include "platform/windows/view_pace.h"

#include <chrono>

#include "platform/windows/magnifier.h"

namespace tintora::platform {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::nanoseconds;

constexpr UINT_PTR modalTimer = 1;

nanoseconds period{};  // 0 if not measured yet
Clock::time_point due;

nanoseconds measuredPeriod() {
  constexpr int usualRate = 60;
  const HDC screen = GetDC(nullptr);
  const int rate = GetDeviceCaps(screen, VREFRESH);
  ReleaseDC(nullptr, screen);
  // Windows reports 0 or 1 for the hardware's default rate.
  return nanoseconds(std::chrono::seconds(1)) / (rate > 1 ? rate : usualRate);
}

// Returns null if no timer can be created; the wait is then in whole milliseconds.
HANDLE createTimer() {
  constexpr DWORD highResolution = 2;  // since Windows 10 version 1803
  const HANDLE precise = CreateWaitableTimerExW(nullptr, nullptr, highResolution, TIMER_ALL_ACCESS);
  return precise != nullptr ? precise
                            : CreateWaitableTimerExW(nullptr, nullptr, 0, TIMER_ALL_ACCESS);
}

// Returns true when the time has passed, false if a message came first.
bool waitForTime(nanoseconds time) {
  static const HANDLE timer = createTimer();
  constexpr DWORD messages = QS_ALLINPUT & ~DWORD{QS_PAINT};
  LARGE_INTEGER relative{};
  relative.QuadPart = -time.count() / 100;
  if (timer == nullptr || SetWaitableTimer(timer, &relative, 0, nullptr, nullptr, FALSE) == 0) {
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

void CALLBACK pictureIsDue(HWND /*view*/, UINT /*message*/, UINT_PTR /*id*/, DWORD /*time*/) {
  refreshView();
}

}  // namespace

bool awaitNextPicture() {
  if (period == nanoseconds()) period = measuredPeriod();
  const Clock::time_point now = Clock::now();
  if (due > now && !waitForTime(due - now)) return false;
  // Keep an even pace, but start afresh after a pause.
  const Clock::time_point drawn = Clock::now();
  due += period;
  if (due < drawn) due = drawn + period;
  return true;
}

void paintWaitingWindows() {
  EnumThreadWindows(GetCurrentThreadId(), &paintWindow, 0);
}

void forgetPace() {
  period = nanoseconds();
}

// Draws by a timer instead of invalidating the view after each paint. Paints come before timers, so
// the menus' own timers, which open submenus, would never fire.
void beginModalLoop() {
  constexpr UINT milliseconds = 15;  // one tick of the system's clock
  SetTimer(viewWindow(), modalTimer, milliseconds, &pictureIsDue);
}

void endModalLoop() {
  KillTimer(viewWindow(), modalTimer);
}

}  // namespace tintora::platform
