#include "platform/linux/learned_background.h"

#include <xcb/damage.h>
#include <xcb/xcbext.h>
#include <xcb/xfixes.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "platform/linux/compositing.h"
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
}

bool followScreen(const xcb_generic_event_t& event) {
  if ((event.response_type & 0x7F) != xServer.damageNotify) return false;
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

QRegion uncoveredRoot() {
  QRegion uncovered(QRect(QPoint(), windowStack.rootSize));
  for (const TopLevel* const topLevel : windowsSeen()) {
    if (topLevel->hasPixels && topLevel->window != overlayWindow()) uncovered -= topLevel->region();
  }
  return uncovered;
}

void learn(const QRegion& part) {
  makeRoom();
  for (const QRect& rect : part) {
    xcb_copy_area(x(), xServer.screen->root, learned.pixels, learned.reading, i16(rect.x()),
                  i16(rect.y()), i16(rect.x()), i16(rect.y()), u16(rect.width()),
                  u16(rect.height()));
  }
  learned.known += part;
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
}

const QRegion& learnedPart() {
  return learned.known;
}

xcb_pixmap_t learnedPixels() {
  return learned.pixels;
}

}  // namespace tintora::platform
