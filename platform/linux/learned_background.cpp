#include "platform/linux/learned_background.h"

#include <xcb/damage.h>
#include <xcb/xcbext.h>
#include <xcb/xfixes.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <span>
#include <vector>

#include "platform/linux/compositing.h"
#include "platform/linux/image_requests.h"
#include "platform/linux/window_stack.h"
#include "platform/linux/x_server.h"

namespace tintora::platform {

namespace {

struct LearnedBackground {
  xcb_damage_damage_t damage = XCB_NONE;  // of the whole screen
  xcb_pixmap_t pixels = XCB_NONE;
  QSize size;
  xcb_gcontext_t reading = XCB_NONE;
  QRegion known;
  QRegion withoutOwnShadows;  // the part of it that was far from the program's windows
  QRegion withoutShadows;     // the part of that that was far from all windows
  std::optional<std::uint32_t> plain;
  // What was drawn on the screen: the server's region for it, and the request that reads it.
  xcb_xfixes_region_t drawn = XCB_NONE;
  std::optional<xcb_xfixes_fetch_region_cookie_t> request;
};
LearnedBackground learned;

QRegion regionOf(const xcb_xfixes_fetch_region_reply_t& reply) {
  const std::span rectangles(
      xcb_xfixes_fetch_region_rectangles(&reply),
      static_cast<std::size_t>(xcb_xfixes_fetch_region_rectangles_length(&reply)));
  QRegion region;
  for (const xcb_rectangle_t& r : rectangles) region += QRect(r.x, r.y, r.width, r.height);
  return region;
}

void makeRoom() {
  if (learned.size == windowStack.rootSize) return;
  forgetLearned();
  learned.size = windowStack.rootSize;
  learned.pixels = xcb_generate_id(x());
  xcb_create_pixmap(x(), xServer.screen->root_depth, learned.pixels, xServer.screen->root,
                    u16(learned.size.width()), u16(learned.size.height()));
  learned.reading = xcb_generate_id(x());
  const std::array<std::uint32_t, 2> asShown{XCB_SUBWINDOW_MODE_INCLUDE_INFERIORS, 0};
  xcb_create_gc(x(), learned.reading, xServer.screen->root,
                XCB_GC_SUBWINDOW_MODE | XCB_GC_GRAPHICS_EXPOSURES, asShown.data());
}

// Returns lines across a region, which show it well enough and are read in a moment.
std::vector<QRect> linesIn(const QRegion& region) {
  constexpr int apart = 48;
  std::vector<QRect> lines;
  for (const QRect& rect : region) {
    const int first = (rect.top() + apart - 1) / apart * apart;
    for (int y = first; y <= rect.bottom(); y += apart) {
      lines.emplace_back(rect.left(), y, rect.width(), 1);
    }
  }
  return lines;
}

// Returns the colours along lines of the screen or of what is known, or nothing if the server
// refuses.
std::vector<std::uint32_t> coloursAlong(const std::vector<QRect>& lines, xcb_drawable_t source) {
  if (lines.empty()) return {};
  const QSize size(learned.size.width(), static_cast<int>(lines.size()));
  const xcb_pixmap_t copy = xcb_generate_id(x());
  xcb_create_pixmap(x(), xServer.screen->root_depth, copy, xServer.screen->root, u16(size.width()),
                    u16(size.height()));
  for (std::size_t i = 0; i < lines.size(); ++i) {
    xcb_copy_area(x(), source, copy, learned.reading, i16(lines[i].x()), i16(lines[i].y()), 0,
                  i16(static_cast<int>(i)), u16(lines[i].width()), 1);
  }
  const auto image = receiveImage(requestImage(copy, {QPoint(), size}), size);
  xcb_free_pixmap(x(), copy);
  if (!image) return {};
  std::vector<std::uint32_t> colours;
  const std::uint8_t* row = xcb_get_image_data(image.get());
  for (const QRect& line : lines) {
    const std::size_t before = colours.size();
    const auto length = static_cast<std::size_t>(line.width());
    colours.resize(before + length);
    std::memcpy(colours.data() + before, row, 4 * length);
    row += std::size_t{4} * static_cast<std::size_t>(size.width());
  }
  constexpr std::uint32_t withoutAlpha = 0xFFFFFF;
  for (std::uint32_t& colour : colours) colour &= withoutAlpha;
  return colours;
}

// Returns true if the screen shows another background than the one that is known. Then it was drawn
// wherever it can be seen without shadows, and most of it is different, unlike where a window fades
// away.
bool showsAnother(const QRegion& drawn, const QRegion& unshaded) {
  const QRegion comparable = learned.withoutShadows & unshaded;
  if (comparable.isEmpty() || !(comparable - drawn).isEmpty()) return false;
  const std::vector<QRect> lines = linesIn(comparable);
  const std::vector<std::uint32_t> known = coloursAlong(lines, learned.pixels);
  const std::vector<std::uint32_t> shown = coloursAlong(lines, xServer.screen->root);
  if (known.size() != shown.size()) return false;
  std::size_t different = 0;
  for (std::size_t i = 0; i < known.size(); ++i) {
    if (known[i] != shown[i]) ++different;
  }
  return 2 * different > known.size();
}

std::optional<std::uint32_t> findPlainColour() {
  const auto sure = coloursAlong(linesIn(learned.withoutShadows), learned.pixels);
  if (sure.empty()) return std::nullopt;
  const std::uint32_t colour = sure[0];
  const auto isSame = [&](std::uint32_t other) { return other == colour; };
  if (!std::ranges::all_of(sure, isSame)) return std::nullopt;
  const auto unsure = coloursAlong(linesIn(learned.known - learned.withoutShadows), learned.pixels);
  const auto same = static_cast<std::size_t>(std::ranges::count_if(unsure, isSame));
  return 2 * same >= unsure.size() ? std::optional(colour) : std::nullopt;
}

}  // namespace

void watchScreen(bool watch) {
  if (watch == (learned.damage != XCB_NONE)) return;
  if (learned.drawn == XCB_NONE) {
    learned.drawn = xcb_generate_id(x());
    xcb_xfixes_create_region(x(), learned.drawn, 0, nullptr);
  }
  if (watch) {
    learned.damage = xcb_generate_id(x());
    xcb_damage_create(x(), learned.damage, xServer.screen->root, XCB_DAMAGE_REPORT_LEVEL_NON_EMPTY);
  } else {
    xcb_damage_destroy(x(), learned.damage);
    learned.damage = XCB_NONE;
  }
  xcb_flush(x());
}

bool followScreen(const xcb_generic_event_t& event) {
  if (!reportsDamage(event)) return false;
  const auto& damage = reinterpret_cast<const xcb_damage_notify_event_t&>(event);
  return damage.damage == learned.damage;
}

void requestScreenDamage() {
  if (learned.damage == XCB_NONE || learned.request) return;
  xcb_damage_subtract(x(), learned.damage, XCB_NONE, learned.drawn);
  learned.request = xcb_xfixes_fetch_region(x(), learned.drawn);
  xcb_flush(x());
}

std::optional<QRegion> receivedScreenDamage() {
  if (!learned.request) return std::nullopt;
  void* answer = nullptr;
  xcb_generic_error_t* refusal = nullptr;
  if (xcb_poll_for_reply(x(), learned.request->sequence, &answer, &refusal) == 0) {
    return std::nullopt;
  }
  learned.request.reset();
  const Received<xcb_generic_error_t> refused(refusal);
  const Received<xcb_xfixes_fetch_region_reply_t> reply(
      static_cast<xcb_xfixes_fetch_region_reply_t*>(answer));
  return reply ? regionOf(*reply) : QRegion();
}

RootParts rootParts() {
  // Wider than the shadows of all desktops that we know, on screens of high resolution too.
  constexpr int longestShadow = 120;
  constexpr QMargins shadow(longestShadow, longestShadow, longestShadow, longestShadow);
  QRegion covered;
  QRegion nearOwn;
  QRegion nearOthers;
  for (const TopLevel* const topLevel : windowsSeen()) {
    if (!topLevel->hasPixels || topLevel->window == overlayWindow()) continue;
    covered += topLevel->region();
    (isOfProgram(*topLevel) ? nearOwn : nearOthers) += topLevel->bounds.marginsAdded(shadow);
  }
  const QRegion root(QRect(QPoint(), windowStack.rootSize));
  const QRegion uncovered = root - covered;
  const QRegion ownFar = uncovered - nearOwn;
  return {uncovered, ownFar, ownFar - nearOthers};
}

RootParts operator&(const RootParts& a, const RootParts& b) {
  return {a.uncovered & b.uncovered, a.ownFar & b.ownFar, a.unshaded & b.unshaded};
}

QRegion learnable(const RootParts& parts) {
  return parts.unshaded + (parts.ownFar - learned.withoutShadows) +
         (parts.uncovered - learned.withoutOwnShadows);
}

QRegion improvable(const RootParts& parts) {
  return (parts.unshaded - learned.withoutShadows) + (parts.ownFar - learned.withoutOwnShadows) +
         (parts.uncovered - learned.known);
}

bool learn(const QRegion& part, const RootParts& parts) {
  if (part.isEmpty()) return false;
  makeRoom();
  if (showsAnother(part, parts.unshaded)) {
    learned.withoutOwnShadows = QRegion();
    learned.withoutShadows = QRegion();
  }
  for (const QRect& rect : part) {
    xcb_copy_area(x(), xServer.screen->root, learned.pixels, learned.reading, i16(rect.x()),
                  i16(rect.y()), i16(rect.x()), i16(rect.y()), u16(rect.width()),
                  u16(rect.height()));
  }
  learned.known += part;
  learned.withoutOwnShadows += part & parts.ownFar;
  learned.withoutShadows += part & parts.unshaded;
  const auto before = learned.plain;
  learned.plain = findPlainColour();
  return learned.plain != before;
}

void forgetLearned() {
  if (learned.pixels != XCB_NONE) {
    xcb_free_pixmap(x(), learned.pixels);
    xcb_free_gc(x(), learned.reading);
  }
  learned.pixels = XCB_NONE;
  learned.reading = XCB_NONE;
  learned.size = {};
  learned.known = QRegion();
  learned.withoutOwnShadows = QRegion();
  learned.withoutShadows = QRegion();
  learned.plain.reset();
}

const QRegion& learnedPart() {
  return learned.known;
}

const QRegion& learnedWithoutShadows() {
  return learned.withoutShadows;
}

std::optional<std::uint32_t> plainColour() {
  return learned.plain;
}

xcb_pixmap_t learnedPixels() {
  return learned.pixels;
}

}  // namespace tintora::platform
