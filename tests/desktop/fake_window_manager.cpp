// A window manager for tests with habits of large real ones: it is the compositing manager too, its
// frames have invisible borders, and minimised windows stay mapped beneath a guard window.
//
//   tintora_fake_window_manager [--frames-after MILLISECONDS] [--no-compositing]
//
// With --frames-after, it shows windows at once and frames them later.
#include <poll.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "fake_client.h"
#include "fake_compositor.h"
#include "x_client.h"

namespace tintora::desktop_test {
namespace {

struct Options {
  std::chrono::milliseconds framesAfter{0};
  bool composites = true;
};

class Manager {
 public:
  Manager(const std::string& display, const Options& options);
  int run();

 private:
  void take(const xcb_generic_event_t& event);
  void announce();
  void manage(xcb_window_t window);
  void giveLateFrames();
  void restackAll();
  void activate(Client& client);
  void minimise(Client& client, bool minimised);
  void forget(xcb_window_t window);
  void onConfigureRequest(const xcb_configure_request_event_t& event);
  void onMessage(const xcb_client_message_event_t& message);
  void onPress(const xcb_button_press_event_t& press);
  void onMotion(const xcb_motion_notify_event_t& motion);
  PaintedPart look(xcb_window_t window);
  Client* find(xcb_window_t window);  // by the window itself or its frame
  int layerOf(const Client& client);
  xcb_connection_t* c() const { return x_.connection(); }

