#include "platform/linux/window_manager.h"

#include <xcb/shape.h>

#include <QAbstractNativeEventFilter>
#include <QByteArray>
#include <QCoreApplication>
#include <QGuiApplication>
#include <algorithm>
#include <array>
#include <cstdint>
#include <span>
#include <string_view>

#include "platform/linux/event_loop.h"
#include "platform/linux/window_frame.h"
#include "platform/linux/x_server.h"

namespace tintora::platform {

namespace {

// Returns Qt's connection. Requests sent over it follow Qt's own in order.
xcb_connection_t* qtConnection() {
  return qGuiApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
}

xcb_window_t idOf(const Window* window) {
  return static_cast<xcb_window_t>(window->window->winId());
}

Received<xcb_get_property_reply_t> property(xcb_window_t window, xcb_atom_t name, xcb_atom_t type) {
  xcb_connection_t* const x = xServer.connection;
  constexpr std::uint32_t most = 1024;
  return Received<xcb_get_property_reply_t>(
      xcb_get_property_reply(x, xcb_get_property(x, 0, window, name, type, 0, most), nullptr));
}

std::span<const std::uint32_t> numbers(const xcb_get_property_reply_t* reply) {
  if (reply == nullptr || reply->format != 32) return {};
  return {static_cast<const std::uint32_t*>(xcb_get_property_value(reply)), reply->value_len};
}

// Returns the own window of the window manager, or none if no window manager is running. One that
// is gone may leave its list of supported requests behind; one that runs has a window that names
// itself.
xcb_window_t windowOfManager() {
  const xcb_atom_t check = xServer.supportingWmCheck;
  const auto named = property(xServer.screen->root, check, XCB_ATOM_WINDOW);
  const auto window = numbers(named.get());
  if (window.size() != 1) return XCB_NONE;
  const auto itself = property(window[0], check, XCB_ATOM_WINDOW);
  return std::ranges::equal(numbers(itself.get()), window) ? window[0] : xcb_window_t{XCB_NONE};
}

std::string_view nameOf(const xcb_get_property_reply_t* reply) {
  if (reply == nullptr || reply->format != 8) return {};
  return {static_cast<const char*>(xcb_get_property_value(reply)), reply->value_len};
}

bool isSupported(xcb_atom_t request) {
  if (windowOfManager() == XCB_NONE) return false;
  const auto reply = property(xServer.screen->root, xServer.supported, XCB_ATOM_ATOM);
  const auto atoms = numbers(reply.get());
  return std::ranges::find(atoms, request) != atoms.end();
}

xcb_window_t parentOf(xcb_window_t window) {
  xcb_connection_t* const x = xServer.connection;
  const Received<xcb_query_tree_reply_t> tree(
      xcb_query_tree_reply(x, xcb_query_tree(x, window), nullptr));
  return tree ? tree->parent : static_cast<xcb_window_t>(XCB_NONE);
}

void setInputShape(xcb_window_t window, bool transparent) {
  if (transparent) {
    xcb_shape_rectangles(xServer.connection, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_INPUT,
                         XCB_CLIP_ORDERING_UNSORTED, window, 0, 0, 0, nullptr);
  } else {
    xcb_shape_mask(xServer.connection, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_INPUT, window, 0, 0,
                   XCB_NONE);
  }
}

void onFrameChanged(Window* window) {
  if (window->hitTransparent && !window->untilControlAppears.isActive()) shapeInput(window);
  allowForFrame(window);
}

// Waits for the changes that a window manager makes together with that of a frame, because they
// come one by one.
void onFrameChangedLater(xcb_window_t id) {
  constexpr int milliseconds = 30;
  Window* const window = windowOf(id);
  if (window == nullptr) return;
  QTimer::singleShot(milliseconds, window->window.get(), [window] { onFrameChanged(window); });
}

void noteKeyboard(xcb_window_t id, std::uint8_t mode, bool in) {
  Window* const window = windowOf(id);
  if (window == nullptr) return;
  const bool held = !in && mode == XCB_NOTIFY_MODE_GRAB;
  if (window->keyboardHeld && !held) window->keyboardReleased = std::chrono::steady_clock::now();
  window->keyboardHeld = held;
}

class ManagerEvents : public QAbstractNativeEventFilter {
 public:
  bool nativeEventFilter(const QByteArray& /*type*/, void* message, qintptr* /*result*/) override {
    const auto& event = *static_cast<const xcb_generic_event_t*>(message);
    switch (event.response_type & 0x7F) {
      case XCB_REPARENT_NOTIFY:
        onFrameChangedLater(as<xcb_reparent_notify_event_t>(event).window);
        break;
      case XCB_PROPERTY_NOTIFY:
        if (as<xcb_property_notify_event_t>(event).atom != xServer.frameExtents) break;
        onFrameChangedLater(as<xcb_property_notify_event_t>(event).window);
        break;
      case XCB_FOCUS_IN:
      case XCB_FOCUS_OUT: {
        const auto& focus = as<xcb_focus_in_event_t>(event);
        noteKeyboard(focus.event, focus.mode, (event.response_type & 0x7F) == XCB_FOCUS_IN);
        break;
      }
      default:
        break;
    }
    return false;
  }
};

}  // namespace

bool managerMakesFullScreen() {
  return isSupported(xServer.fullScreen) && !managerHidesOthers();
}

bool managerHidesOthers() {
  const auto name = property(windowOfManager(), xServer.windowName, XCB_GET_PROPERTY_TYPE_ANY);
  return nameOf(name.get()) == "i3";
}

bool managerTellsFrames() {
  return isSupported(xServer.requestFrameExtents);
}

// Makes the window an ordinary one first and a utility second. Window managers that only check
// whether the list contains a type float utilities.
void floatWindow(Window* window) {
  xcb_change_property(qtConnection(), XCB_PROP_MODE_APPEND, idOf(window), xServer.windowType,
                      XCB_ATOM_ATOM, 32, 1, &xServer.utilityType);
  xcb_flush(qtConnection());
}

bool isFilled(const Window* window) {
  const auto reply = property(idOf(window), xServer.windowState, XCB_ATOM_ATOM);
  const auto states = numbers(reply.get());
  return std::ranges::any_of(
      std::array{xServer.maximisedAcross, xServer.maximisedUpright, xServer.fullScreen},
      [&](xcb_atom_t state) { return std::ranges::find(states, state) != states.end(); });
}

bool isManaged(const Window* window) {
  const auto reply = property(idOf(window), xServer.wmState, XCB_GET_PROPERTY_TYPE_ANY);
  const auto state = numbers(reply.get());
  constexpr std::uint32_t withdrawn = 0;
  return !state.empty() && state[0] != withdrawn;
}

bool anyWindowHasFocus() {
  xcb_connection_t* const x = xServer.connection;
  const Received<xcb_get_input_focus_reply_t> reply(
      xcb_get_input_focus_reply(x, xcb_get_input_focus(x), nullptr));
  constexpr std::array nowhere{xcb_window_t{XCB_INPUT_FOCUS_NONE},
                               xcb_window_t{XCB_INPUT_FOCUS_POINTER_ROOT}};
  return reply && reply->focus != xServer.screen->root &&
         std::ranges::find(nowhere, reply->focus) == nowhere.end();
}

void requestGeometry(const Window* window, const QRect& inner) {
  const std::array<std::uint32_t, 4> values{
      static_cast<std::uint32_t>(inner.x()), static_cast<std::uint32_t>(inner.y()),
      static_cast<std::uint32_t>(inner.width()), static_cast<std::uint32_t>(inner.height())};
  xcb_configure_window(qtConnection(), idOf(window),
                       XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                           XCB_CONFIG_WINDOW_HEIGHT,
                       values.data());
  xcb_flush(qtConnection());
}

void setWindowAbove(Window* window, const Window* parent) {
  const xcb_window_t id = idOf(parent);
  xcb_change_property(qtConnection(), XCB_PROP_MODE_REPLACE, idOf(window),
                      XCB_ATOM_WM_TRANSIENT_FOR, XCB_ATOM_WINDOW, 32, 1, &id);
  xcb_flush(qtConnection());
}

// Shapes the frames too, because the mouse hits a frame before the window.
void shapeInput(Window* window) {
  const xcb_window_t root = xServer.screen->root;
  for (auto part = idOf(window); part != root && part != XCB_NONE; part = parentOf(part)) {
    setInputShape(part, window->hitTransparent);
  }
  xcb_flush(xServer.connection);
}

void followWindowManager() {
  static ManagerEvents events;
  QCoreApplication::instance()->installNativeEventFilter(&events);
}

void finishQtRequests() {
  xcb_connection_t* const x = qtConnection();
  const Received<xcb_get_input_focus_reply_t> done(
      xcb_get_input_focus_reply(x, xcb_get_input_focus(x), nullptr));
}

}  // namespace tintora::platform
