#include "fake_client.h"

#include <vector>

#include "x_client.h"

namespace tintora::desktop_test {
namespace {

// Widths of a frame: the invisible part and the visible part.
constexpr int unseen = 10;
constexpr int side = 3;
constexpr int title = 24;
constexpr std::uint32_t frameColour = 0x7A5C99;

constexpr std::uint32_t normalState = 1;

}  // namespace

Margins Client::seenFrame() const {
  if (!isFramed()) return {};
  return maximised ? Margins{0, title, 0, 0} : Margins{side, title, side, side};
}

int Client::unseenFrame() const {
  return isFramed() && !maximised ? unseen : 0;
}

void readHints(const XClient& x, Client& client) {
  constexpr std::uint32_t decorationsGiven = 2;
  const auto hints = x.numbers(client.window, "_MOTIF_WM_HINTS");
  client.wantsFrame = hints.size() < 3 || (hints[0] & decorationsGiven) == 0 || hints[2] != 0;
  const auto leader = x.numbers(client.window, "WM_TRANSIENT_FOR");
  client.transientFor = leader.empty() ? xcb_window_t{XCB_NONE} : leader[0];
}

void giveFrame(const XClient& x, Client& client) {
  client.frame = xcb_generate_id(x.connection());
  const std::vector<std::uint32_t> looks{
      frameColour, 1,
      XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_BUTTON_PRESS |
          XCB_EVENT_MASK_BUTTON_RELEASE | XCB_EVENT_MASK_BUTTON_1_MOTION};
  xcb_create_window(x.connection(), XCB_COPY_FROM_PARENT, client.frame, x.root(), 0, 0, 1, 1, 0,
                    XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                    XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, looks.data());
  xcb_change_save_set(x.connection(), XCB_SET_MODE_INSERT, client.window);
  xcb_reparent_window(x.connection(), client.window, client.frame, 0, 0);
  layOut(x, client);
  xcb_map_window(x.connection(), client.frame);
}

void layOut(const XClient& x, const Client& client) {
  const Margins seen = client.seenFrame();
  const int out = client.unseenFrame();
  const Area& place = client.place;
  constexpr std::uint16_t bounds = XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y |
                                   XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT;
  if (client.frame == XCB_NONE) {
    x.configure(client.window, bounds,
                {u32(place.x), u32(place.y), u32(place.width), u32(place.height)});
  } else {
    x.configure(client.frame, bounds,
                {u32(place.x - seen.left - out), u32(place.y - seen.top - out),
                 u32(place.width + seen.left + seen.right + 2 * out),
                 u32(place.height + seen.top + seen.bottom + 2 * out)});
    x.configure(client.window, bounds,
                {u32(seen.left + out), u32(seen.top + out), u32(place.width), u32(place.height)});
    xcb_configure_notify_event_t told{};
    told.response_type = XCB_CONFIGURE_NOTIFY;
    told.event = client.window;
    told.window = client.window;
    told.x = i16(place.x);
    told.y = i16(place.y);
    told.width = u16(place.width);
    told.height = u16(place.height);
    xcb_send_event(x.connection(), 0, client.window, XCB_EVENT_MASK_STRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&told));
  }
  tellExtents(x, client);
}

void tellExtents(const XClient& x, const Client& client) {
  const Margins seen = client.frame == XCB_NONE ? Margins{} : client.seenFrame();
  x.setNumbers(client.window, "_NET_FRAME_EXTENTS", XCB_ATOM_CARDINAL,
               {u32(seen.left), u32(seen.right), u32(seen.top), u32(seen.bottom)});
}

void tellState(const XClient& x, const Client& client) {
  std::vector<std::uint32_t> states;
  if (client.minimised) states.push_back(x.atom("_NET_WM_STATE_HIDDEN"));
  if (client.above) states.push_back(x.atom("_NET_WM_STATE_ABOVE"));
  if (client.fullScreen) states.push_back(x.atom("_NET_WM_STATE_FULLSCREEN"));
  if (client.maximised) {
    states.push_back(x.atom("_NET_WM_STATE_MAXIMIZED_VERT"));
    states.push_back(x.atom("_NET_WM_STATE_MAXIMIZED_HORZ"));
  }
  x.setNumbers(client.window, "_NET_WM_STATE", XCB_ATOM_ATOM, states);
  const xcb_atom_t state = x.atom("WM_STATE");
  x.setNumbers(client.window, "WM_STATE", state,
               {client.minimised ? iconicState : normalState, XCB_NONE});
}

void setState(const XClient& x, Client& client, xcb_atom_t state, std::uint32_t action) {
  const auto become = [&](bool& value) {
    constexpr std::uint32_t toggle = 2;
    value = action == toggle ? !value : action == 1;
  };
  const bool filled = client.fullScreen || client.maximised;
  if (state == x.atom("_NET_WM_STATE_ABOVE")) become(client.above);
  if (state == x.atom("_NET_WM_STATE_FULLSCREEN")) become(client.fullScreen);
  if (state == x.atom("_NET_WM_STATE_MAXIMIZED_VERT")) become(client.maximised);
  if (!filled && (client.fullScreen || client.maximised)) client.formerPlace = client.place;
  const Area screen = x.screenArea();
  if (client.fullScreen) {
    client.place = screen;
  } else if (client.maximised) {
    const Margins seen = client.seenFrame();
    client.place = {seen.left, seen.top, screen.width - seen.left - seen.right,
                    screen.height - seen.top - seen.bottom};
  } else if (filled) {
    client.place = client.formerPlace;
  }
}

}  // namespace tintora::desktop_test
