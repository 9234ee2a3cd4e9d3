#include "platform/linux/window_stack.h"

#include <algorithm>
#include <cstddef>

#include "platform/linux/x_server.h"

namespace tintora::platform {

WindowStack windowStack;

namespace {

// The place of the window that shows the view; past the end if it is unknown.
std::size_t placeOfView() {
  return static_cast<std::size_t>(findTopLevel(windowStack.ownTopLevel) -
                                  windowStack.windows.begin());
}

// What is beneath a guard window is mapped but not to be seen.
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

bool isBeneath(const TopLevel& topLevel) {
  const std::size_t view = placeOfView();
  const auto place = static_cast<std::size_t>(&topLevel - windowStack.windows.data());
  return view < windowStack.windows.size() && place < view && place >= firstSeen();
}

void noteChange(const TopLevel& topLevel) {
  if (topLevel.mapped && topLevel.hasPixels && isBeneath(topLevel)) {
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

std::vector<TopLevel*> windowsBeneath() {
  std::vector<TopLevel*> beneath;
  const std::size_t view = placeOfView();
  // If the own frame is not found, nothing is known to be beneath it.
  if (view >= windowStack.windows.size()) return beneath;
  for (std::size_t place = firstSeen(); place < view; ++place) {
    TopLevel& topLevel = windowStack.windows[place];
    if (topLevel.mapped) beneath.push_back(&topLevel);
  }
  return beneath;
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
