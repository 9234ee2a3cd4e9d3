// The colour space window of a run, and its contents.
#pragma once

#include <string>
#include <vector>

#include "program_run.h"
#include "seen_view.h"

namespace tintora::desktop_test {

enum class View : int { Curves = 702, Cube = 703, Diagram = 704, Help = 705 };

struct PictureSize {
  int width = 400;
  int height = 400;
};
inline constexpr std::array<PictureSize, 2> pictureSizes{{{400, 400}, {800, 600}}};

class ViewsTest : public ProgramTest {
 protected:
  // Starts the program with a view shown, at a deficiency and a severity in percent.
  void startWith(View view, const PictureSize& size = {}, int type = 2, int severity = 0);
  void startStored(const StoredValues& values, const PictureSize& size = {});

  // Resizes the window's inside, and returns when it has the new size.
  void resizeTo(const PictureSize& size);
  // Shows another view by pressing its key.
  void turnTo(View view);
  // Turns the wheel over the window, 5 % for each step.
  void stepSeverity(bool up, int times);

  Area inside() const { return x().areaOf(colourSpace()); }
  // Returns the window's picture once it has stopped changing.
  Picture shown();
  // Succeeds once the window shows exactly this picture.
  testing::AssertionResult comesToShow(const Picture& expected);

  // Presses a button in the window, moves the mouse through places of its inside and releases it.
  struct Stop {
    int x = 0;
    int y = 0;
  };
  void drag(std::uint8_t button, const std::vector<Stop>& stops);
  void moveInside(const Stop& stop);

  // Return the areas where text may be in a view of this size.
  static Area titleArea() { return {12, 10, 400, 20}; }
  static std::vector<Area> curveLabelAreas(const PictureSize& size);
  static std::vector<Area> wavelengthLabelAreas(const PictureSize& size);
};

// Succeeds if an area has text in a colour, directly on the background.
testing::AssertionResult hasText(const Picture& picture, const Area& area, std::uint32_t colour);

// Succeeds if two pictures are exactly equal.
testing::AssertionResult areSame(const Picture& a, const Picture& b);

inline constexpr std::uint32_t labelColour = 0xB4B4B4;

}  // namespace tintora::desktop_test
