#include "platform/linux/window_frame.h"

#include <xcb/xcb.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <optional>
#include <thread>

#include "platform/linux/event_loop.h"
#include "platform/linux/window_manager.h"
#include "platform/linux/x_server.h"

namespace tintora::platform {

namespace {

using Clock = std::chrono::steady_clock;

// The time in which a window manager announces a frame, if it does so at all.
constexpr std::chrono::milliseconds frameReplyTimeout{20};
constexpr std::chrono::microseconds frameReplyPause{500};
// The time in which the events of a request arrive, and in which a window finishes appearing.
constexpr std::chrono::milliseconds travelTime{500};
// The time in which a window manager does what it was asked, however busy it is.
constexpr std::chrono::milliseconds answerTime{3000};
// The time in which a window may arrive exactly where it was requested to be.
constexpr std::chrono::milliseconds arrivalTime{30000};

Clock::time_point mainMoved;

bool isFramed(WindowForm form) {
  return form == WindowForm::Framed || form == WindowForm::FramedMaximised;
}

bool isWithin(std::chrono::milliseconds duration, Clock::time_point since) {
  return Clock::now() - since < duration;
}

// Returns false for a frame that Qt measured wrongly. If the window manager does not announce
// frames, Qt computes them, and during a resize it compares old sizes with new ones.
bool isPlausible(const QMargins& frame) {
  constexpr int widest = 100;
  const auto isWidth = [](int width) { return width >= 0 && width <= widest; };
  return isWidth(frame.left()) && isWidth(frame.top()) && isWidth(frame.right()) &&
         isWidth(frame.bottom());
}

QMargins frameOf(const Window* window) {
  if (!isFramed(window->form)) return {};
  const QMargins frame = window->window->frameMargins();
  return frame.isNull() || !isPlausible(frame) ? window->formerFrame : frame;
}

std::optional<QMargins> toldFrame(xcb_window_t window) {
  xcb_connection_t* const x = xServer.connection;
  const Received<xcb_get_property_reply_t> reply(xcb_get_property_reply(
      x, xcb_get_property(x, 0, window, xServer.frameExtents, XCB_ATOM_CARDINAL, 0, 4), nullptr));
  if (!reply || reply->format != 32 || reply->value_len != 4) return std::nullopt;
  std::array<std::int32_t, 4> widths{};  // left, right, top, bottom
  std::memcpy(widths.data(), xcb_get_property_value(reply.get()), sizeof widths);
  return QMargins(widths[0], widths[2], widths[1], widths[3]);
}

void requestFrame(xcb_window_t window) {
  xcb_client_message_event_t message{};
  message.response_type = XCB_CLIENT_MESSAGE;
  message.format = 32;
  message.window = window;
  message.type = xServer.requestFrameExtents;
  xcb_send_event(xServer.connection, 0, xServer.screen->root,
                 XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                 reinterpret_cast<const char*>(&message));
}

bool isAtRest(const Window* window) {
  return window->form == WindowForm::Framed &&
         window->window->windowStates() == Qt::WindowNoState && !isFilled(window);
}

// Returns the size that the window has on the server. Qt learns it later.
QSize sizeOnServer(const Window* window) {
  xcb_connection_t* const x = xServer.connection;
  const auto id = static_cast<xcb_window_t>(window->window->winId());
  const Received<xcb_get_geometry_reply_t> geometry(
      xcb_get_geometry_reply(x, xcb_get_geometry(x, id), nullptr));
  return geometry ? QSize(geometry->width, geometry->height) : QSize();
}

void moveInto(Window* window, const AskedBounds& asked) {
  const QRect inner = asked.outer.marginsRemoved(asked.frame);
  if (window->kind == WindowKind::Control) fixSize(window, inner.size());
  // Qt sends no request if it believes that the window is there already, although an earlier
  // request may still be on its way.
  if (window->window->geometry() == inner) return requestGeometry(window, inner);
  window->window->setGeometry(inner);
}

// Returns true if a move may be the window manager's answer to a request. It may choose another
// place, and it may be late when it is busy.
bool answersRequest(const Window* window) {
  const bool asked = !window->asked.empty() && isWithin(answerTime, window->asked.back().time);
  return asked || isWithin(answerTime, window->shown);
}

// Returns true if the user is moving the window: with a button held on its frame, or by keys that
// the window manager reads. While the main window moves, that is the one that the user holds.
bool isHeldByUser(const Window* window) {
  if (isWithin(travelTime, mainMoved)) return false;
  if (window->keyboardHeld || isWithin(travelTime, window->keyboardReleased)) return true;
  constexpr unsigned int anyButton = XCB_BUTTON_MASK_1 | XCB_BUTTON_MASK_2 | XCB_BUTTON_MASK_3;
  xcb_connection_t* const x = xServer.connection;
  const Received<xcb_query_pointer_reply_t> pointer(
      xcb_query_pointer_reply(x, xcb_query_pointer(x, xServer.screen->root), nullptr));
  return pointer && (pointer->mask & anyButton) != 0 &&
         outerBounds(window).contains(pointer->root_x, pointer->root_y);
}

}  // namespace

void askForFrame(Window* window) {
  if (!managerTellsFrames()) return;
  const auto id = static_cast<xcb_window_t>(window->window->winId());
  requestFrame(id);
  const auto end = Clock::now() + frameReplyTimeout;
  while (Clock::now() < end) {
    if (const auto frame = toldFrame(id)) {
      window->formerFrame = *frame;
      return;
    }
    std::this_thread::sleep_for(frameReplyPause);
  }
}

void expectBounds(Window* window, const QRect& outer) {
  std::erase_if(window->asked,
                [](const AskedBounds& asked) { return !isWithin(arrivalTime, asked.time); });
  rememberFrame(window);
  window->asked.push_back({outer, frameOf(window), Clock::now()});
  window->travels = true;
}

void askForBounds(Window* window, const QRect& outer) {
  expectBounds(window, outer);
  moveInto(window, window->asked.back());
}

void allowForFrame(Window* window) {
  if (window->form != WindowForm::Framed || window->asked.empty()) return;
  AskedBounds& last = window->asked.back();
  const QMargins frame = frameOf(window);
  if (frame == last.frame || !isWithin(answerTime, last.time) || !isAtRest(window)) return;
  // If the size has changed with the frame, the window manager is still switching to another form.
  if (sizeOnServer(window) != last.outer.marginsRemoved(last.frame).size()) return;
  rememberFrame(window);
  last.frame = frame;
  window->travels = true;
  moveInto(window, last);
}

QRect outerBounds(const Window* window) {
  return window->window->geometry().marginsAdded(frameOf(window));
}

QRect boundsAskedFor(const Window* window) {
  const bool travels =
      window->travels && !window->asked.empty() && isWithin(travelTime, window->asked.back().time);
  return travels ? window->asked.back().outer : outerBounds(window);
}

void fixSize(Window* window, const QSize& size) {
  window->window->setMinimumSize(size);
  window->window->setMaximumSize(size);
}

Mover moverOf(Window* window) {
  const QRect outer = outerBounds(window);
  const auto asked = std::ranges::find(window->asked, outer, &AskedBounds::outer);
  if (asked != window->asked.end() && isWithin(arrivalTime, asked->time)) {
    if (window->window->isExposed()) window->insists = false;
    return Mover::Program;
  }
  window->travels = false;
  // While the user drags the main window by its picture, no other window can be in the user's hand,
  // however late the window manager answers.
  if (!isDraggedInside() && (isHeldByUser(window) || !answersRequest(window))) {
    window->asked.clear();
    return Mover::User;
  }
  // Some window managers place a new window where they like, but obey a second request.
  if (window->insists && isAtRest(window) && isWithin(answerTime, window->shown) &&
      !window->asked.empty() && window->asked.back().outer.size() == outer.size()) {
    window->insists = false;
    window->travels = true;
    moveInto(window, window->asked.back());
  }
  return Mover::WindowManager;
}

void noteAppearance(Window* window) {
  if (!window->asked.empty() && outerBounds(window) == window->asked.back().outer) {
    window->insists = false;
  }
}

void noteMainMoved() {
  mainMoved = Clock::now();
}

void rememberFrame(Window* window) {
  const QMargins frame = frameOf(window);
  if (!frame.isNull()) window->formerFrame = frame;
}

}  // namespace tintora::platform
