// The window inside a frame of which the window manager paints only a part: some frames have wide
// invisible edges to grip.
#pragma once

#include "platform/linux/top_level.h"

namespace tintora::platform {

// Finds the program's window inside a top-level one. Reads from it how much of the frame is visible
// and how translucent it is. Does nothing unless the window manager composes the screen.
void readFramedClient(TopLevel& topLevel);

}  // namespace tintora::platform
