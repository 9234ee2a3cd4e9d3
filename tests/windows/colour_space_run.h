// Runs the program and brings its colour space window into view, turns it with the mouse and reads
// its picture.
#pragma once

#include <windows.h>

#include <initializer_list>

#include "picture.h"
#include "program_run.h"

namespace tintora::windows_test {

enum ColourSpaceView : int { CurvesView = 702, CubeView = 703, DiagramView = 704, HelpView = 705 };

struct ClientSize {
  int width = 400;
  int height = 400;
};

class ColourSpaceTest : public ProgramTest {
 protected:
  // Starts the program with the colour space window undocked, simulating a deficiency: type 1 to 3,
  // severity in per cent.
  void startWith(ColourSpaceView view, const ClientSize& size = {}, DWORD type = 2,
                 DWORD severity = 100);

  // Resizes the window's client area.
  void resize(const ClientSize& size);

  // Returns the window's picture once it no longer changes.
  Picture shown();

  // Posts a mouse message, with the keys that are held as its flags.
  void mouse(UINT message, WPARAM held, int x, int y);
  // Presses the left button, moves through the places and releases it.
  struct Place {
    int x = 0;
    int y = 0;
  };
  void drag(WPARAM held, std::initializer_list<Place> places);
};

}  // namespace tintora::windows_test
