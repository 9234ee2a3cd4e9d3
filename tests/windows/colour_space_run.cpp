#include "colour_space_run.h"

#include <utility>

#include "stored_values.h"

namespace tintora::windows_test {

void ColourSpaceTest::startWith(ColourSpaceView view, const ClientSize& size, DWORD type,
                                DWORD severity) {
  storeValues({{"View", static_cast<DWORD>(view)},
               {"ColorSpace", 1},
               {"Selected", type},
               {"ScrollPc", severity}});
  // The desktop must send the window no moves of its own between those of a test.
  const Bounds screen = screenBounds();
  SetCursorPos(screen.right - 1, screen.bottom - 1);
  start("-t");
  SetWindowPos(windows().main, nullptr, 0, 0, 300, 200, SWP_NOZORDER | SWP_NOACTIVATE);
  // This message, which the desktop sends while a window is dragged, undocks it.
  RECT bounds{};
  SendMessageA(windows().colourSpace, WM_MOVING, 0, reinterpret_cast<LPARAM>(&bounds));
  resize(size);
}

void ColourSpaceTest::resize(const ClientSize& size) {
  RECT bounds{0, 0, size.width, size.height};
  AdjustWindowRectEx(&bounds, WS_OVERLAPPEDWINDOW, FALSE, WS_EX_TOPMOST);
  const Bounds window = boundsOf(bounds);
  SetWindowPos(windows().colourSpace, nullptr, 320, 10, window.width(), window.height(),
               SWP_NOZORDER | SWP_NOACTIVATE);
  settle();
}

Picture ColourSpaceTest::shown() {
  // The picture appears on the screen some time after the device drew it.
  constexpr DWORD pause = 60;
  constexpr int mostPasses = 1000;
  finishDrawing();
  Picture last = screenPicture(clientBoundsOf(windows().colourSpace));
  for (int i = 0; i < mostPasses; ++i) {
    Sleep(pause);
    finishDrawing();
    Picture next = screenPicture(clientBoundsOf(windows().colourSpace));
    if (next.pixels == last.pixels) return last;
    last = std::move(next);
  }
  ADD_FAILURE() << "The window's picture keeps changing.";
  return last;
}

void ColourSpaceTest::mouse(UINT message, WPARAM held, int x, int y) {
  PostMessageA(windows().colourSpace, message, held, MAKELPARAM(x, y));
}

void ColourSpaceTest::drag(WPARAM held, std::initializer_list<Place> places) {
  const Place& first = *places.begin();
  mouse(WM_LBUTTONDOWN, held, first.x, first.y);
  for (const Place& place : places) mouse(WM_MOUSEMOVE, held, place.x, place.y);
  const Place& last = *(places.end() - 1);
  mouse(WM_LBUTTONUP, 0, last.x, last.y);
  settle();
}

}  // namespace tintora::windows_test
