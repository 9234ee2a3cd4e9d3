// The pixels of the windows on the screen, which the server keeps apart from the screen's own.
#pragma once

#include "platform/linux/top_level.h"

namespace tintora::platform {

// Returns true if nothing beneath the window shows through it.
bool isOpaque(const TopLevel& topLevel);

// Makes a window's pixels readable; returns false if it has none.
bool holdPixels(TopLevel& topLevel);

// Releases what holdPixels() made.
void releasePixels(TopLevel& topLevel);

}  // namespace tintora::platform
