#include "platform/windows/resolution.h"

#include <map>

#include "platform/windows/handles.h"
#include "platform/windows/scale.h"

namespace tintora::platform {

namespace {

struct SizeState {
  double scale = 1.0;    // that the size suits
  bool held = false;     // the user drags the window by its picture
  bool placing = false;  // the program is moving it
};

std::map<HWND, SizeState> sizes;

Rect boundsOf(HWND window) {
  RECT bounds{};
  GetWindowRect(window, &bounds);
  return fromNative(bounds);
}

void setBounds(HWND window, const Rect& bounds) {
  SetWindowPos(window, nullptr, bounds.left, bounds.top, bounds.width(), bounds.height(),
               SWP_NOZORDER | SWP_NOACTIVATE);
}

// Returns true if the window's monitor is that of these bounds too.
bool staysOnMonitor(HWND window, const Rect& bounds) {
  const RECT there = native(bounds);
  return MonitorFromRect(&there, MONITOR_DEFAULTTONEAREST) ==
         MonitorFromWindow(window, MONITOR_DEFAULTTONEAREST);
}

bool isMovedByDesktop(HWND window) {
  GUITHREADINFO facts{};
  facts.cbSize = sizeof facts;
  return GetGUIThreadInfo(GetCurrentThreadId(), &facts) != 0 &&
         (facts.flags & GUI_INMOVESIZE) != 0 && facts.hwndMoveSize == window;
}

Rect resized(const Rect& bounds, double factor, bool aboutCentre) {
  const int width = scaled(bounds.width(), factor);
  const int height = scaled(bounds.height(), factor);
  const int left = aboutCentre ? bounds.left + (bounds.width() - width) / 2 : bounds.left;
  const int top = aboutCentre ? bounds.top + (bounds.height() - height) / 2 : bounds.top;
  return {left, top, left + width, top + height};
}

// Resizes the window if its size suits another resolution than its monitor's. A size that would put
// the window on another monitor waits for another place: that monitor's resolution could put the
// window back here.
void followResolution(HWND window, bool aboutCentre) {
  SizeState& size = sizes[window];
  const double scale = scaleOf(window);
  const bool movable = IsZoomed(window) == 0 && IsIconic(window) == 0;
  if (size.held || size.placing || scale == size.scale || !movable) return;
  const Rect bounds = resized(boundsOf(window), scale / size.scale, aboutCentre);
  if (!staysOnMonitor(window, bounds)) return;
  size.scale = scale;
  setBounds(window, bounds);
}

}  // namespace

void acceptSize(HWND window) {
  sizes[window].scale = scaleOf(window);
}

void holdSize(HWND window) {
  sizes[window].held = true;
}

void releaseSize(HWND window) {
  if (!sizes[window].held) return;
  sizes[window].held = false;
  followResolution(window, true);
}

void placeWindow(HWND window, const Rect& bounds) {
  const Rect before = boundsOf(window);
  SizeState& size = sizes[window];
  const bool nested = size.placing;
  size.placing = true;
  setBounds(window, bounds);
  size.placing = nested;
  if (bounds.width() != before.width() || bounds.height() != before.height()) {
    acceptSize(window);
  } else {
    followResolution(window, false);
  }
}

void takeSuggestedBounds(HWND window, const Rect& suggested) {
  SizeState& size = sizes[window];
  const double scale = scaleOf(window);
  if (size.held || size.placing || scale == size.scale) return;
  if (!isMovedByDesktop(window) && !staysOnMonitor(window, suggested)) return;
  size.scale = scale;
  setBounds(window, suggested);
}

bool isBeingMoved(HWND window) {
  return sizes[window].held || isMovedByDesktop(window);
}

}  // namespace tintora::platform
