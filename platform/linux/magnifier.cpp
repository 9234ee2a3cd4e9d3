#include "platform/magnifier.h"

#include <xcb/xcb.h>

#include <QAbstractEventDispatcher>
#include <QSocketNotifier>
#include <algorithm>
#include <array>
#include <cstdint>
#include <iostream>
#include <memory>

#include "platform/linux/handles.h"
#include "platform/linux/screen_place.h"
#include "platform/linux/view_source.h"
#include "platform/linux/x_server.h"

namespace tintora::platform {

const ViewSource* viewSource = &lens;

namespace {

// A window that was created without Qt. It takes no input, so all input goes to the main window
// behind it.
struct Magnifier {
  xcb_window_t window = XCB_NONE;
  EffectMatrix shown{};
  std::unique_ptr<QSocketNotifier> notifier;
};
Magnifier theMagnifier;

// Returns the handle that stands for the only magnifier.
Window* handle() {
  return reinterpret_cast<Window*>(&theMagnifier);
}

xcb_window_t createChild(xcb_window_t parent, const Rect& bounds) {
  const xcb_window_t window = xcb_generate_id(xServer.connection);
  // Without a background, the old pixels stay until the new picture comes.
  const std::array<std::uint32_t, 3> looks{XCB_BACK_PIXMAP_NONE, XCB_GRAVITY_NORTH_WEST,
                                           XCB_EVENT_MASK_EXPOSURE};
  xcb_create_window(xServer.connection, XCB_COPY_FROM_PARENT, window, parent,
                    static_cast<std::int16_t>(bounds.left), static_cast<std::int16_t>(bounds.top),
                    static_cast<std::uint16_t>(std::max(1, bounds.width())),
                    static_cast<std::uint16_t>(std::max(1, bounds.height())), 0,
                    XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                    XCB_CW_BACK_PIXMAP | XCB_CW_BIT_GRAVITY | XCB_CW_EVENT_MASK, looks.data());
  xcb_map_window(xServer.connection, window);
  return window;
}

// Makes the loop wait for the server's events too, and bring the view up to date before each wait.
void followServer() {
  QAbstractEventDispatcher* const loop = QAbstractEventDispatcher::instance();
  theMagnifier.notifier = std::make_unique<QSocketNotifier>(
      xcb_get_file_descriptor(xServer.connection), QSocketNotifier::Read);
  QObject::connect(theMagnifier.notifier.get(), &QSocketNotifier::activated, [] {
    const int error = xcb_connection_has_error(xServer.connection);
    if (error == 0) return;
    // Without the server there is nothing left to follow.
    theMagnifier.notifier->setEnabled(false);
    std::cerr << "tintora: the connection to the X server broke (error " << error << ").\n";
    quit(1);
  });
  QObject::connect(loop, &QAbstractEventDispatcher::aboutToBlock, theMagnifier.notifier.get(),
                   [] { viewSource->update(); });
}

}  // namespace

bool startMagnifier() {
  return xServer.connection != nullptr;
}

void stopMagnifier() {
  theMagnifier = {};
  viewSource->stop();
  disconnectFromXServer();
}

Window* createMagnifier(Window* parent, const std::string& /*title*/, const Rect& bounds) {
  const auto parentWindow = static_cast<xcb_window_t>(parent->window->winId());
  theMagnifier.window = createChild(parentWindow, bounds);
  viewSource->start(parent, theMagnifier.window);
  viewSource->setSize({bounds.width(), bounds.height()});
  followServer();
  return handle();
}

void setUnmagnified(Window* /*magnifier*/) {
  // Does nothing: this desktop shows everything at its own size.
}

void setMagnifierSource(Window* /*magnifier*/, const Rect& area) {
  viewSource->setOrigin(onRoot(Point{area.left, area.top}));
}

void setColourEffect(Window* /*magnifier*/, const EffectMatrix& matrix) {
  if (matrix == theMagnifier.shown) return;
  theMagnifier.shown = matrix;
  viewSource->setFilter(makePixelFilter(matrix));
}

void fitMagnifier(Window* /*magnifier*/, const Rect& bounds) {
  const std::array<std::uint32_t, 4> place{
      static_cast<std::uint32_t>(bounds.left), static_cast<std::uint32_t>(bounds.top),
      static_cast<std::uint32_t>(std::max(1, bounds.width())),
      static_cast<std::uint32_t>(std::max(1, bounds.height()))};
  xcb_configure_window(xServer.connection, theMagnifier.window,
                       XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                           XCB_CONFIG_WINDOW_HEIGHT,
                       place.data());
  viewSource->setSize({bounds.width(), bounds.height()});
}

void invalidateMagnifier(Window* /*magnifier*/) {
  // Does nothing: the view is drawn again when and where something changes.
}

}  // namespace tintora::platform
