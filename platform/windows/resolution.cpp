#include "platform/windows/resolution.h"

#include <cmath>
#include <map>

#include "platform/windows/scale.h"

namespace tintora::platform {

namespace {

struct SizeState {
  double scale = 1.0;    // that the size suits
  bool held = false;     // the user drags the window by its picture
  bool placing = false;  // the program is moving it
};

std::map<HWND, SizeState> sizes;

LONG width(const RECT& bounds) {
  return bounds.right - bounds.left;
}
LONG height(const RECT& bounds) {
  return bounds.bottom - bounds.top;
}

RECT boundsOf(HWND window) {
  RECT bounds{};
  GetWindowRect(window, &bounds);
  return bounds;
}

void setBounds(HWND window, const RECT& bounds) {
  SetWindowPos(window, nullptr, bounds.left, bounds.top, width(bounds), height(bounds),
               SWP_NOZORDER | SWP_NOACTIVATE);
}

// Returns true if the window's monitor is that of these bounds too.
bool staysOnMonitor(HWND window, const RECT& bounds) {
  return MonitorFromRect(&bounds, MONITOR_DEFAULTTONEAREST) ==
         MonitorFromWindow(window, MONITOR_DEFAULTTONEAREST);
}

bool isMovedByDesktop(HWND window) {
  GUITHREADINFO facts{};
  facts.cbSize = sizeof facts;
  return GetGUIThreadInfo(GetCurrentThreadId(), &facts) != 0 &&
         (facts.flags & GUI_INMOVESIZE) != 0 && facts.hwndMoveSize == window;
}

RECT resized(const RECT& bounds, double factor, bool aboutCentre) {
  const LONG newWidth = std::lround(width(bounds) * factor);
  const LONG newHeight = std::lround(height(bounds) * factor);
  const LONG left = aboutCentre ? bounds.left + (width(bounds) - newWidth) / 2 : bounds.left;
  const LONG top = aboutCentre ? bounds.top + (height(bounds) - newHeight) / 2 : bounds.top;
  return {left, top, left + newWidth, top + newHeight};
}

// Resizes the window if its size suits another resolution than its monitor's. A size that would put
// the window on another monitor waits for another place: that monitor's resolution could put the
// window back here.
void followResolution(HWND window, bool aboutCentre) {
  SizeState& size = sizes[window];
  const double scale = scaleOf(window);
  const bool movable = IsZoomed(window) == 0 && IsIconic(window) == 0;
  if (size.held || size.placing || scale == size.scale || !movable) return;
  const RECT bounds = resized(boundsOf(window), scale / size.scale, aboutCentre);
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

void placeWindow(HWND window, const RECT& bounds) {
  const RECT before = boundsOf(window);
  SizeState& size = sizes[window];
  const bool nested = size.placing;
  size.placing = true;
  setBounds(window, bounds);
  size.placing = nested;
  if (width(bounds) != width(before) || height(bounds) != height(before)) {
    acceptSize(window);
  } else {
    followResolution(window, false);
  }
}

void takeSuggestedBounds(HWND window, const RECT& suggested) {
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
