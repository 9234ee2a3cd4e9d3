#include <QAbstractEventDispatcher>
#include <QRegion>
#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

#include "platform/linux/backdrop.h"
#include "platform/linux/composition.h"
#include "platform/linux/covers.h"
#include "platform/linux/handles.h"
#include "platform/linux/image_requests.h"
#include "platform/linux/view_frames.h"
#include "platform/linux/view_source.h"
#include "platform/linux/window_damage.h"
#include "platform/linux/window_events.h"
#include "platform/linux/window_stack.h"
#include "platform/linux/x_server.h"

namespace tintora::platform {

namespace {

struct FilteredView {
  xcb_window_t window = XCB_NONE;
  QSize size;
  QPoint origin;
  PixelFilter filter{};
  ViewFrames frames;
  QRegion toCompose;  // parts of the view: to be read and filtered
  QRegion toFilter;   // to be filtered only
};
FilteredView view;

QRect wholeView() {
  return {QPoint(), view.size};
}

void followEventOfView(const xcb_generic_event_t& event) {
  if ((event.response_type & 0x7F) == XCB_EXPOSE) {
    const auto& exposed = reinterpret_cast<const xcb_expose_event_t&>(event);
    if (exposed.window == view.window) {
      view.toFilter += QRect(exposed.x, exposed.y, exposed.width, exposed.height);
    } else if (const auto onRoot = exposedOnCover(exposed)) {
      view.toFilter += onRoot->translated(-view.origin);
    }
    return;
  }
  // Errors arrive here too. They are about windows that are gone, which another event reports.
  if (event.response_type != 0 && !followBackdrop(event)) followEvent(event);
}

// Handles events until there are none. Returns false if there was none at all.
bool followEvents(xcb_generic_event_t* (*poll)(xcb_connection_t*)) {
  bool any = false;
  while (const Received<xcb_generic_event_t> event{poll(xServer.connection)}) {
    followEventOfView(*event);
    any = true;
  }
  return any;
}

// Adds what changed on the root to the parts of the view that must be composed.
void takeChanges() {
  if (windowStack.backgroundChanged) {
    windowStack.backgroundChanged = false;
    forgetBackdrop();
    view.toCompose = wholeView();
  }
  view.toCompose += windowStack.changed.translated(-view.origin);
  windowStack.changed = QRegion();
  view.toCompose &= wholeView();
  view.toFilter = (view.toFilter & wholeView()) - view.toCompose;
}

void filterAndShow(const QRect& part) {
  const ViewFrames& frames = view.frames;
  const std::ptrdiff_t offset = frames.offset(part.topLeft());
  filterRows(view.filter, frames.unfiltered.bytes + offset, frames.stride(),
             frames.filtered.bytes + offset, frames.stride(),
             static_cast<std::size_t>(part.width()), static_cast<std::size_t>(part.height()));
  showFiltered(frames, view.window, part, part.topLeft());
  showOnCovers(frames, view.origin, part);
  xcb_flush(xServer.connection);
}

void composeFilterAndShow(const std::vector<QRect>& parts) {
  std::vector<PixelRequest> requests;
  beginReading(view.frames);
  for (const QRect& part : parts) {
    compose(view.frames.composed, view.frames.context, view.origin, part.translated(view.origin));
    requests.push_back(requestPixels(view.frames, part));
  }
  xcb_flush(xServer.connection);
  for (std::size_t i = 0; i < parts.size(); ++i) {
    if (receivePixels(view.frames, parts[i], requests[i])) filterAndShow(parts[i]);
  }
}

void filterAgain(const std::vector<QRect>& parts) {
  // The server may still be reading the pixels that were filtered before.
  waitForXServer();
  for (const QRect& part : parts) filterAndShow(part);
}

void startView(Window* parent, xcb_window_t window) {
  watchWindows(static_cast<xcb_window_t>(parent->window->winId()));
  view.window = window;
  startBackdrop();
}

void stopView() {
  removeCovers();
  releaseFrames(view.frames);
  forgetTarget();
  stopBackdrop();
  xcb_destroy_window(xServer.connection, view.window);
  view = {};
  forgetWindows();
}

void setViewSize(const QSize& size) {
  if (size == view.size) return;
  view.size = size;
  if (size.isEmpty()) return;
  makeRoom(view.frames, size, xServer.sharing);
  view.toCompose = wholeView();
}

void setViewOrigin(const QPoint& origin) {
  if (origin == view.origin) return;
  view.origin = origin;
  view.toCompose = wholeView();
}

void setViewFilter(const PixelFilter& filter) {
  view.filter = filter;
  view.toFilter = wholeView();
}

void updateView() {
  if (view.window == XCB_NONE) return;
  followEvents(&xcb_poll_for_event);
  watchBackdrop();
  if (!isOwnWindowShown() || view.size.isEmpty()) {
    removeCovers();
    // Sends the requests that stopped watching windows.
    xcb_flush(xServer.connection);
    return;
  }
  collectDamage({view.origin, view.size});
  takeChanges();
  const QRegion toCompose = std::exchange(view.toCompose, {});
  const QRegion toFilter = std::exchange(view.toFilter, {});
  if (!toCompose.isEmpty()) composeFilterAndShow(inParts(toCompose));
  if (!toFilter.isEmpty()) filterAgain(inParts(toFilter));
  placeCovers(view.frames, {view.origin, view.size});
  // Events that were read along with replies leave the socket empty, so they would not wake the
  // loop.
  const bool hasMoreEvents = followEvents(&xcb_poll_for_queued_event);
  if (watchBackdrop() || hasMoreEvents || !windowStack.changed.isEmpty())
    QAbstractEventDispatcher::instance()->wakeUp();
}

void finishView() {
  updateView();
  waitForXServer();
}

// Returns a picture of the view with this program's windows above it, but not its menus. Reads
// nothing off the screen, which may be out of date.
QImage pictureOfView() {
  finishView();
  if (view.size.isEmpty()) return {};
  const xcb_pixmap_t picture = xcb_generate_id(x());
  xcb_create_pixmap(x(), xServer.screen->root_depth, picture, xServer.screen->root,
                    u16(view.size.width()), u16(view.size.height()));
  showFiltered(view.frames, picture, wholeView(), {0, 0});
  composeProgramWindows(picture, view.frames.context, view.origin, {view.origin, view.size});
  forgetTarget();
  const auto pixels = receiveImage(requestImage(picture, wholeView()), view.size);
  xcb_free_pixmap(x(), picture);
  if (!pixels) return {};
  // Copies the rows, because they belong to the reply.
  return QImage(xcb_get_image_data(pixels.get()), view.size.width(), view.size.height(),
                qsizetype{4} * view.size.width(), QImage::Format_RGB32)
      .copy();
}

QImage copyOfView(const QSize& clientArea) {
  const QImage whole = pictureOfView();
  return whole.copy({QPoint(), whole.size().boundedTo(clientArea)});
}

}  // namespace

const ViewSource lens{.start = &startView,
                      .stop = &stopView,
                      .setSize = &setViewSize,
                      .setOrigin = &setViewOrigin,
                      .setFilter = &setViewFilter,
                      .update = &updateView,
                      .finish = &finishView,
                      .copy = &copyOfView};

}  // namespace tintora::platform
