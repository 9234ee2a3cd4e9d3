// Draws text on a graphics device. Uses D3DX if it is installed (it is a separate package, not part
// of Windows); otherwise the desktop paints the text.
#include <windows.h>
#include <d3dx9core.h>

#include <string>

#include "platform/graphics.h"
#include "platform/windows/graphics_device.h"
#include "platform/windows/handles.h"
#include "platform/windows/painted_text.h"
#include "platform/windows/scale.h"
#include "platform/windows/system_library.h"
#include "platform/windows/text.h"

namespace tintora::platform {

namespace {

using CreateFontFunction = decltype(D3DXCreateFontW);

// Returns the function of the newest D3DX that is installed, or null if there is none.
CreateFontFunction* findCreateFont() {
  constexpr int newest = 43;
  constexpr int oldest = 24;
  for (int version = newest; version >= oldest; --version) {
    const std::string name = "d3dx9_" + std::to_string(version) + ".dll";
    const HMODULE library = loadSystemLibrary(name.c_str());
    if (library != nullptr) return libraryFunction<CreateFontFunction>(library, "D3DXCreateFontW");
  }
  return nullptr;
}

ID3DXFont* createD3dxFont(IDirect3DDevice9* device, const TextFontForm& form) {
  static CreateFontFunction* const create = findCreateFont();
  ID3DXFont* font = nullptr;
  if (create == nullptr ||
      FAILED(create(device, form.height, 0, FW_NORMAL, 1, FALSE, DEFAULT_CHARSET,
                    form.outlinesOnly ? OUT_TT_ONLY_PRECIS : OUT_DEFAULT_PRECIS, DEFAULT_QUALITY,
                    DEFAULT_PITCH | FF_DONTCARE, wide(form.face).c_str(), &font))) {
    return nullptr;
  }
  return font;
}

}  // namespace

TextFont* createTextFont(GraphicsDevice* device, const TextFontForm& form) {
  auto* const created = new TextFont{.height = form.height};
  if (device->device == nullptr) return created;
  TextFontForm onScreen = form;
  onScreen.height = scaled(form.height, device->scale);
  created->font = createD3dxFont(device->device, onScreen);
  if (created->font == nullptr) created->painted = createPaintedFont(device->device, onScreen);
  return created;
}

void releaseTextFont(TextFont* font) {
  releaseCompletely(font->font);
  if (font->painted != nullptr) releasePaintedFont(font->painted);
  delete font;
}

int drawText(GraphicsDevice* device, TextFont* font, const Rect& area, PackedColour colour,
             const std::string& text) {
  if (font->painted == nullptr && font->font == nullptr) return font->height;
  const Rect onScreen = scaled(area, device->scale);
  int height = 0;
  if (font->painted != nullptr) {
    height = drawPaintedText(font->painted, onScreen, colour, text);
  } else {
    RECT place = native(onScreen);
    height =
        font->font->DrawTextW(nullptr, wide(text).c_str(), -1, &place, DT_LEFT | DT_TOP, colour);
  }
  return scaled(height, 1.0 / device->scale);
}

}  // namespace tintora::platform
