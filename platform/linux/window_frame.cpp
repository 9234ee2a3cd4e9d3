#include "platform/linux/window_frame.h"

#include <xcb/xcb.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <span>
#include <thread>

#include "platform/linux/x_server.h"

namespace tintora::platform {

namespace {

using Clock = std::chrono::steady_clock;

// What a window manager that answers at all answers within.
constexpr std::chrono::milliseconds patience{20};
constexpr std::chrono::microseconds betweenLooks{500};
// ... and a window has come to where it was asked to, if it ever will.
constexpr std::chrono::milliseconds journey{500};

xcb_connection_t* x() {
  return xServer.connection;
}

bool isFramed(WindowForm form) {
  return form == WindowForm::Framed || form == WindowForm::FramedMaximised;
}

QMargins frameOf(const Window* window) {
  if (!isFramed(window->form)) return {};
  const QMargins frame = window->window->frameMargins();
  return frame.isNull() ? window->formerFrame : frame;
}

bool isTravelling(const Window* window) {
  return window->asked && Clock::now() - window->asked->time < journey;
}

Received<xcb_get_property_reply_t> property(xcb_window_t window, xcb_atom_t name, xcb_atom_t type) {
  constexpr std::uint32_t most = 1024;
  return Received<xcb_get_property_reply_t>(
      xcb_get_property_reply(x(), xcb_get_property(x(), 0, window, name, type, 0, most), nullptr));
}

std::span<const std::uint32_t> numbers(const xcb_get_property_reply_t* reply) {
  if (reply == nullptr || reply->format != 32) return {};
  return {static_cast<const std::uint32_t*>(xcb_get_property_value(reply)), reply->value_len};
}

bool windowManagerTells() {
  const auto reply = property(xServer.screen->root, xServer.supported, XCB_ATOM_ATOM);
  const auto atoms = numbers(reply.get());
  return std::ranges::find(atoms, xServer.requestFrameExtents) != atoms.end();
}

void sendRequest(xcb_window_t window) {
  xcb_client_message_event_t message{};
  message.response_type = XCB_CLIENT_MESSAGE;
  message.format = 32;
  message.window = window;
  message.type = xServer.requestFrameExtents;
  xcb_send_event(x(), 0, xServer.screen->root,
                 XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                 reinterpret_cast<const char*>(&message));
}

}  // namespace

void askForFrame(Window* window) {
  if (!windowManagerTells()) return;
  const auto id = static_cast<xcb_window_t>(window->window->winId());
  sendRequest(id);
  const auto end = Clock::now() + patience;
  while (Clock::now() < end) {
    const auto reply = property(id, xServer.frameExtents, XCB_ATOM_CARDINAL);
    const auto widths = numbers(reply.get());
    if (widths.size() == 4) {
      const auto width = [&](std::size_t side) { return static_cast<int>(widths[side]); };
      window->formerFrame = {width(0), width(2), width(1), width(3)};  // left, right, top, bottom
      return;
    }
    std::this_thread::sleep_for(betweenLooks);
  }
}

QRect outerBounds(const Window* window) {
  return window->window->geometry().marginsAdded(frameOf(window));
}

QRect boundsAskedFor(const Window* window) {
  return isTravelling(window) ? window->asked->outer : outerBounds(window);
}

QRect withoutFrame(const Window* window, const QRect& outer) {
  return outer.marginsRemoved(frameOf(window));
}

void askForBounds(Window* window, const QRect& outer) {
  constexpr std::size_t mostMoves = 64;
  window->movedTo.push_back(outer.topLeft());
  if (window->movedTo.size() > mostMoves) window->movedTo.pop_front();
  window->asked = {outer, Clock::now()};
  window->window->setGeometry(withoutFrame(window, outer));
}

bool isSettled(const Window* window) {
  return !isTravelling(window) && Clock::now() - window->shown >= journey;
}

void rememberFrame(Window* window) {
  const QMargins frame = frameOf(window);
  if (!frame.isNull()) window->formerFrame = frame;
}

}  // namespace tintora::platform
