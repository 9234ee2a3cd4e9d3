// The program's own connection to the X server, beside Qt's. The filtered view uses it for all that
// it needs of other programs' windows.
#pragma once

#include <xcb/render.h>
#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tintora::platform {

// Frees replies and events, which come from malloc.
struct Free {
  void operator()(void* block) const { std::free(block); }
};
template <typename Block>
using Received = std::unique_ptr<Block, Free>;

// An event as one of its kind, which its response type tells.
template <typename Event>
const Event& as(const xcb_generic_event_t& event) {
  return reinterpret_cast<const Event&>(event);
}

// The RENDER format of windows with this visual.
struct VisualFormat {
  xcb_visualid_t visual;
  xcb_render_pictformat_t format;
  bool hasAlpha;
};

// How many pixels can be shared with the server instead of being sent.
enum class PixelSharing { None, Images, Pixmaps };

struct XServer {
  xcb_connection_t* connection = nullptr;
  const xcb_screen_t* screen = nullptr;
  PixelSharing sharing = PixelSharing::None;
  std::uint8_t damageNotify = 0;  // event codes
  std::uint8_t shapeNotify = 0;
  std::uint8_t selectionNotify = 0;
  xcb_atom_t rootPixmap = XCB_NONE;     // the two properties in which background
  xcb_atom_t setRootPixmap = XCB_NONE;  // setters store their pixmap
  xcb_atom_t windowOpacity = XCB_NONE;
  xcb_atom_t wmState = XCB_NONE;
  xcb_atom_t supportingWmCheck = XCB_NONE;  // the window manager's own window
  xcb_atom_t windowName = XCB_NONE;
  xcb_atom_t compositingManager = XCB_NONE;  // the selection that a compositing manager owns
  xcb_atom_t supported = XCB_NONE;           // the requests that a window manager supports
  xcb_atom_t requestFrameExtents = XCB_NONE;
  xcb_atom_t frameExtents = XCB_NONE;
  xcb_atom_t windowType = XCB_NONE;
  xcb_atom_t utilityType = XCB_NONE;
  xcb_atom_t windowState = XCB_NONE;
  xcb_atom_t maximisedAcross = XCB_NONE;
  xcb_atom_t maximisedUpright = XCB_NONE;
  xcb_atom_t fullScreen = XCB_NONE;
  std::vector<VisualFormat> formats;
};

extern XServer xServer;

inline xcb_connection_t* x() {
  return xServer.connection;
}

inline bool reportsDamage(const xcb_generic_event_t& event) {
  return (event.response_type & 0x7F) == xServer.damageNotify;
}

// Convert numbers to the types of requests.
inline std::int16_t i16(int value) {
  return static_cast<std::int16_t>(value);
}
inline std::uint16_t u16(int value) {
  return static_cast<std::uint16_t>(value);
}

// Connects to the server. Returns nothing on success, else one line that says why it failed.
std::optional<std::string> connectToXServer();

// Closes the connection, which releases all that the server holds for it.
void disconnectFromXServer();

// Returns the RENDER format of a visual, or null if it has none.
const VisualFormat* formatOf(xcb_visualid_t visual);

// Waits until the server has handled all requests so far.
void waitForXServer();

}  // namespace tintora::platform
