// The pixels of the windows on the screen, which the server keeps apart from the screen's.
#pragma once

#include "platform/linux/top_level.h"

namespace tintora::platform {

// How a window's pixels are drawn into a picture of the screen's depth.
enum class Drawing {
  Copy,
  Convert,  // from another depth, without the alpha channel
  Blend,    // over what is beneath, as compositing managers do
};

Drawing drawingOf(const TopLevel& topLevel);

// Returns true if nothing beneath the window shows through it.
bool isOpaque(const TopLevel& topLevel);

// Makes a window's pixels readable; returns false if it has none.
bool holdPixels(TopLevel& topLevel);

// Releases what holdPixels() made.
void releasePixels(TopLevel& topLevel);

}  // namespace tintora::platform