  XClient x_;
  Options options_;
  xcb_window_t check_ = XCB_NONE;
  xcb_window_t guard_ = XCB_NONE;
  std::vector<std::unique_ptr<Client>> clients_;  // from the lowest to the highest
  std::unique_ptr<FakeCompositor> compositor_;
  xcb_window_t active_ = XCB_NONE;
  xcb_window_t dragged_ = XCB_NONE;
  Area dragFrom_;
};

Manager::Manager(const std::string& display, const Options& options)
    : x_(display), options_(options) {
  const std::uint32_t events = XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT |
                               XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY |
                               XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE;
  xcb_change_window_attributes(c(), x_.root(), XCB_CW_EVENT_MASK, &events);
  // As window managers do that compose the screen themselves.
  const xcb_pixmap_t none = XCB_NONE;
  if (options_.composites) {
    xcb_change_window_attributes(c(), x_.root(), XCB_CW_BACK_PIXMAP, &none);
  }
  announce();
  if (options_.composites) {
    xcb_set_selection_owner(c(), check_, x_.atom("_NET_WM_CM_S0"), XCB_CURRENT_TIME);
    compositor_ =
        std::make_unique<FakeCompositor>(x_, [this](xcb_window_t window) { return look(window); });
  }
}

void Manager::announce() {
  check_ = xcb_generate_id(c());
  guard_ = xcb_generate_id(c());
  const std::uint32_t unmanaged = 1;
  const Area screen = x_.screenArea();
  xcb_create_window(c(), 0, check_, x_.root(), -1, -1, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                    XCB_COPY_FROM_PARENT, XCB_CW_OVERRIDE_REDIRECT, &unmanaged);
  xcb_create_window(c(), 0, guard_, x_.root(), 0, 0, u16(screen.width), u16(screen.height), 0,
                    XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_OVERRIDE_REDIRECT,
                    &unmanaged);
  const std::string name = "fake guard window";
  xcb_change_property(c(), XCB_PROP_MODE_REPLACE, guard_, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8,
                      static_cast<std::uint32_t>(name.size()), name.data());
  xcb_map_window(c(), guard_);
  x_.restack(guard_, XCB_STACK_MODE_BELOW);
  for (const xcb_window_t window : {x_.root(), check_}) {
    x_.setNumbers(window, "_NET_SUPPORTING_WM_CHECK", XCB_ATOM_WINDOW, {check_});
  }
  std::vector<std::uint32_t> supported;
  for (const char* const atom :
       {"_NET_SUPPORTED", "_NET_SUPPORTING_WM_CHECK", "_NET_ACTIVE_WINDOW", "_NET_WM_STATE",
        "_NET_WM_STATE_FULLSCREEN", "_NET_WM_STATE_MAXIMIZED_VERT", "_NET_WM_STATE_MAXIMIZED_HORZ",
        "_NET_WM_STATE_HIDDEN", "_NET_WM_STATE_ABOVE", "_NET_FRAME_EXTENTS",
        "_NET_REQUEST_FRAME_EXTENTS"}) {
    supported.push_back(x_.atom(atom));
  }
  x_.setNumbers(x_.root(), "_NET_SUPPORTED", XCB_ATOM_ATOM, supported);
}

Client* Manager::find(xcb_window_t window) {
  const auto found = std::ranges::find_if(clients_, [&](const auto& client) {
    return client->window == window || client->frame == window;
  });
  return found == clients_.end() || window == XCB_NONE ? nullptr : found->get();
}

PaintedPart Manager::look(xcb_window_t window) {
  PaintedPart result;
  const auto opacityOf = [&](xcb_window_t of) {
    const auto values = x_.numbers(of, "_NET_WM_WINDOW_OPACITY");
    return values.empty() ? 1.0 : values[0] / double{0xFFFFFFFF};
  };
  const Client* const client = find(window);
  if (client == nullptr) {
    result.opacity = opacityOf(window);
    return result;
  }
  result.seen = !client->minimised;
  result.opacity = opacityOf(client->window);
  const Margins seen = client->seenFrame();
  if (client->frame != XCB_NONE) {
    result.part = {client->unseenFrame(), client->unseenFrame(),
                   client->place.width + seen.left + seen.right,
                   client->place.height + seen.top + seen.bottom};
  }
  return result;
}

void Manager::manage(xcb_window_t window) {
  if (Client* const known = find(window)) {
    minimise(*known, false);
    return activate(*known);
  }
  const Received<xcb_get_window_attributes_reply_t> attributes(
      xcb_get_window_attributes_reply(c(), xcb_get_window_attributes(c(), window), nullptr));
  if (!attributes || attributes->override_redirect != 0) return;
  Client& client = *clients_.emplace_back(std::make_unique<Client>());
  client.window = window;
  client.place = x_.areaOf(window);
  client.frameAt = std::chrono::steady_clock::now() + options_.framesAfter;
  readHints(x_, client);
  for (const std::uint32_t state : x_.numbers(window, "_NET_WM_STATE")) {
    client.above |= state == x_.atom("_NET_WM_STATE_ABOVE");
  }
  const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
  xcb_change_window_attributes(c(), window, XCB_CW_EVENT_MASK, &events);
  // The requested place is that of the frame's visible part.
  const Margins seen = client.seenFrame();
  client.place.x += seen.left;
  client.place.y += seen.top;
  if (options_.framesAfter.count() == 0) giveFrame(x_, client);
  layOut(x_, client);
  xcb_map_window(c(), window);
  tellState(x_, client);
  activate(client);
}

void Manager::giveLateFrames() {
  for (const auto& client : clients_) {
    const bool waits = client->minimised || std::chrono::steady_clock::now() < client->frameAt;
    if (client->frame != XCB_NONE || waits) continue;
    giveFrame(x_, *client);
    // Reparenting has unmapped the window.
    xcb_map_window(c(), client->window);
    restackAll();
  }
}

int Manager::layerOf(const Client& client) {
  if (client.minimised) return -1;
  const Client* const leader = find(client.transientFor);
  const int own = client.fullScreen && client.window == active_ ? 2 : client.above ? 1 : 0;
  // A window is in its leader's layer or above. Its leader is lower in the list, or is made so.
  return leader != nullptr && leader != &client ? std::max(own, layerOf(*leader)) : own;
}

void Manager::restackAll() {
  for (const auto& client : clients_) client->layer = layerOf(*client);
  std::ranges::stable_sort(clients_, {}, [](const auto& client) { return client->layer; });
  for (std::size_t i = 0; i < clients_.size(); ++i) {
    const auto leader = std::ranges::find_if(
        clients_, [&](const auto& other) { return other->window == clients_[i]->transientFor; });
    if (leader == clients_.end() || leader - clients_.begin() < static_cast<std::ptrdiff_t>(i)) {
      continue;
    }
    const auto moved = clients_.begin() + static_cast<std::ptrdiff_t>(i);
    std::rotate(moved, moved + 1, leader + 1);
  }
  // Goes up from the guard window, with the minimised windows beneath it. Never goes above
  // unmanaged windows.
  xcb_window_t lower = guard_;
  for (const auto& client : clients_) {
    if (client->minimised) {
      x_.restack(client->topLevel(), XCB_STACK_MODE_BELOW, guard_);
      continue;
    }
    x_.restack(client->topLevel(), XCB_STACK_MODE_ABOVE, lower);
    lower = client->topLevel();
  }
}

void Manager::activate(Client& client) {
  active_ = client.window;
  const auto place =
      std::ranges::find_if(clients_, [&](const auto& other) { return other.get() == &client; });
  std::rotate(place, place + 1, clients_.end());
  restackAll();
  xcb_set_input_focus(c(), XCB_INPUT_FOCUS_POINTER_ROOT, client.window, XCB_CURRENT_TIME);
  x_.setNumbers(x_.root(), "_NET_ACTIVE_WINDOW", XCB_ATOM_WINDOW, {client.window});
}

void Manager::minimise(Client& client, bool minimised) {
  client.minimised = minimised;
  tellState(x_, client);
  // Without compositing, every mapped window is visible.
  if (!options_.composites && minimised) xcb_unmap_window(c(), client.topLevel());
  if (!options_.composites && !minimised) xcb_map_window(c(), client.topLevel());
  restackAll();
}

void Manager::forget(xcb_window_t window) {
  Client* const client = find(window);
  if (client == nullptr || client->window != window) return;
  const xcb_window_t frame = client->frame;
  std::erase_if(clients_, [&](const auto& other) { return other->window == window; });
  if (frame == XCB_NONE) return;
  const Area place = x_.areaOf(window);
  xcb_reparent_window(c(), window, x_.root(), i16(place.x), i16(place.y));
  xcb_destroy_window(c(), frame);
  x_.sync();
}

void Manager::onConfigureRequest(const xcb_configure_request_event_t& event) {
  Client* const client = find(event.window);
  const auto asked = [&](std::uint16_t part) { return (event.value_mask & part) != 0; };
  if (client == nullptr) {
    std::vector<std::uint32_t> values;
    if (asked(XCB_CONFIG_WINDOW_X)) values.push_back(u32(event.x));
    if (asked(XCB_CONFIG_WINDOW_Y)) values.push_back(u32(event.y));
    if (asked(XCB_CONFIG_WINDOW_WIDTH)) values.push_back(event.width);
    if (asked(XCB_CONFIG_WINDOW_HEIGHT)) values.push_back(event.height);
    if (asked(XCB_CONFIG_WINDOW_BORDER_WIDTH)) values.push_back(event.border_width);
    if (asked(XCB_CONFIG_WINDOW_SIBLING)) values.push_back(event.sibling);
    if (asked(XCB_CONFIG_WINDOW_STACK_MODE)) values.push_back(event.stack_mode);
    return x_.configure(event.window, event.value_mask, values);
  }
  // A maximised or full-screen window keeps its place.
  if (client->maximised || client->fullScreen) return layOut(x_, *client);
  constexpr std::uint32_t staticGravity = 10;
  constexpr std::size_t gravityIndex = 17;
  const auto hints = x_.numbers(client->window, "WM_NORMAL_HINTS");
  const bool inside = hints.size() > gravityIndex && hints[gravityIndex] == staticGravity;
  const Margins seen = inside ? Margins{} : client->seenFrame();
  if (asked(XCB_CONFIG_WINDOW_X)) client->place.x = event.x + seen.left;
  if (asked(XCB_CONFIG_WINDOW_Y)) client->place.y = event.y + seen.top;
  if (asked(XCB_CONFIG_WINDOW_WIDTH)) client->place.width = event.width;
  if (asked(XCB_CONFIG_WINDOW_HEIGHT)) client->place.height = event.height;
  layOut(x_, *client);
}

void Manager::onMessage(const xcb_client_message_event_t& message) {
  if (message.type == x_.atom("_NET_REQUEST_FRAME_EXTENTS")) {
    Client client;
    client.window = message.window;
    readHints(x_, client);
    client.frame = message.window;  // answers as if the window had a frame
    return tellExtents(x_, client);
  }
  Client* const client = find(message.window);
  if (client == nullptr) return;
  const auto& data = message.data.data32;
  if (message.type == x_.atom("WM_CHANGE_STATE")) {
    minimise(*client, data[0] == iconicState);
  } else if (message.type == x_.atom("_NET_ACTIVE_WINDOW")) {
    minimise(*client, false);
    activate(*client);
  } else if (message.type == x_.atom("_NET_WM_STATE")) {
    setState(x_, *client, data[1], data[0]);
    setState(x_, *client, data[2], data[0]);
    layOut(x_, *client);
    tellState(x_, *client);
    restackAll();
  }
}

void Manager::onPress(const xcb_button_press_event_t& press) {
  if (Client* const client = find(press.event)) {
    activate(*client);
    dragged_ = client->window;
    dragFrom_ = client->place;
    dragFrom_.x -= press.root_x;
    dragFrom_.y -= press.root_y;
  }
}

void Manager::onMotion(const xcb_motion_notify_event_t& motion) {
  if (Client* const client = find(dragged_)) {
    client->place.x = dragFrom_.x + motion.root_x;
    client->place.y = dragFrom_.y + motion.root_y;
    layOut(x_, *client);
  }
}

void Manager::take(const xcb_generic_event_t& event) {
  switch (event.response_type & 0x7F) {
    case XCB_MAP_REQUEST:
      return manage(reinterpret_cast<const xcb_map_request_event_t&>(event).window);
    case XCB_CONFIGURE_REQUEST:
      return onConfigureRequest(reinterpret_cast<const xcb_configure_request_event_t&>(event));
    case XCB_UNMAP_NOTIFY: {
      const auto& unmapped = reinterpret_cast<const xcb_unmap_notify_event_t&>(event);
      const Client* const client = find(unmapped.window);
      // Reparenting the window into its frame unmaps it as well. That event reports it as the
      // root's child.
      const bool framed = client != nullptr && client->frame != XCB_NONE;
      if (client != nullptr && (!framed || unmapped.event == unmapped.window) &&
          !x_.isShown(unmapped.window)) {
        forget(unmapped.window);
      }
      return;
    }
    case XCB_DESTROY_NOTIFY:
      return forget(reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window);
    case XCB_CLIENT_MESSAGE:
      return onMessage(reinterpret_cast<const xcb_client_message_event_t&>(event));
    case XCB_BUTTON_PRESS:
      return onPress(reinterpret_cast<const xcb_button_press_event_t&>(event));
    case XCB_MOTION_NOTIFY:
      return onMotion(reinterpret_cast<const xcb_motion_notify_event_t&>(event));
    case XCB_BUTTON_RELEASE:
      dragged_ = XCB_NONE;
      return;
    case XCB_PROPERTY_NOTIFY: {
      const auto& changed = reinterpret_cast<const xcb_property_notify_event_t&>(event);
      Client* const client = find(changed.window);
      if (client == nullptr || client->window != changed.window ||
          changed.atom != x_.atom("_MOTIF_WM_HINTS")) {
        return;
      }
      readHints(x_, *client);
      return layOut(x_, *client);
    }
    default:
      return;
  }
}

int Manager::run() {
  constexpr int pause = 20;
  while (xcb_connection_has_error(c()) == 0) {
    bool any = false;
    x_.takeEvents([&](const xcb_generic_event_t& event) {
      any = true;
      take(event);
      if (compositor_) compositor_->take(event);
    });
    giveLateFrames();
    if (any) continue;
    if (compositor_) compositor_->paint();
    xcb_flush(c());
    pollfd socket{xcb_get_file_descriptor(c()), POLLIN, 0};
    poll(&socket, 1, pause);
  }
  return 0;
}

Options readOptions(int count, char** arguments) {
  Options options;
  for (int i = 1; i < count; ++i) {
    const std::string option = arguments[i];
    if (option == "--no-compositing") options.composites = false;
    if (option == "--frames-after" && i + 1 < count) {
      options.framesAfter = std::chrono::milliseconds(std::stoi(arguments[++i]));
    }
  }
  return options;
}

}  // namespace
}  // namespace tintora::desktop_test

int main(int count, char** arguments) {
  using namespace tintora::desktop_test;
  return Manager("", readOptions(count, arguments)).run();
}
