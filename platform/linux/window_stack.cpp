#include "platform/linux/window_stack.h"

#include <algorithm>
#include <cstddef>

#include "platform/linux/compositing.h"
#include "platform/linux/x_server.h"

namespace tintora::platform {

WindowStack windowStack;

namespace {

// Returns the index of the window that shows the view, or the number of windows if it is unknown.
std::size_t placeOfView() {
  return static_cast<std::size_t>(findTopLevel(windowStack.ownTopLevel) -
                                  windowStack.windows.begin());
}

std::size_t placeOf(const TopLevel& topLevel) {
  return static_cast<std::size_t>(&topLevel - windowStack.windows.data());
}

// Returns the index of the lowest visible window. Windows beneath a guard window are mapped but not
// visible.
std::size_t firstSeen() {
  const auto guard =
      std::find_if(windowStack.windows.rbegin(), windowStack.windows.rend(),
                   [](const TopLevel& topLevel) { return topLevel.isGuard && topLevel.mapped; });
  return static_cast<std::size_t>(windowStack.windows.rend() - guard);
}

}  // namespace

std::vector<TopLevel>::iterator findTopLevel(xcb_window_t window) {
  return std::ranges::find(windowStack.windows, window, &TopLevel::window);
}

bool isOwnResource(xcb_window_t window) {
  return ((window ^ windowStack.ownWindow) & ~xcb_get_setup(x())->resource_id_mask) == 0;
}

bool isOwn(const TopLevel& topLevel) {
  return topLevel.window == windowStack.ownTopLevel;
}

bool isOfView(xcb_window_t window) {
  const xcb_setup_t& setup = *xcb_get_setup(x());
  return (window & ~setup.resource_id_mask) == setup.resource_id_base;
}

bool isCovered(const TopLevel& topLevel) {
  return windowStack.coversAbove && placeOf(topLevel) > placeOfView() && topLevel.mapped &&
         topLevel.hasPixels && !topLevel.keepsAbove && !topLevel.isCover &&
         !isOfView(topLevel.window) && !isOfProgram(topLevel) && topLevel.window != overlayWindow();
}

bool isLookedAt(const TopLevel& topLevel) {
  const std::size_t view = placeOfView();
  const std::size_t place = placeOf(topLevel);
  if (view >= windowStack.windows.size() || place < firstSeen()) return false;
  return place < view || isCovered(topLevel);
}

void noteChange(const TopLevel& topLevel) {
  if (topLevel.mapped && topLevel.hasPixels && isLookedAt(topLevel)) {
    addChange(topLevel.region());
  }
}

void changeAll() {
  windowStack.changed = QRect(QPoint(), windowStack.rootSize);
}

void addChange(const QRegion& region) {
  constexpr int mostPieces = 256;
  QRegion& changed = windowStack.changed;
  changed += region;
  if (changed.rectCount() > mostPieces) changed = changed.boundingRect();
}

bool isOwnWindowShown() {
  const std::size_t place = placeOfView();
  return place < windowStack.windows.size() && windowStack.windows[place].mapped &&
         place >= firstSeen();
}

std::vector<TopLevel*> windowsLookedAt() {
  std::vector<TopLevel*> lookedAt;
  const std::size_t view = placeOfView();
  // Without the own frame, no window is known to be beneath it.
  if (view >= windowStack.windows.size()) return lookedAt;
  const std::size_t end = windowStack.coversAbove ? windowStack.windows.size() : view;
  for (std::size_t place = firstSeen(); place < end; ++place) {
    TopLevel& topLevel = windowStack.windows[place];
    if (topLevel.mapped && (place < view || isCovered(topLevel))) lookedAt.push_back(&topLevel);
  }
  return lookedAt;
}

std::vector<TopLevel*> windowsSeen() {
  std::vector<TopLevel*> seen;
  for (std::size_t place = firstSeen(); place < windowStack.windows.size(); ++place) {
    TopLevel& topLevel = windowStack.windows[place];
    if (topLevel.mapped) seen.push_back(&topLevel);
  }
  return seen;
}

std::vector<TopLevel*> windowsAbove() {
  std::vector<TopLevel*> above;
  for (std::size_t i = placeOfView() + 1; i < windowStack.windows.size(); ++i) {
    TopLevel& topLevel = windowStack.windows[i];
    if (topLevel.mapped && !isOwn(topLevel)) above.push_back(&topLevel);
  }
  return above;
}

bool isMenu(const TopLevel& topLevel) {
  return topLevel.unmanaged && isOwnResource(topLevel.window);
}

bool isOfProgram(const TopLevel& topLevel) {
  return isOwnResource(topLevel.window) || topLevel.programWindow != XCB_NONE;
}

}  // namespace tintora::platform
