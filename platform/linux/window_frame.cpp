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
// ... within which the events of a request have come, and a window's appearance is over.
constexpr std::chrono::milliseconds journey{500};
// ... within which it has put a window elsewhere than where it was asked to.
constexpr std::chrono::milliseconds objection{200};

bool isFramed(WindowForm form) {
  return form == WindowForm::Framed || form == WindowForm::FramedMaximised;
}

bool isWithin(std::chrono::milliseconds duration, Clock::time_point since) {
  return Clock::now() - since < duration;
}

bool isMouseButtonHeld() {
  constexpr unsigned int anyButton = XCB_BUTTON_MASK_1 | XCB_BUTTON_MASK_2 | XCB_BUTTON_MASK_3;
  const Received<xcb_query_pointer_reply_t> pointer(
      xcb_query_pointer_reply(x(), xcb_query_pointer(x(), xServer.screen->root), nullptr));
  return pointer && (pointer->mask & anyButton) != 0;
}

QMargins frameOf(const Window* window) {
  if (!isFramed(window->form)) return {};
  const QMargins frame = window->window->frameMargins();
  return frame.isNull() ? window->formerFrame : frame;
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

void allowForFrame(Window* window) {
  if (!window->formerFrame.isNull() || window->form != WindowForm::Framed) return;
  rememberFrame(window);
  if (window->formerFrame.isNull() || window->asked.empty()) return;
  const QRect outer = window->asked.back().outer;
  askForBounds(window, outer);
}

QRect outerBounds(const Window* window) {
  return window->window->geometry().marginsAdded(frameOf(window));
}

QRect boundsAskedFor(const Window* window) {
  const bool travels = !window->asked.empty() && isWithin(journey, window->asked.back().time);
  return travels ? window->asked.back().outer : outerBounds(window);
}

QRect withoutFrame(const Window* window, const QRect& outer) {
  return outer.marginsRemoved(frameOf(window));
}

void askForBounds(Window* window, const QRect& outer) {
  std::erase_if(window->asked,
                [](const AskedBounds& asked) { return !isWithin(journey, asked.time); });
  window->asked.push_back({outer, Clock::now()});
  const QRect inner = withoutFrame(window, outer);
  if (window->kind == WindowKind::Control) fixSize(window, inner.size());
  window->window->setGeometry(inner);
}

void fixSize(Window* window, const QSize& size) {
  window->window->setMinimumSize(size);
  window->window->setMaximumSize(size);
}

Mover moverOf(Window* window) {
  const QRect outer = outerBounds(window);
  const auto asked = std::ranges::find(window->asked, outer, &AskedBounds::outer);
  if (asked != window->asked.end() && isWithin(journey, asked->time)) return Mover::Program;
  const bool answers = !window->asked.empty() && isWithin(objection, window->asked.back().time);
  window->asked.clear();
  if (isMouseButtonHeld()) return Mover::User;
  return answers || isWithin(journey, window->shown) ? Mover::WindowManager : Mover::User;
}

void rememberFrame(Window* window) {
  const QMargins frame = frameOf(window);
  if (!frame.isNull()) window->formerFrame = frame;
}

}  // namespace tintora::platform
