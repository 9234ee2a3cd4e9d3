#include "stand_in_picture.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace tintora::windows_test {

namespace {

struct Pixel {
  std::uint8_t blue;
  std::uint8_t green;
  std::uint8_t red;
  std::uint8_t unused;
};

// Returns the visible windows beneath a top-level window, the lowest first.
std::vector<HWND> windowsBeneath(HWND window) {
  std::vector<HWND> windows;
  for (HWND next = GetWindow(window, GW_HWNDNEXT); next != nullptr;
       next = GetWindow(next, GW_HWNDNEXT)) {
    if (IsWindowVisible(next) != 0 && IsIconic(next) == 0) windows.push_back(next);
  }
  std::ranges::reverse(windows);
  return windows;
}

// Copies the part of a window, including its frame, that lies in a part of the screen. Uses the
// window's device context because a print message does not reach other programs.
void copyWindow(HWND window, HDC target, const RECT& part) {
  RECT bounds{};
  RECT shared{};
  GetWindowRect(window, &bounds);
  if (IntersectRect(&shared, &bounds, &part) == 0) return;
  const HDC context = GetWindowDC(window);
  BitBlt(target, shared.left - part.left, shared.top - part.top, shared.right - shared.left,
         shared.bottom - shared.top, context, shared.left - bounds.left, shared.top - bounds.top,
         SRCCOPY);
  ReleaseDC(window, context);
}

void copyBeneath(HWND window, HDC target, const RECT& part) {
  const RECT all{0, 0, part.right - part.left, part.bottom - part.top};
  FillRect(target, &all, GetSysColorBrush(COLOR_DESKTOP));
  for (const HWND beneath : windowsBeneath(window)) copyWindow(beneath, target, part);
}

std::uint8_t output(const ColourEffect& effect, std::size_t channel, const Pixel& in) {
  const auto row = [&](std::size_t input) { return effect[5 * input + channel]; };
  const auto part = [&](std::uint8_t value, std::size_t input) {
    return static_cast<float>(value) * row(input);
  };
  const float sum =
      (part(in.red, 0) + part(in.green, 1) + part(in.blue, 2)) / 255.0F + row(3) + row(4);
  return static_cast<std::uint8_t>(std::lround(std::clamp(sum, 0.0F, 1.0F) * 255.0F));
}

void apply(const ColourEffect& effect, std::span<Pixel> pixels) {
  for (Pixel& pixel : pixels) {
    pixel = {output(effect, 2, pixel), output(effect, 1, pixel), output(effect, 0, pixel), 0};
  }
}

// A picture that was drawn but is not on the screen yet.
struct KeptPicture {
  HWND magnifier = nullptr;
  SIZE size{};
  std::vector<Pixel> pixels;
};
KeptPicture kept;

BITMAPINFO description(const SIZE& size) {
  BITMAPINFO info{};
  BITMAPINFOHEADER& header = info.bmiHeader;
  header.biSize = sizeof header;
  header.biWidth = size.cx;
  header.biHeight = -size.cy;
  header.biPlanes = 1;
  header.biBitCount = 32;
  return info;
}

void showKept(HDC target) {
  const BITMAPINFO info = description(kept.size);
  SetDIBitsToDevice(target, 0, 0, static_cast<DWORD>(kept.size.cx),
                    static_cast<DWORD>(kept.size.cy), 0, 0, 0, static_cast<UINT>(kept.size.cy),
                    kept.pixels.data(), &info, DIB_RGB_COLORS);
}

}  // namespace

void showDrawn() {
  if (kept.pixels.empty() || IsWindow(kept.magnifier) == 0) return;
  const HDC context = GetDC(kept.magnifier);
  showKept(context);
  ReleaseDC(kept.magnifier, context);
  GdiFlush();
  // Wine brings drawings to the screen only while a thread waits.
  constexpr DWORD milliseconds = 60;
  for (int i = 0; i < 3; ++i) MsgWaitForMultipleObjects(0, nullptr, FALSE, milliseconds, 0);
}

void showBeneath(HWND magnifier, HDC target, const RECT& source, const ColourEffect& effect,
                 bool late) {
  RECT client{};
  GetClientRect(magnifier, &client);
  if (IsRectEmpty(&client) != 0) return;
  const RECT part{source.left, source.top, source.left + client.right, source.top + client.bottom};

  const BITMAPINFO info = description({client.right, client.bottom});
  void* bits = nullptr;
  const HDC memory = CreateCompatibleDC(target);
  const HBITMAP bitmap = CreateDIBSection(memory, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  const HGDIOBJ previous = SelectObject(memory, bitmap);
  copyBeneath(GetAncestor(magnifier, GA_ROOT), memory, part);
  GdiFlush();
  const std::span pixels{static_cast<Pixel*>(bits), static_cast<std::size_t>(client.right) *
                                                        static_cast<std::size_t>(client.bottom)};
  apply(effect, pixels);
  if (late) {
    if (kept.size.cx == client.right && kept.size.cy == client.bottom) showKept(target);
    kept = {magnifier, {client.right, client.bottom}, {pixels.begin(), pixels.end()}};
  } else {
    BitBlt(target, 0, 0, client.right, client.bottom, memory, 0, 0, SRCCOPY);
  }
  SelectObject(memory, previous);
  DeleteObject(bitmap);
  DeleteDC(memory);
}

}  // namespace tintora::windows_test
