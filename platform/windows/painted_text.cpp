#include "platform/windows/painted_text.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <utility>

#include "platform/windows/graphics_device.h"
#include "platform/windows/text.h"

namespace tintora::platform {

namespace {

// A line of white text. The alpha of each pixel is its coverage by the text.
struct PaintedLine {
  std::string text;
  IDirect3DTexture9* texture = nullptr;
  Size size;  // of the texture, in pixels
};

struct CornerVertex {
  float x = 0.0F;  // pixels
  float y = 0.0F;
  float z = 0.0F;
  float reciprocalW = 1.0F;
  PackedColour colour = 0;
  float u = 0.0F;
  float v = 0.0F;
};

constexpr DWORD cornerFormat = D3DFVF_XYZRHW | D3DFVF_DIFFUSE | D3DFVF_TEX1;

struct StageState {
  DWORD stage;
  D3DTEXTURESTAGESTATETYPE state;
  DWORD value;
};

struct SamplerState {
  D3DSAMPLERSTATETYPE state;
  DWORD value;
};

// Blends the line over the picture by the line's alpha.
constexpr std::array textRenderStates{
    RenderState{D3DRS_ALPHABLENDENABLE, TRUE},
    RenderState{D3DRS_SRCBLEND, D3DBLEND_SRCALPHA},
    RenderState{D3DRS_DESTBLEND, D3DBLEND_INVSRCALPHA},
    RenderState{D3DRS_ZENABLE, D3DZB_FALSE},
    RenderState{D3DRS_ZWRITEENABLE, FALSE},
    RenderState{D3DRS_CULLMODE, D3DCULL_NONE},
    RenderState{D3DRS_FILLMODE, D3DFILL_SOLID},
};

// Takes the colour from the vertex and multiplies its alpha by the line's.
constexpr std::array stageStates{
    StageState{0, D3DTSS_COLOROP, D3DTOP_MODULATE}, StageState{0, D3DTSS_COLORARG1, D3DTA_TEXTURE},
    StageState{0, D3DTSS_COLORARG2, D3DTA_DIFFUSE}, StageState{0, D3DTSS_ALPHAOP, D3DTOP_MODULATE},
    StageState{0, D3DTSS_ALPHAARG1, D3DTA_TEXTURE}, StageState{0, D3DTSS_ALPHAARG2, D3DTA_DIFFUSE},
    StageState{1, D3DTSS_COLOROP, D3DTOP_DISABLE},  StageState{1, D3DTSS_ALPHAOP, D3DTOP_DISABLE},
};

// Copies pixel for pixel, without smoothing.
constexpr std::array samplerStates{
    SamplerState{D3DSAMP_MINFILTER, D3DTEXF_POINT},
    SamplerState{D3DSAMP_MAGFILTER, D3DTEXF_POINT},
    SamplerState{D3DSAMP_MIPFILTER, D3DTEXF_NONE},
    SamplerState{D3DSAMP_ADDRESSU, D3DTADDRESS_CLAMP},
    SamplerState{D3DSAMP_ADDRESSV, D3DTADDRESS_CLAMP},
};

// Sets all states for drawing a line, and the vertex stream, which drawing from memory resets.
void setStates(IDirect3DDevice9* device) {
  for (const auto& [state, value] : textRenderStates) device->SetRenderState(state, value);
  for (const auto& [stage, state, value] : stageStates) {
    device->SetTextureStageState(stage, state, value);
  }
  for (const auto& [state, value] : samplerStates) device->SetSamplerState(0, state, value);
  device->SetTexture(0, nullptr);
  device->SetFVF(cornerFormat);
  device->SetStreamSource(0, nullptr, 0, 0);
}

// Returns a block of the states above, or null if the device refuses.
IDirect3DStateBlock9* recordStates(IDirect3DDevice9* device) {
  IDirect3DStateBlock9* states = nullptr;
  if (FAILED(device->BeginStateBlock())) return nullptr;
  setStates(device);
  return FAILED(device->EndStateBlock(&states)) ? nullptr : states;
}

BITMAPINFO description(const Size& size) {
  BITMAPINFO info{};
  BITMAPINFOHEADER& header = info.bmiHeader;
  header.biSize = sizeof header;
  header.biWidth = size.width;
  header.biHeight = -size.height;  // negative: the top row comes first
  header.biPlanes = 1;
  header.biBitCount = 32;
  return info;
}

// Returns white with the mean of the three channels as alpha. With subpixel smoothing the channels
// of a pixel differ, but the texture has only one alpha.
std::uint32_t whiteWithCoverage(std::uint32_t painted) {
  const std::uint32_t sum = (painted >> 16 & 0xFF) + (painted >> 8 & 0xFF) + (painted & 0xFF);
  return (sum + 1) / 3 << 24 | 0x00FFFFFF;
}

// Returns false if the texture cannot be locked.
bool copyCoverage(IDirect3DTexture9* texture, const std::uint32_t* pixels, const Size& size) {
  D3DLOCKED_RECT target{};
  if (FAILED(texture->LockRect(0, &target, nullptr, 0))) return false;
  auto* row = static_cast<std::byte*>(target.pBits);
  for (int y = 0; y < size.height; ++y) {
    std::transform(pixels, pixels + size.width, reinterpret_cast<std::uint32_t*>(row),
                   whiteWithCoverage);
    pixels += size.width;
    row += target.Pitch;
  }
  texture->UnlockRect(0);
  return true;
}

// Returns a texture with the painted pixels as coverage, or null if memory runs out.
IDirect3DTexture9* makeTexture(IDirect3DDevice9* device, const std::uint32_t* pixels,
                               const Size& size) {
  IDirect3DTexture9* texture = nullptr;
  if (FAILED(device->CreateTexture(static_cast<UINT>(size.width), static_cast<UINT>(size.height), 1,
                                   0, D3DFMT_A8R8G8B8, D3DPOOL_MANAGED, &texture, nullptr))) {
    return nullptr;
  }
  if (!copyCoverage(texture, pixels, size)) release(texture);
  return texture;
}

// Rounds up to a power of two, 2048 at most. Not every device accepts other sizes.
int textureLength(LONG pixels) {
  constexpr LONG longest = 2048;
  return static_cast<int>(std::bit_ceil(static_cast<unsigned>(std::min(pixels, longest))));
}

}  // namespace

struct PaintedFont {
  IDirect3DDevice9* device = nullptr;
  IDirect3DStateBlock9* states = nullptr;  // the device's states while a line is drawn
  IDirect3DStateBlock9* kept = nullptr;    // the device's states before and after
  HDC context = nullptr;
  HFONT font = nullptr;
  HGDIOBJ previousFont = nullptr;
  LONG height = 0;
  std::deque<PaintedLine> lines{};  // oldest first
};

namespace {

Size textureSize(const PaintedFont& font, const std::string& text) {
  SIZE extent{};
  const std::wstring line = wide(text);
  GetTextExtentPoint32W(font.context, line.data(), static_cast<int>(line.size()), &extent);
  // The last letter may extend beyond the measured width.
  return {textureLength(extent.cx + font.height), textureLength(font.height)};
}

// Paints a line. Its texture is null if there is no memory for it.
PaintedLine paintLine(const PaintedFont& font, const std::string& text) {
  PaintedLine line{.text = text, .size = textureSize(font, text)};
  const BITMAPINFO info = description(line.size);
  void* pixels = nullptr;
  auto* const bitmap = CreateDIBSection(font.context, &info, DIB_RGB_COLORS, &pixels, nullptr, 0);
  if (bitmap == nullptr) return line;
  auto* const previous = SelectObject(font.context, bitmap);
  const std::wstring letters = wide(text);
  TextOutW(font.context, 0, 0, letters.data(), static_cast<int>(letters.size()));
  GdiFlush();
  line.texture = makeTexture(font.device, static_cast<const std::uint32_t*>(pixels), line.size);
  SelectObject(font.context, previous);
  DeleteObject(bitmap);
  return line;
}

// Returns the painted line, from the cache if it is there, or null if it cannot be painted.
const PaintedLine* lineOf(PaintedFont& font, const std::string& text) {
  constexpr std::size_t most = 64;
  const auto found = std::ranges::find(font.lines, text, &PaintedLine::text);
  if (found != font.lines.end()) return &*found;
  PaintedLine painted = paintLine(font, text);
  if (painted.texture == nullptr) return nullptr;
  if (font.lines.size() == most) {
    release(font.lines.front().texture);
    font.lines.pop_front();
  }
  return &font.lines.emplace_back(std::move(painted));
}

// Returns the corners of the part of a line that fits into an area. Pixel centres are at whole
// numbers, so corners half a pixel before them map texture pixels exactly to screen pixels.
std::array<CornerVertex, 4> corners(const PaintedLine& line, const Rect& area,
                                    PackedColour colour) {
  const auto width = static_cast<float>(std::min(line.size.width, area.width()));
  const auto height = static_cast<float>(std::min(line.size.height, area.height()));
  std::array<CornerVertex, 4> strip{};
  for (std::size_t i = 0; i < strip.size(); ++i) {
    const float across = (i & 1U) != 0 ? width : 0.0F;
    const float down = (i & 2U) != 0 ? height : 0.0F;
    strip[i] = {.x = static_cast<float>(area.left) + across - 0.5F,
                .y = static_cast<float>(area.top) + down - 0.5F,
                .colour = colour,
                .u = across / static_cast<float>(line.size.width),
                .v = down / static_cast<float>(line.size.height)};
  }
  return strip;
}

}  // namespace

PaintedFont* createPaintedFont(IDirect3DDevice9* device, const TextFontForm& form) {
  auto* const font = new PaintedFont{.device = device};
  font->states = recordStates(device);
  font->kept = recordStates(device);
  font->context = CreateCompatibleDC(nullptr);
  font->font =
      CreateFontW(form.height, 0, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE, DEFAULT_CHARSET,
                  form.outlinesOnly ? OUT_TT_ONLY_PRECIS : OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS,
                  DEFAULT_QUALITY, DEFAULT_PITCH | FF_DONTCARE, wide(form.face).c_str());
  font->previousFont = SelectObject(font->context, font->font);
  SetTextColor(font->context, RGB(255, 255, 255));
  SetBkMode(font->context, TRANSPARENT);
  TEXTMETRICW metrics{};
  GetTextMetricsW(font->context, &metrics);
  font->height = metrics.tmHeight;
  return font;
}

void releasePaintedFont(PaintedFont* font) {
  for (PaintedLine& line : font->lines) release(line.texture);
  release(font->states);
  release(font->kept);
  SelectObject(font->context, font->previousFont);
  DeleteObject(font->font);
  DeleteDC(font->context);
  delete font;
}

int drawPaintedText(PaintedFont* font, const Rect& area, PackedColour colour,
                    const std::string& text) {
  const auto height = static_cast<int>(font->height);
  if (area.width() <= 0 || area.height() <= 0 || font->states == nullptr || font->kept == nullptr) {
    return height;
  }
  const PaintedLine* const line = lineOf(*font, text);
  if (line == nullptr) return height;
  const std::array<CornerVertex, 4> strip = corners(*line, area, colour);
  font->kept->Capture();
  font->states->Apply();
  font->device->SetTexture(0, line->texture);
  font->device->DrawPrimitiveUP(D3DPT_TRIANGLESTRIP, 2, strip.data(), sizeof(CornerVertex));
  font->kept->Apply();
  return height;
}

}  // namespace tintora::platform
