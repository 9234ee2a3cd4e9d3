#include "platform/linux/backdrop.h"

#include <QRegion>
#include <QTimer>
#include <array>
#include <cstdint>
#include <memory>
#include <vector>

#include "platform/linux/compositing.h"
#include "platform/linux/learned_background.h"
#include "platform/linux/root_background.h"
#include "platform/linux/window_stack.h"
#include "platform/linux/x_server.h"

namespace tintora::platform {

namespace {

struct Backdrop {
  bool isRead = false;
  xcb_pixmap_t tile = XCB_NONE;  // repeated over the root; none: nothing is known to be painted
  bool ownsTile = false;
  bool learns = false;                // the screen is read where no window is
  QRegion uncovered;                  // at the last look
  QRegion unlearned;                  // was drawn or uncovered since it was learned
  xcb_gcontext_t context = XCB_NONE;  // paints with the tile
  std::unique_ptr<QTimer> look;       // at the screen, when its changes have had time to be drawn
};
Backdrop backdrop;

// Long enough that a running animation costs little, short enough that the user does not wait.
constexpr int lookAfterMilliseconds = 300;

void createContext() {
  backdrop.context = xcb_generate_id(x());
  const std::uint32_t noExposures = 0;
  xcb_create_gc(x(), backdrop.context, xServer.screen->root, XCB_GC_GRAPHICS_EXPOSURES,
                &noExposures);
}

void readBackdrop() {
  if (backdrop.context == XCB_NONE) createContext();
  backdrop.isRead = true;
  backdrop.tile = namedBackground();
  const bool named = backdrop.tile != XCB_NONE;
  backdrop.ownsTile = !named;
  if (!named) backdrop.tile = copyOfPaintedBackground();
  // Compositing managers paint what is named, or something of their own; those that are window
  // managers as well paint something of their own in any case.
  backdrop.learns =
      backdrop.tile == XCB_NONE || (isComposited() && (!named || isComposedByWindowManager()));
}

void lookLater() {
  if (backdrop.look && !backdrop.look->isActive()) backdrop.look->start(lookAfterMilliseconds);
}

// Returns a few pixels, or none if they cannot be read.
std::vector<std::uint8_t> pixelsOf(xcb_drawable_t drawable, const QRect& rect) {
  const Received<xcb_get_image_reply_t> image(
      xcb_get_image_reply(x(),
                          xcb_get_image(x(), XCB_IMAGE_FORMAT_Z_PIXMAP, drawable, i16(rect.x()),
                                        i16(rect.y()), u16(rect.width()), u16(rect.height()), ~0U),
                          nullptr));
  if (!image) return {};
  const std::uint8_t* const bytes = xcb_get_image_data(image.get());
  return {bytes, bytes + xcb_get_image_data_length(image.get())};
}

// Nothing tells that the root was given another background without a name. But it was drawn then,
// and differs from what was copied.
bool hasPaintedAnother(const QRegion& drawn) {
  constexpr int sample = 8;
  const QRect rect = *drawn.begin();
  const QRect part(rect.topLeft(), rect.size().boundedTo({sample, sample}));
  return pixelsOf(xServer.screen->root, part) != pixelsOf(backdrop.tile, part);
}

// A window that has just gone may still be on the screen: what is learned was uncovered at the last
// look too.
void learnWhatRests(const QRegion& drawn) {
  const QRegion uncovered = uncoveredRoot();
  backdrop.unlearned = (backdrop.unlearned + drawn + (uncovered - learnedPart())) & uncovered;
  const QRegion resting = backdrop.unlearned & backdrop.uncovered;
  learn(resting);
  backdrop.unlearned -= resting;
  backdrop.uncovered = uncovered;
  if (!backdrop.unlearned.isEmpty()) lookLater();
}

void lookAtScreen() {
  const QRegion drawn = takeScreenDamage();
  if (!backdrop.isRead) return;
  if (backdrop.learns) {
    learnWhatRests(drawn);
  } else if (!drawn.isEmpty() && backdrop.ownsTile && hasPaintedAnother(drawn)) {
    windowStack.backgroundChanged = true;
  }
}

void paintTile(xcb_pixmap_t target, const QPoint& origin, const QRect& part) {
  const std::uint32_t style =
      backdrop.tile == XCB_NONE ? XCB_FILL_STYLE_SOLID : XCB_FILL_STYLE_TILED;
  xcb_change_gc(x(), backdrop.context, XCB_GC_FILL_STYLE, &style);
  if (backdrop.tile != XCB_NONE) {
    const std::array<std::uint32_t, 3> tile{backdrop.tile, static_cast<std::uint32_t>(-origin.x()),
                                            static_cast<std::uint32_t>(-origin.y())};
    xcb_change_gc(x(), backdrop.context,
                  XCB_GC_TILE | XCB_GC_TILE_STIPPLE_ORIGIN_X | XCB_GC_TILE_STIPPLE_ORIGIN_Y,
                  tile.data());
  }
  const QRect place = part.translated(-origin);
  const xcb_rectangle_t rectangle{i16(place.x()), i16(place.y()), u16(place.width()),
                                  u16(place.height())};
  xcb_poly_fill_rectangle(x(), target, backdrop.context, 1, &rectangle);
}

void paintLearned(xcb_pixmap_t target, const QPoint& origin, const QRect& part) {
  const QPoint to = part.topLeft() - origin;
  xcb_copy_area(x(), learnedPixels(), target, backdrop.context, i16(part.x()), i16(part.y()),
                i16(to.x()), i16(to.y()), u16(part.width()), u16(part.height()));
}

}  // namespace

void startBackdrop() {
  backdrop.look = std::make_unique<QTimer>();
  backdrop.look->setSingleShot(true);
  QObject::connect(backdrop.look.get(), &QTimer::timeout, &lookAtScreen);
  readBackdrop();
  windowStack.backgroundChanged = false;
  backdrop.uncovered = uncoveredRoot();
  if (backdrop.learns) learn(backdrop.uncovered);
}

void stopBackdrop() {
  forgetBackdrop();
  backdrop = {};
}

bool followBackdrop(const xcb_generic_event_t& event) {
  if (!followScreen(event)) return false;
  lookLater();
  return true;
}

void watchBackdrop() {
  watchScreen(isOwnWindowShown());
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
  if (!backdrop.isRead) readBackdrop();
  const QRegion learned = backdrop.learns ? learnedPart() & part : QRegion();
  for (const QRect& rect : learned) paintLearned(target, origin, rect);
  for (const QRect& rect : QRegion(part) - learned) paintTile(target, origin, rect);
}

}  // namespace tintora::platform
