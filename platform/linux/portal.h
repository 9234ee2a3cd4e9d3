// The conversation with the desktop portal: asks the user for a window or screen, and the portal
// for its stream. Nothing blocks; answers come as events of the loop. There is one session at a
// time.
#pragma once

#include <QtGui/qwindowdefs.h>

#include <cstdint>

namespace tintora::platform {

enum class PortalEnd {
  NoPortal,    // nobody offers screen casts
  NoPipeWire,  // the portal has no connection to PipeWire to give
  Cancelled,   // by the user
  Refused,     // by the portal
  Closed,      // after it was granted: by the user, or with the window
};

struct PortalEvents {
  // A node of PipeWire, and a connection that belongs to the receiver from now on.
  void (*granted)(int connection, std::uint32_t node);
  void (*ended)(PortalEnd end);  // the session is over
};

// Asks for a window or screen. The answer to the last request is remembered beside the settings and
// asks the user nothing, unless it is to be asked anew. The portal's dialog belongs to a window of
// the X server.
void askPortal(WId window, bool anew, const PortalEvents& events);

// Ends the session without a word. Does nothing if there is none.
void endPortalSession();

}  // namespace tintora::platform
