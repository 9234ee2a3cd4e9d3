// Asks the user, through the desktop portal, for a window or screen, and gets its stream. Nothing
// blocks: answers are events of the loop. There is only one session at a time.
#pragma once

#include <QtGui/qwindowdefs.h>

#include <cstdint>

namespace tintora::platform {

enum class PortalEnd {
  NoPortal,    // no portal offers screen casts
  NoPipeWire,  // the portal cannot provide a connection to PipeWire
  Cancelled,   // by the user
  Refused,     // by the portal
  Closed,      // after it was granted: by the user, or because the window closed
};

struct PortalEvents {
  // Passes a node of PipeWire and a connection, which belongs to the receiver from now on.
  void (*granted)(int connection, std::uint32_t node);
  void (*ended)(PortalEnd end);  // the session is over
};

// Asks for a window or screen. Unless `anew` is set, the answer that was remembered beside the
// settings is used without asking the user. The portal's dialog belongs to a window of the X
// server.
void askPortal(WId window, bool anew, const PortalEvents& events);

// Ends the session without a report. Does nothing if there is no session.
void endPortalSession();

}  // namespace tintora::platform
