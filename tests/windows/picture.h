// Pictures of the screen and of the clipboard, and a known picture to put beneath the program.
#pragma once

#include <windows.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <functional>
#include <vector>

#include "colour_effect.h"
#include "program_run.h"

namespace tintora::windows_test {

using expected::ColourEffect;
using expected::identityEffect;

using Colour = std::array<std::uint8_t, 3>;  // red, green, blue

struct Picture {
  int width = 0;
  int height = 0;
  std::vector<Colour> pixels;  // top row first

  const Colour& at(int x, int y) const {
    return pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                  static_cast<std::size_t>(x)];
  }
};

Picture screenPicture(const Bounds& part);

// Applies a colour effect to a picture in double precision.
Picture filteredPicture(const Picture& picture, const ColourEffect& effect);

// Returns what is drawn on a black bitmap of 32 bits per pixel.
Picture drawnPicture(int width, int height, const std::function<void(HDC)>& draw);

// Opens the clipboard once no other program has it open. Close it with CloseClipboard.
bool openClipboard();
void emptyClipboard();

// Succeeds if no channel of any pixel differs by more than the tolerance.
testing::AssertionResult areAlike(const Picture& actual, const Picture& expected, int tolerance);

// Returns the colour at a place on the screen.
using Pattern = Colour (*)(int x, int y);

// Returns a colour for each place that differs from its neighbours'.
Colour mixedColour(int x, int y);

// A frameless window that shows a pattern, beneath programs started after it.
class Backdrop {
 public:
  explicit Backdrop(const Bounds& bounds, Pattern pattern = &mixedColour);
  ~Backdrop();
  Backdrop(const Backdrop&) = delete;
  Backdrop& operator=(const Backdrop&) = delete;

  // Returns what it shows in a part of the screen, which must lie inside it.
  Picture picture(const Bounds& part) const;

 private:
  HANDLE thread_ = nullptr;
  Bounds bounds_;
  Pattern pattern_;
};

}  // namespace tintora::windows_test
