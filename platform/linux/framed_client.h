// The window inside a frame, where the window manager paints less of the frame than there is:
// frames with wide edges to grip that are not seen.
#pragma once

#include "platform/linux/top_level.h"

namespace tintora::platform {

// Finds the program's window in a top-level one, and reads from it how much of its frame is seen
// and how translucent it is. Does nothing unless the window manager composes the screen.
void readFramedClient(TopLevel& topLevel);

}  // namespace tintora::platform
