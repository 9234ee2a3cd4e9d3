// Text that the desktop paints into textures, one line each.
#pragma once

#include <windows.h>
#include <d3d9.h>

#include <string>

#include "platform/geometry.h"
#include "platform/graphics.h"

namespace tintora::platform {

// A font on one device, with a cache of the lines drawn last.
struct PaintedFont;

PaintedFont* createPaintedFont(IDirect3DDevice9* device, const TextFontForm& form);

// Releases the font; call it before the device is released.
void releasePaintedFont(PaintedFont* font);

// Draws one line of text from the left top corner of an area, clipped at its edges. Returns the
// line's height in pixels. Leaves all states of the device unchanged.
int drawPaintedText(PaintedFont* font, const Rect& area, PackedColour colour,
                    const std::string& text);

}  // namespace tintora::platform
