#include "platform/linux/screen_place.h"

#include <xcb/randr.h>
#include <xcb/xcb.h>

#include <QAbstractNativeEventFilter>
#include <QByteArray>
#include <QCoreApplication>
#include <cstdint>

#include "platform/linux/x_server.h"

namespace tintora::platform {

namespace {

QRect primary;
void (*primaryChanged)() = nullptr;

bool listsMonitors() {
  xcb_connection_t* const x = xServer.connection;
  const xcb_query_extension_reply_t* const extension = xcb_get_extension_data(x, &xcb_randr_id);
  if (extension == nullptr || extension->present == 0) return false;
  const Received<xcb_randr_query_version_reply_t> version(
      xcb_randr_query_version_reply(x, xcb_randr_query_version(x, 1, 5), nullptr));
  return version && (version->major_version > 1 || version->minor_version >= 5);
}

QRect rootArea() {
  xcb_connection_t* const x = xServer.connection;
  const Received<xcb_get_geometry_reply_t> root(
      xcb_get_geometry_reply(x, xcb_get_geometry(x, xServer.screen->root), nullptr));
  return root ? QRect(0, 0, root->width, root->height) : primary;
}

QRect readPrimary() {
  static const bool listed = listsMonitors();
  if (!listed) return rootArea();
  xcb_connection_t* const x = xServer.connection;
  const Received<xcb_randr_get_monitors_reply_t> reply(
      xcb_randr_get_monitors_reply(x, xcb_randr_get_monitors(x, xServer.screen->root, 1), nullptr));
  if (!reply) return rootArea();
  QRect first;
  auto monitors = xcb_randr_get_monitors_monitors_iterator(reply.get());
  for (; monitors.rem != 0; xcb_randr_monitor_info_next(&monitors)) {
    const xcb_randr_monitor_info_t& monitor = *monitors.data;
    const QRect area(monitor.x, monitor.y, monitor.width, monitor.height);
    if (area.isEmpty()) continue;
    if (monitor.primary != 0) return area;
    if (first.isNull()) first = area;
  }
  return first.isNull() ? rootArea() : first;
}

// Follows RandR's events and the root's, which Qt selects on its own connection.
class MonitorEvents : public QAbstractNativeEventFilter {
 public:
  bool nativeEventFilter(const QByteArray& /*type*/, void* message, qintptr* /*result*/) override {
    if (concernsMonitors(*static_cast<const xcb_generic_event_t*>(message))) readAgain();
    return false;
  }

 private:
  static bool concernsMonitors(const xcb_generic_event_t& event) {
    const int kind = event.response_type & 0x7F;
    if (kind == XCB_CONFIGURE_NOTIFY) {
      const auto& configured = reinterpret_cast<const xcb_configure_notify_event_t&>(event);
      return configured.window == xServer.screen->root;
    }
    const xcb_query_extension_reply_t* const extension =
        xcb_get_extension_data(xServer.connection, &xcb_randr_id);
    if (extension == nullptr || extension->present == 0) return false;
    const int first = extension->first_event;
    return kind == first + XCB_RANDR_SCREEN_CHANGE_NOTIFY || kind == first + XCB_RANDR_NOTIFY;
  }

  static void readAgain() {
    const QRect before = primary;
    primary = readPrimary();
    if (primary != before) primaryChanged();
  }
};

}  // namespace

void followMonitors(void (*changed)()) {
  static MonitorEvents events;
  primaryChanged = changed;
  primary = readPrimary();
  QCoreApplication::instance()->installNativeEventFilter(&events);
}

const QRect& primaryMonitor() {
  return primary;
}

QPoint onRoot(const Point& place) {
  return QPoint(place.x, place.y) + primary.topLeft();
}

QRect onRoot(const Rect& area) {
  return {onRoot(Point{area.left, area.top}), QSize(area.width(), area.height())};
}

Point fromRoot(const QPoint& place) {
  const QPoint own = place - primary.topLeft();
  return {own.x(), own.y()};
}

Rect fromRoot(const QRect& area) {
  const Point corner = fromRoot(area.topLeft());
  return {corner.x, corner.y, corner.x + area.width(), corner.y + area.height()};
}

}  // namespace tintora::platform
