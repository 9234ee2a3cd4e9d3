#include "platform/linux/covers.h"

#include <xcb/shape.h>

#include <QRegion>
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "platform/linux/top_level.h"
#include "platform/linux/window_stack.h"
#include "platform/linux/x_server.h"

namespace tintora::platform {

namespace {

using Clock = std::chrono::steady_clock;

struct Cover {
  xcb_window_t covered = XCB_NONE;
  xcb_window_t window = XCB_NONE;
  QRegion part;  // of the root
};
std::vector<Cover> covers;

// A program that always raises its window, such as a screen lock, is left alone after some tries.
constexpr int mostRaises = 3;
constexpr std::chrono::seconds rivalryTime{10};

std::uint32_t u32(int value) {
  return static_cast<std::uint32_t>(value);
}

xcb_window_t createCover(const QRect& bounds) {
  const xcb_window_t window = xcb_generate_id(x());
  // The window manager ignores the cover. Without a background, the server leaves the old pixels in
  // place until the view is drawn.
  const std::array<std::uint32_t, 3> looks{XCB_BACK_PIXMAP_NONE, 1, XCB_EVENT_MASK_EXPOSURE};
  xcb_create_window(x(), XCB_COPY_FROM_PARENT, window, xServer.screen->root, i16(bounds.x()),
                    i16(bounds.y()), u16(bounds.width()), u16(bounds.height()), 0,
                    XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                    XCB_CW_BACK_PIXMAP | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK,
                    looks.data());
  xcb_change_property(x(), XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8,
                      coverName.size(), coverName.data());
  // Passes all input to the covered window.
  xcb_shape_rectangles(x(), XCB_SHAPE_SO_SET, XCB_SHAPE_SK_INPUT, XCB_CLIP_ORDERING_UNSORTED,
                       window, 0, 0, 0, nullptr);
  return window;
}

void fit(const Cover& cover) {
  const QRect bounds = cover.part.boundingRect();
  const std::array<std::uint32_t, 4> place{u32(bounds.x()), u32(bounds.y()), u32(bounds.width()),
                                           u32(bounds.height())};
  xcb_configure_window(x(), cover.window,
                       XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                           XCB_CONFIG_WINDOW_HEIGHT,
                       place.data());
  std::vector<xcb_rectangle_t> rectangles;
  for (const QRect& rect : cover.part.translated(-bounds.topLeft())) {
    rectangles.push_back({i16(rect.x()), i16(rect.y()), u16(rect.width()), u16(rect.height())});
  }
  xcb_shape_rectangles(x(), XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING, XCB_CLIP_ORDERING_UNSORTED,
                       cover.window, 0, 0, static_cast<std::uint32_t>(rectangles.size()),
                       rectangles.data());
}

void putAbove(const Cover& cover) {
  const std::array<std::uint32_t, 2> place{cover.covered, XCB_STACK_MODE_ABOVE};
  xcb_configure_window(x(), cover.window, XCB_CONFIG_WINDOW_SIBLING | XCB_CONFIG_WINDOW_STACK_MODE,
                       place.data());
}

void show(const Cover& cover, const ViewFrames& frames, const QPoint& origin, const QRect& part) {
  const QPoint corner = cover.part.boundingRect().topLeft() - origin;
  showFiltered(frames, cover.window, part, part.topLeft() - corner);
}

// Allows covers again above windows that were raised too often, but not recently.
void endRivalries() {
  const auto now = Clock::now();
  for (TopLevel& topLevel : windowStack.windows) {
    if (topLevel.timesRaised == 0 || now - topLevel.firstRaised < rivalryTime) continue;
    topLevel.timesRaised = 0;
    if (std::exchange(topLevel.keepsAbove, false)) noteChange(topLevel);
  }
}

// Returns true if a window that was raised may be covered again.
bool mayCoverAgain(TopLevel& topLevel) {
  if (topLevel.timesRaised == 0) topLevel.firstRaised = Clock::now();
  return ++topLevel.timesRaised <= mostRaises;
}

// Puts a cover above its window again if the window was raised. Changes the stack at once, because
// the server's events come later.
void raise(const Cover& cover) {
  const auto covered = findTopLevel(cover.covered);
  const auto own = findTopLevel(cover.window);
  if (own == windowStack.windows.end() || own > covered) return;
  if (!mayCoverAgain(*covered)) {
    noteChange(*covered);
    covered->keepsAbove = true;
    return;
  }
  putAbove(cover);
  std::rotate(own, own + 1, covered + 1);
}

void place(xcb_window_t covered, const QRegion& part, const ViewFrames& frames,
           const QPoint& origin) {
  auto cover = std::ranges::find(covers, covered, &Cover::covered);
  const bool isNew = cover == covers.end();
  if (isNew) {
    cover = covers.insert(cover, {covered, createCover(part.boundingRect()), {}});
    putAbove(*cover);
  } else {
    raise(*cover);
  }
  if (cover->part == part) return;
  cover->part = part;
  fit(*cover);
  if (isNew) xcb_map_window(x(), cover->window);
  for (const QRect& rect : part.translated(-origin)) show(*cover, frames, origin, rect);
}

void remove(const Cover& cover) {
  xcb_destroy_window(x(), cover.window);
}

}  // namespace

void coverWindowsAbove(bool cover) {
  if (windowStack.coversAbove == cover) return;
  windowStack.coversAbove = cover;
  changeAll();
}

std::optional<QRect> exposedOnCover(const xcb_expose_event_t& event) {
  const auto cover = std::ranges::find(covers, event.window, &Cover::window);
  if (cover == covers.end()) return std::nullopt;
  const QRect exposed(event.x, event.y, event.width, event.height);
  return exposed.translated(cover->part.boundingRect().topLeft());
}

void showOnCovers(const ViewFrames& frames, const QPoint& origin, const QRect& part) {
  for (const Cover& cover : covers) {
    for (const QRect& rect : cover.part.translated(-origin) & part) {
      show(cover, frames, origin, rect);
    }
  }
}

void placeCovers(const ViewFrames& frames, const QRect& view) {
  if (covers.empty() && !windowStack.coversAbove) return;
  endRivalries();
  struct Wanted {
    xcb_window_t covered;
    QRegion part;
  };
  std::vector<Wanted> wanted;
  for (const TopLevel* const topLevel : windowsAbove()) {
    const QRegion part = topLevel->region() & view;
    if (isCovered(*topLevel) && !part.isEmpty()) wanted.push_back({topLevel->window, part});
  }
  std::erase_if(covers, [&](const Cover& cover) {
    const bool isWanted =
        std::ranges::find(wanted, cover.covered, &Wanted::covered) != wanted.end();
    if (!isWanted) remove(cover);
    return !isWanted;
  });
  for (const auto& [covered, part] : wanted) place(covered, part, frames, view.topLeft());
  xcb_flush(x());
}

void removeCovers() {
  for (const Cover& cover : covers) remove(cover);
  covers.clear();
}

}  // namespace tintora::platform
