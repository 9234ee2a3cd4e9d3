// Tests that run on every desktop: on each window manager, with and without a compositing manager.
#pragma once

#include <string>
#include <vector>

#include "program_run.h"

namespace tintora::desktop_test {

struct Desktop {
  std::string name;
  Manager manager;
  Compositor compositor;
};

const std::vector<Desktop>& allDesktops();
std::string nameOf(const testing::TestParamInfo<Desktop>& info);

// Starts a desktop's display once, for all tests of a run.
class OnDesktop : public ProgramTest, public testing::WithParamInterface<Desktop> {
 protected:
  void SetUp() override;
  static void TearDownTestSuite();

  // Returns the area of a window with the visible part of its frame: what the window manager says,
  // else the whole frame.
  Area outer(xcb_window_t window) const;
  // Succeeds once a window has this area, with the visible part of its frame.
  testing::AssertionResult outerBecomes(xcb_window_t window, const Area& area) const;
  // Returns the control window's place in the middle of an area.
  static Area controlPlace(const Area& area);
};

}  // namespace tintora::desktop_test
