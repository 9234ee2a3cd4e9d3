#include "platform/window.h"

#include <xcb/shape.h>
#include <xcb/xcb.h>

#include <QGuiApplication>
#include <array>

#include "platform/linux/event_loop.h"
#include "platform/linux/handles.h"
#include "platform/linux/screen_place.h"
#include "platform/linux/text.h"
#include "platform/linux/window_frame.h"
#include "platform/linux/x_server.h"

namespace tintora::platform {

namespace {

// By WindowKind.
const std::array<Qt::WindowFlags, 3> windowKinds{
    Qt::Window | Qt::WindowStaysOnTopHint,
    Qt::Window | Qt::WindowStaysOnTopHint | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
        Qt::WindowSystemMenuHint | Qt::WindowMinimizeButtonHint | Qt::WindowCloseButtonHint,
    Qt::Window | Qt::WindowStaysOnTopHint};

// By WindowForm.
struct WindowFormFacts {
  bool framed;
  Qt::WindowState state;
};
constexpr std::array<WindowFormFacts, 5> windowForms{{
    {true, Qt::WindowNoState},
    {false, Qt::WindowNoState},
    {true, Qt::WindowMaximized},
    {false, Qt::WindowMaximized},
    {false, Qt::WindowFullScreen},
}};

template <typename Value, std::size_t size, typename Index>
const Value& at(const std::array<Value, size>& table, Index index) {
  return table[static_cast<std::size_t>(index)];
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

xcb_window_t parentOf(xcb_window_t window) {
  xcb_connection_t* const x = xServer.connection;
  const Received<xcb_query_tree_reply_t> tree(
      xcb_query_tree_reply(x, xcb_query_tree(x, window), nullptr));
  return tree ? tree->parent : static_cast<xcb_window_t>(XCB_NONE);
}

// What Qt has asked of the server is known there from then on, on the other connection too.
void finishQtRequests() {
  xcb_connection_t* const connection =
      qGuiApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
  const Received<xcb_get_input_focus_reply_t> done(
      xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
}

}  // namespace

void registerWindowKinds(EventHandler handler) {
  setEventHandler(handler);
}

void unregisterWindowKinds() {
  setEventHandler(nullptr);
}

Window* createWindow(WindowKind kind, const std::string& title, const Rect& bounds) {
  // Windows live as long as the program.
  auto* const window = new Window;
  window->kind = kind;
  window->window->setFlags(at(windowKinds, kind));
  window->window->create();
  if (kind == WindowKind::Control) fixSize(window, onRoot(bounds).size());
  finishQtRequests();
  askForFrame(window);
  setTitle(window, title);
  setWindowBounds(window, bounds);
  translateEvents(window);
  return window;
}

void setWindowForm(Window* window, WindowForm form) {
  const WindowFormFacts& facts = at(windowForms, form);
  const QRect outer = boundsAskedFor(window);
  rememberFrame(window);
  window->form = form;
  window->window->setFlag(Qt::FramelessWindowHint, !facts.framed);
  if (window->window->windowStates() != facts.state) window->window->setWindowStates(facts.state);
  if (facts.state != Qt::WindowNoState) return;
  askForBounds(window, outer);
}

void setHitTransparent(Window* window, bool transparent) {
  // The frame of a window manager around it is hit first.
  const xcb_window_t root = xServer.screen->root;
  auto part = static_cast<xcb_window_t>(window->window->winId());
  for (; part != root && part != XCB_NONE; part = parentOf(part)) setInputShape(part, transparent);
  xcb_flush(xServer.connection);
}

void showWindow(Window* window, ShowState state) {
  QWindow& shown = *window->window;
  if (state == ShowState::Hidden) return shown.setVisible(false);
  if (state == ShowState::Normal) shown.setWindowStates(Qt::WindowNoState);
  if (state == ShowState::Maximised && window->form != WindowForm::FullScreen) {
    shown.setWindowStates(Qt::WindowMaximized);
  }
  if (!shown.isVisible()) window->shown = std::chrono::steady_clock::now();
  shown.setVisible(true);
}

void setWindowBounds(Window* window, const Rect& bounds) {
  const QRect outer = onRoot(bounds);
  if (outer == boundsAskedFor(window)) return;
  askForBounds(window, outer);
}

Rect windowBounds(const Window* window) {
  return fromRoot(boundsAskedFor(window));
}

Rect clientArea(const Window* window) {
  return {0, 0, window->window->width(), window->window->height()};
}

Point clientOrigin(const Window* window) {
  return fromRoot(window->window->geometry().topLeft());
}

bool isMaximised(const Window* window) {
  return window->form == WindowForm::FullScreen ||
         window->window->windowStates().testFlag(Qt::WindowMaximized) ||
         window->window->windowStates().testFlag(Qt::WindowFullScreen);
}

void setTitle(Window* window, const std::string& title) {
  window->window->setTitle(toUnicode(title));
}

std::string windowTitle(const Window* window, std::size_t most) {
  return fromUnicode(window->window->title()).substr(0, most);
}

void acceptDroppedFiles(Window* window, bool accept) {
  window->acceptsFiles = accept;
}

void startTimer(Window* window, int milliseconds) {
  window->timer.callOnTimeout(window->window.get(), [window] {
    handOver({.kind = EventKind::TimerElapsed, .window = window});
  });
  // The others may come some percent too early.
  window->timer.setTimerType(Qt::PreciseTimer);
  window->timer.start(milliseconds);
}

void stopTimer(Window* window) {
  window->timer.stop();
  window->timer.disconnect();
}

void showCursor(bool shown) {
  if (shown) {
    QGuiApplication::restoreOverrideCursor();
  } else {
    QGuiApplication::setOverrideCursor(Qt::BlankCursor);
  }
}

}  // namespace tintora::platform
