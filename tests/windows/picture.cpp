#include "picture.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <iterator>
#include <memory>

namespace tintora::windows_test {

namespace {

std::uint8_t low(int value) {
  return static_cast<std::uint8_t>(value & 0xff);
}

// What a backdrop's window paints. Its thread owns this.
struct BackdropFacts {
  Bounds bounds;
  Pattern pattern;
};

Picture patternPicture(const Bounds& part, Pattern pattern) {
  Picture picture{part.width(), part.height(), {}};
  for (int y = part.top; y < part.bottom; ++y) {
    for (int x = part.left; x < part.right; ++x) picture.pixels.push_back(pattern(x, y));
  }
  return picture;
}

// Describes a bitmap of 32 bits per pixel, top row first.
BITMAPINFO description(int width, int height) {
  BITMAPINFO info{};
  BITMAPINFOHEADER& header = info.bmiHeader;
  header.biSize = sizeof header;
  header.biWidth = width;
  header.biHeight = -height;
  header.biPlanes = 1;
  header.biBitCount = 32;
  return info;
}

void paintBackdrop(HWND window, Pattern pattern) {
  PAINTSTRUCT painting{};
  const HDC context = BeginPaint(window, &painting);
  const Picture picture = patternPicture(boundsOf(window), pattern);
  std::vector<std::uint32_t> pixels;
  for (const Colour& colour : picture.pixels) {
    pixels.push_back(static_cast<std::uint32_t>(colour[0] << 16 | colour[1] << 8 | colour[2]));
  }
  const BITMAPINFO info = description(picture.width, picture.height);
  const auto rows = static_cast<UINT>(picture.height);
  SetDIBitsToDevice(context, 0, 0, static_cast<DWORD>(picture.width), rows, 0, 0, 0, rows,
                    pixels.data(), &info, DIB_RGB_COLORS);
  EndPaint(window, &painting);
}

LRESULT CALLBACK backdropProcedure(HWND window, UINT message, WPARAM first, LPARAM second) {
  if (message != WM_PAINT) return DefWindowProcA(window, message, first, second);
  paintBackdrop(window, reinterpret_cast<Pattern>(GetWindowLongPtrA(window, GWLP_USERDATA)));
  return 0;
}

// Runs the window on its own thread, so that it answers while a test waits.
DWORD WINAPI runBackdrop(void* parameter) {
  const std::unique_ptr<BackdropFacts> backdrop(static_cast<BackdropFacts*>(parameter));
  const Bounds& bounds = backdrop->bounds;
  WNDCLASSA facts{};
  facts.lpfnWndProc = &backdropProcedure;
  facts.hInstance = GetModuleHandleA(nullptr);
  facts.lpszClassName = "Backdrop";
  RegisterClassA(&facts);
  const HWND window =
      CreateWindowExA(WS_EX_NOACTIVATE, "Backdrop", "", WS_POPUP, bounds.left, bounds.top,
                      bounds.width(), bounds.height(), nullptr, nullptr, facts.hInstance, nullptr);
  SetWindowLongPtrA(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(backdrop->pattern));
  ShowWindow(window, SW_SHOWNOACTIVATE);
  MSG message{};
  while (GetMessageA(&message, nullptr, 0, 0) > 0) DispatchMessageA(&message);
  DestroyWindow(window);
  return 0;
}

}  // namespace

Picture drawnPicture(int width, int height, const std::function<void(HDC)>& draw) {
  Picture picture{width, height, {}};
  const HDC memory = CreateCompatibleDC(nullptr);
  const BITMAPINFO info = description(width, height);
  void* bits = nullptr;
  const HBITMAP bitmap = CreateDIBSection(memory, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  const HGDIOBJ previous = SelectObject(memory, bitmap);
  draw(memory);
  GdiFlush();
  const auto* const pixels = static_cast<const std::uint32_t*>(bits);
  const auto count = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
  std::transform(pixels, pixels + count, std::back_inserter(picture.pixels),
                 [](std::uint32_t pixel) -> Colour {
                   return {static_cast<std::uint8_t>(pixel >> 16),
                           static_cast<std::uint8_t>(pixel >> 8), static_cast<std::uint8_t>(pixel)};
                 });
  SelectObject(memory, previous);
  DeleteObject(bitmap);
  DeleteDC(memory);
  return picture;
}

Picture screenPicture(const Bounds& part) {
  const int width = part.width();
  const int height = part.height();
  return drawnPicture(width, height, [&](HDC memory) {
    const HDC screen = GetDC(nullptr);
    BitBlt(memory, 0, 0, width, height, screen, part.left, part.top, SRCCOPY);
    ReleaseDC(nullptr, screen);
  });
}

bool openClipboard() {
  return eventually([] { return OpenClipboard(nullptr) != FALSE; });
}

void emptyClipboard() {
  EXPECT_TRUE(openClipboard());
  EmptyClipboard();
  CloseClipboard();
}

Picture filteredPicture(const Picture& picture, const ColourEffect& effect) {
  Picture result = picture;
  for (Colour& pixel : result.pixels) {
    const Colour in = pixel;
    for (std::size_t output = 0; output < 3; ++output) {
      double sum = double{effect[15 + output]} + double{effect[20 + output]};
      for (std::size_t input = 0; input < 3; ++input) {
        sum += in[input] / 255.0 * double{effect[5 * input + output]};
      }
      pixel[output] = static_cast<std::uint8_t>(std::lround(std::clamp(sum, 0.0, 1.0) * 255));
    }
  }
  return result;
}

testing::AssertionResult areAlike(const Picture& actual, const Picture& expected, int tolerance) {
  if (actual.width != expected.width || actual.height != expected.height) {
    return testing::AssertionFailure() << actual.width << " x " << actual.height << " instead of "
                                       << expected.width << " x " << expected.height;
  }
  for (int y = 0; y < actual.height; ++y) {
    for (int x = 0; x < actual.width; ++x) {
      for (std::size_t channel = 0; channel < 3; ++channel) {
        const int is = actual.at(x, y)[channel];
        const int shouldBe = expected.at(x, y)[channel];
        if (std::abs(is - shouldBe) <= tolerance) continue;
        return testing::AssertionFailure() << "channel " << channel << " at " << x << "," << y
                                           << " is " << is << " instead of " << shouldBe;
      }
    }
  }
  return testing::AssertionSuccess();
}

Colour mixedColour(int x, int y) {
  return {low(5 * x + y), low(3 * x + 7 * y), low(11 * x + 13 * y)};
}

Backdrop::Backdrop(const Bounds& bounds, Pattern pattern) : bounds_(bounds), pattern_(pattern) {
  auto facts = std::make_unique<BackdropFacts>(BackdropFacts{bounds, pattern});
  thread_ = CreateThread(nullptr, 0, &runBackdrop, facts.release(), 0, nullptr);
  EXPECT_TRUE(eventually([&] { return areAlike(screenPicture(bounds_), picture(bounds_), 0); }));
}

Backdrop::~Backdrop() {
  PostThreadMessageA(GetThreadId(thread_), WM_QUIT, 0, 0);
  WaitForSingleObject(thread_, INFINITE);
  CloseHandle(thread_);
}

Picture Backdrop::picture(const Bounds& part) const {
  return patternPicture(part, pattern_);
}

}  // namespace tintora::windows_test
