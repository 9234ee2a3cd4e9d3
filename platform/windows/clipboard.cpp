#include "platform/clipboard.h"

#include <windows.h>

#include <array>
#include <cstring>

#include "platform/windows/composition.h"
#include "platform/windows/handles.h"
#include "platform/windows/menu_fade.h"

namespace tintora::platform {

namespace {

// The header of a device-independent bitmap, with room for the largest colour table.
struct BitmapHeader {
  BITMAPINFOHEADER header;
  std::array<RGBQUAD, 256> colours;
};

struct Depth {
  WORD atMost;  // bits per pixel of the original bitmap
  WORD bitCount;
  DWORD colourTableBytes;
};
constexpr std::array<Depth, 3> palettedDepths{{{1, 1, 8}, {4, 4, 64}, {8, 8, 1024}}};
constexpr Depth trueColour{0, 24, 0};

Depth depthFor(WORD bitsPerPixel) {
  for (const Depth& depth : palettedDepths) {
    if (bitsPerPixel <= depth.atMost) return depth;
  }
  return trueColour;
}

BITMAPINFO* asInfo(void* header) {
  return static_cast<BITMAPINFO*>(header);
}

// Returns the bitmap as the clipboard holds it: header, colour table and rows in one block. Returns
// null on failure.
HGLOBAL makeDib(HDC screen, HBITMAP bitmap) {
  BITMAP facts{};
  GetObjectW(bitmap, sizeof facts, &facts);
  const Depth depth = depthFor(facts.bmBitsPixel);
  BitmapHeader description{};
  BITMAPINFOHEADER& header = description.header;
  header.biSize = sizeof header;
  header.biWidth = facts.bmWidth;
  header.biHeight = facts.bmHeight;
  header.biPlanes = 1;
  header.biBitCount = depth.bitCount;
  header.biCompression = BI_RGB;

  const auto rows = static_cast<UINT>(header.biHeight);
  GetDIBits(screen, bitmap, 0, rows, nullptr, asInfo(&description), DIB_RGB_COLORS);
  if (header.biSizeImage == 0) {
    const DWORD rowBits = (header.biBitCount * static_cast<DWORD>(header.biWidth) + 31) & ~31U;
    header.biSizeImage = rowBits / 8 * rows;
  }

  const DWORD headBytes = header.biSize + depth.colourTableBytes;
  const HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, headBytes + header.biSizeImage);
  if (block == nullptr) return nullptr;
  auto* const bytes = static_cast<std::uint8_t*>(GlobalLock(block));
  std::memcpy(bytes, &header, sizeof header);
  const int copied =
      GetDIBits(screen, bitmap, 0, rows, bytes + headBytes, asInfo(bytes), DIB_RGB_COLORS);
  GlobalUnlock(block);
  if (copied == 0) {
    GlobalFree(block);
    return nullptr;
  }
  return block;
}

}  // namespace

Picture* captureClientArea(Window* window) {
  awaitMenuFade();
  // The latest drawing may not be on the screen yet.
  awaitComposition();
  const HDC screen = GetDC(nullptr);
  const Rect area = clientArea(window);
  const Point origin = clientOrigin(window);
  const HDC memory = CreateCompatibleDC(screen);
  const HBITMAP bitmap = CreateCompatibleBitmap(screen, area.width(), area.height());
  const HGDIOBJ previous = SelectObject(memory, bitmap);
  BitBlt(memory, 0, 0, area.width(), area.height(), screen, origin.x, origin.y, SRCCOPY);
  SelectObject(memory, previous);
  DeleteDC(memory);
  ReleaseDC(nullptr, screen);
  return fromNative(bitmap);
}

bool putOnClipboard(Window* owner, Picture* picture) {
  if (OpenClipboard(native(owner)) == 0) return false;
  EmptyClipboard();
  const HDC screen = GetDC(nullptr);
  const HPALETTE previous =
      SelectPalette(screen, static_cast<HPALETTE>(GetStockObject(DEFAULT_PALETTE)), FALSE);
  RealizePalette(screen);
  // The clipboard owns the block once it has accepted it.
  const HGLOBAL block = makeDib(screen, native(picture));
  const bool handedOver = block != nullptr;
  if (handedOver) SetClipboardData(CF_DIB, block);
  CloseClipboard();
  SelectPalette(screen, previous, FALSE);
  ReleaseDC(nullptr, screen);
  return handedOver;
}

void deletePicture(Picture* picture) {
  DeleteObject(native(picture));
}

}  // namespace tintora::platform
