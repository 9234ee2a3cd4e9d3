// Lines of text that the desktop paints into textures.
#pragma once

#include <windows.h>
#include <d3d9.h>

#include <string>

#include "platform/geometry.h"
#include "platform/graphics.h"

namespace tintora::platform {

// A font of one device, with the lines that were last drawn in it.
struct PaintedFont;

PaintedFont* createPaintedFont(IDirect3DDevice9* device, const TextFontForm& form);

// To be released before its device.
void releasePaintedFont(PaintedFont* font);

// One line of text from the left top corner of a rectangle, cut off at its edges; returns the
// line's height in pixels. All states of the device are left as they were.
int drawPaintedText(PaintedFont* font, const Rect& area, PackedColour colour,
                    const std::string& text);

}  // namespace tintora::platform
