// The program's own connection to the X server, beside Qt's: what the filtered view needs of other
// programs' windows goes over it.
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

// Replies and events come from malloc.
struct Free {
  void operator()(void* block) const { std::free(block); }
};
template <typename Block>
using Received = std::unique_ptr<Block, Free>;

// What RENDER reads windows of a visual as.
struct VisualFormat {
  xcb_visualid_t visual;
  xcb_render_pictformat_t format;
  bool hasAlpha;
};

// How far pixels can be shared with the server instead of being sent.
enum class PixelSharing { None, Images, Pixmaps };

struct XServer {
  xcb_connection_t* connection = nullptr;
  const xcb_screen_t* screen = nullptr;
  PixelSharing sharing = PixelSharing::None;
  std::uint8_t damageNotify = 0;  // event codes
  std::uint8_t shapeNotify = 0;
  std::uint8_t selectionNotify = 0;
  xcb_atom_t rootPixmap = XCB_NONE;     // the two names under which background setters
  xcb_atom_t setRootPixmap = XCB_NONE;  // leave their pixmap
  xcb_atom_t windowOpacity = XCB_NONE;
  xcb_atom_t wmState = XCB_NONE;
  xcb_atom_t supportingWmCheck = XCB_NONE;   // the window manager's own window
  xcb_atom_t compositingManager = XCB_NONE;  // the selection that a compositing manager owns
  xcb_atom_t supported = XCB_NONE;           // what a window manager can be asked
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

// Numbers as requests carry them.
inline std::int16_t i16(int value) {
  return static_cast<std::int16_t>(value);
}
inline std::uint16_t u16(int value) {
  return static_cast<std::uint16_t>(value);
}

// Connects. Returns nothing on success, else one line that says what stands in the way.
std::optional<std::string> connectToXServer();

// Ends the connection and releases all that the server holds for it.
void disconnectFromXServer();

// Returns the format of a visual, or null if RENDER has none.
const VisualFormat* formatOf(xcb_visualid_t visual);

// Waits until the server has done all that was asked so far.
void waitForXServer();

}  // namespace tintora::platform
