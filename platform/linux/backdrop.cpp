#include "platform/linux/backdrop.h"

#include <QRegion>
#include <QTimer>
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <utility>

#include "platform/linux/compositing.h"
#include "platform/linux/image_requests.h"
#include "platform/linux/learned_background.h"
#include "platform/linux/root_background.h"
#include "platform/linux/window_stack.h"
#include "platform/linux/x_server.h"

namespace tintora::platform {

namespace {

struct Backdrop {
  bool isRead = false;
  xcb_pixmap_t tile = XCB_NONE;       // repeated over the root; none if no background is known
  bool ownsTile = false;              // the tile is a copy of what the server paints
  QRegion copied;                     // the part that was copied so far
  bool learns = false;                // reads the screen where no window is
  RootParts rested;                   // all the time since the screen was last looked at
  bool windowsMoved = false;          // the last event moved or showed a window
  QRegion unlearned;                  // drawn or uncovered since it was learned
  xcb_gcontext_t context = XCB_NONE;  // paints with the tile
  std::optional<bool> covered;        // windows cover the whole root; unknown since they changed
  std::unique_ptr<QTimer> look;       // waits until changes of the screen have been drawn
};
Backdrop backdrop;

// Long enough that a running animation costs little, short enough that the user does not wait.
constexpr int lookAfterMilliseconds = 300;

void createContext() {
  backdrop.context = xcb_generate_id(x());
  const std::array<std::uint32_t, 2> asShown{XCB_SUBWINDOW_MODE_INCLUDE_INFERIORS, 0};
  xcb_create_gc(x(), backdrop.context, xServer.screen->root,
                XCB_GC_SUBWINDOW_MODE | XCB_GC_GRAPHICS_EXPOSURES, asShown.data());
}

xcb_pixmap_t createPixmap(const QSize& size) {
  const xcb_pixmap_t pixmap = xcb_generate_id(x());
  xcb_create_pixmap(x(), xServer.screen->root_depth, pixmap, xServer.screen->root,
                    u16(size.width()), u16(size.height()));
  return pixmap;
}

void copyArea(xcb_drawable_t source, xcb_pixmap_t target, const QPoint& origin, const QRect& part) {
  const QPoint to = part.topLeft() - origin;
  xcb_copy_area(x(), source, target, backdrop.context, i16(part.x()), i16(part.y()), i16(to.x()),
                i16(to.y()), u16(part.width()), u16(part.height()));
}

QRect wholeRoot() {
  return {QPoint(), windowStack.rootSize};
}

// Copies the part of the background that is still missing. A large screen takes some time, so at
// the start only the view's part is copied.
void completeTile(const QRect& part) {
  if (!backdrop.ownsTile || backdrop.tile == XCB_NONE) return;
  for (const QRect& rect : QRegion(part) - backdrop.copied) copyBackground(backdrop.tile, rect);
  backdrop.copied += part;
}

void readBackdrop() {
  if (backdrop.context == XCB_NONE) createContext();
  backdrop.isRead = true;
  backdrop.tile = namedBackground();
  const bool named = backdrop.tile != XCB_NONE;
  backdrop.ownsTile = !named;
  backdrop.copied = QRegion();
  if (!named && paintsBackground()) backdrop.tile = createPixmap(windowStack.rootSize);
  // A compositing manager paints the named background or one of its own. If it is the window
  // manager too, it may paint its own in any case.
  backdrop.learns =
      backdrop.tile == XCB_NONE || (isComposited() && (!named || isComposedByWindowManager()));
}

void lookLater() {
  if (backdrop.look && !backdrop.look->isActive()) backdrop.look->start(lookAfterMilliseconds);
}

std::span<const std::uint8_t> bytesOf(const xcb_get_image_reply_t& image) {
  return {xcb_get_image_data(&image), static_cast<std::size_t>(xcb_get_image_data_length(&image))};
}

// Returns true if the root has another background than the one that was copied. No event reports a
// background without a name, but the new one was drawn and looks different.
bool hasPaintedAnother(const QRegion& drawn) {
  constexpr int sample = 8;
  const QRect rect = *drawn.begin();
  const QRect part(rect.topLeft(), rect.size().boundedTo({sample, sample}));
  const xcb_pixmap_t screen = createPixmap(part.size());
  copyArea(xServer.screen->root, screen, part.topLeft(), part);
  const auto screenRequest = requestImage(screen, {QPoint(), part.size()});
  const auto copyRequest = requestImage(backdrop.tile, part);
  xcb_free_pixmap(x(), screen);
  const auto onScreen = receiveImage(screenRequest, part.size());
  const auto copied = receiveImage(copyRequest, part.size());
  return !onScreen || !copied || !std::ranges::equal(bytesOf(*onScreen), bytesOf(*copied));
}

// Learns only what has rested since the last look, because a window that has just gone may still be
// on the screen, and so may its shadow.
void learnWhatRests(const QRegion& drawn) {
  const RootParts now = rootParts();
  backdrop.unlearned = (backdrop.unlearned + drawn + improvable(now)) & now.uncovered;
  const QRegion part = backdrop.unlearned & learnable(backdrop.rested);
  if (learn(part, backdrop.rested)) changeAll();
  backdrop.unlearned -= part;
  backdrop.rested = now;
  if (!(backdrop.unlearned & learnable(now)).isEmpty()) lookLater();
}

void lookAtScreen() {
  if (backdrop.isRead) requestScreenDamage();
}

void takeInScreen(const QRegion& drawn) {
  if (!backdrop.isRead) return;
  const QRegion drawnOnRoot = drawn & rootParts().uncovered;
  if (backdrop.learns) {
    learnWhatRests(drawnOnRoot);
    return;
  }
  if (!backdrop.ownsTile) return;
  const QRect all = wholeRoot();
  if (drawnOnRoot.isEmpty()) return completeTile(all);
  // Until everything is copied, the parts may come from different backgrounds.
  const bool isComplete = (QRegion(all) - backdrop.copied).isEmpty();
  windowStack.backgroundChanged |= !isComplete || hasPaintedAnother(drawnOnRoot);
}

void noteCovered() {
  if (!std::exchange(backdrop.windowsMoved, false)) return;
  backdrop.rested = backdrop.rested & rootParts();
}

bool movesWindows(const xcb_generic_event_t& event) {
  switch (event.response_type & 0x7F) {
    case XCB_DESTROY_NOTIFY:
    case XCB_UNMAP_NOTIFY:
    case XCB_MAP_NOTIFY:
    case XCB_REPARENT_NOTIFY:
    case XCB_CONFIGURE_NOTIFY:
      return true;
    default:
      return false;
  }
}

void fill(xcb_pixmap_t target, const QPoint& origin, const QRect& part) {
  const QRect place = part.translated(-origin);
  const xcb_rectangle_t rectangle{i16(place.x()), i16(place.y()), u16(place.width()),
                                  u16(place.height())};
  xcb_poly_fill_rectangle(x(), target, backdrop.context, 1, &rectangle);
}

void paintColour(std::uint32_t colour, xcb_pixmap_t target, const QPoint& origin,
                 const QRect& part) {
  const std::array<std::uint32_t, 2> solid{colour, XCB_FILL_STYLE_SOLID};
  xcb_change_gc(x(), backdrop.context, XCB_GC_FOREGROUND | XCB_GC_FILL_STYLE, solid.data());
  fill(target, origin, part);
}

void paintTile(xcb_pixmap_t target, const QPoint& origin, const QRect& part) {
  completeTile(part);
  constexpr std::uint32_t black = 0;
  if (backdrop.tile == XCB_NONE) return paintColour(black, target, origin, part);
  const std::array<std::uint32_t, 4> tiled{XCB_FILL_STYLE_TILED, backdrop.tile,
                                           static_cast<std::uint32_t>(-origin.x()),
                                           static_cast<std::uint32_t>(-origin.y())};
  xcb_change_gc(
      x(), backdrop.context,
      XCB_GC_FILL_STYLE | XCB_GC_TILE | XCB_GC_TILE_STIPPLE_ORIGIN_X | XCB_GC_TILE_STIPPLE_ORIGIN_Y,
      tiled.data());
  fill(target, origin, part);
}

}  // namespace

void startBackdrop() {
  backdrop.look = std::make_unique<QTimer>();
  backdrop.look->setSingleShot(true);
  QObject::connect(backdrop.look.get(), &QTimer::timeout, &lookAtScreen);
  readBackdrop();
  windowStack.backgroundChanged = false;
  backdrop.rested = rootParts();
  if (backdrop.learns) learn(backdrop.rested.uncovered, backdrop.rested);
  lookLater();
}

void stopBackdrop() {
  forgetBackdrop();
  backdrop = {};
}

bool followBackdrop(const xcb_generic_event_t& event) {
  const bool drawn = followScreen(event);
  const bool moves = movesWindows(event);
  // The windows are listed as they were after the event before this one.
  if (backdrop.learns) noteCovered();
  backdrop.windowsMoved = moves;
  if (!reportsDamage(event)) backdrop.covered.reset();
  if (drawn) lookLater();
  return drawn;
}

// Does not watch while windows cover the whole root, because all drawing is theirs, and watching
// makes it slower. The server reports all of the screen as drawn when watching begins again.
bool watchBackdrop() {
  const bool wanted = isOwnWindowShown() && (backdrop.learns || backdrop.ownsTile);
  if (wanted && !backdrop.covered) {
    backdrop.covered = rootParts().uncovered.isEmpty();
    if (*backdrop.covered) backdrop.rested = {};
  }
  watchScreen(wanted && !*backdrop.covered);
  const auto drawn = receivedScreenDamage();
  if (drawn) takeInScreen(*drawn);
  return drawn.has_value();
}

void forgetBackdrop() {
  if (backdrop.ownsTile && backdrop.tile != XCB_NONE) xcb_free_pixmap(x(), backdrop.tile);
  backdrop.tile = XCB_NONE;
  backdrop.ownsTile = false;
  backdrop.isRead = false;
  forgetLearned();
  lookLater();
}

void paintBackdrop(xcb_pixmap_t target, const QPoint& origin, const QRect& part) {
  if (!backdrop.isRead) {
    readBackdrop();
    completeTile(wholeRoot());
  }
  const auto plain = backdrop.learns ? plainColour() : std::nullopt;
  QRegion learned;
  if (backdrop.learns) learned = (plain ? learnedWithoutShadows() : learnedPart()) & part;
  for (const QRect& rect : learned) copyArea(learnedPixels(), target, origin, rect);
  for (const QRect& rect : QRegion(part) - learned) {
    if (plain) {
      paintColour(*plain, target, origin, rect);
    } else {
      paintTile(target, origin, rect);
    }
  }
}

}  // namespace tintora::platform
