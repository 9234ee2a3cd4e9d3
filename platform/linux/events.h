// From Qt's events to the program's.
#pragma once

#include "platform/window.h"

namespace tintora::platform {

// Has a window's events handed to the handler.
void translateEvents(Window* window);

// Hands an event to the program; true where the desktop's own handling must not follow.
bool handOver(const Event& event);

// Who is told of events; nobody while it is null.
void setEventHandler(EventHandler handler);

// The window's virtual-key code for a key, or 0.
}  // namespace tintora::platform
