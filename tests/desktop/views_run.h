// The colour space window of a run, and what is drawn into it.
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
  // Starts the program with a view on the screen, at a deficiency and a severity in percent.
  void startWith(View view, const PictureSize& size = {}, int type = 2, int severity = 0);
  void startStored(const StoredValues& values, const PictureSize& size = {});

  // Gives the window's inside another size; returns when it has it.
  void resizeTo(const PictureSize& size);
  // Shows another view by its key.
  void turnTo(View view);
  // Turns the wheel in the window, a step of 5 % each.
  void stepSeverity(bool up, int times);

  Area inside() const { return x().areaOf(colourSpace()); }
  // What the window shows once it has come to rest.
  Picture shown();
  // Whether it comes to show a picture, to the last bit.
  testing::AssertionResult comesToShow(const Picture& expected);

  // Presses a button in the window, moves the mouse through places of its inside and lets go.
  struct Stop {
    int x = 0;
    int y = 0;
  };
  void drag(std::uint8_t button, const std::vector<Stop>& stops);
  void moveInside(const Stop& stop);

  // Where text may stand in a view of this size.
  static Area titleArea() { return {12, 10, 400, 20}; }
  static std::vector<Area> curveLabelAreas(const PictureSize& size);
  static std::vector<Area> wavelengthLabelAreas(const PictureSize& size);
};

// Whether an area holds text in a colour, straight on the background.
testing::AssertionResult hasText(const Picture& picture, const Area& area, std::uint32_t colour);

// Whether two pictures are the same, to the last bit.
testing::AssertionResult areSame(const Picture& a, const Picture& b);

inline constexpr std::uint32_t labelColour = 0xB4B4B4;

}  // namespace tintora::desktop_test
