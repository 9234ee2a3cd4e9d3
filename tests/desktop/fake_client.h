// What the tests' window manager knows about another program's window, and what it tells that
// window.
#pragma once

#include <chrono>
#include <cstdint>

#include "x_client.h"

namespace tintora::desktop_test {

// The value of WM_STATE for minimised windows.
constexpr std::uint32_t iconicState = 3;

struct Margins {
  int left = 0;
  int top = 0;
  int right = 0;
  int bottom = 0;
};

// A window of another program.
struct Client {
  xcb_window_t window = XCB_NONE;
  xcb_window_t frame = XCB_NONE;                  // none: shown without a frame
  Area place;                                     // its inside, on the root
  Area formerPlace;                               // before it was maximised or filled the screen
  std::chrono::steady_clock::time_point frameAt;  // when the window gets its frame
  bool wantsFrame = true;
  bool minimised = false;
  bool maximised = false;
  bool fullScreen = false;
  bool above = false;
  int layer = 0;
  xcb_window_t transientFor = XCB_NONE;

  bool isFramed() const { return wantsFrame && !fullScreen; }
  Margins seenFrame() const;
  int unseenFrame() const;
  xcb_window_t topLevel() const { return frame == XCB_NONE ? window : frame; }
};

// Reads whether the window wants a frame, and which window it belongs to.
void readHints(const XClient& x, Client& client);

// Puts the window into a new frame.
void giveFrame(const XClient& x, Client& client);

// Moves the window and its frame to their places, and tells the window.
void layOut(const XClient& x, const Client& client);

// Tells the window the widths of its frame.
void tellExtents(const XClient& x, const Client& client);

// Tells the window its state.
void tellState(const XClient& x, const Client& client);

// Does what a message of type _NET_WM_STATE requests, but does not tell the window.
void setState(const XClient& x, Client& client, xcb_atom_t state, std::uint32_t action);

}  // namespace tintora::desktop_test
