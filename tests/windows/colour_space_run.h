// The colour space window of a run: brought into view, turned by the mouse and looked at.
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
  // Starts the program simulating a type of deficiency, 1 to 3, at a severity in per cent, with a
  // view apart from the main window.
  void startWith(ColourSpaceView view, const ClientSize& size = {}, DWORD type = 2,
                 DWORD severity = 100);

  // Gives the window's client area a size.
  void resize(const ClientSize& size);

  // What the window shows once it has come to rest.
  Picture shown();

  // Posts a mouse message with the keys that are held.
  void mouse(UINT message, WPARAM held, int x, int y);
  // Presses the left button, moves through the places and lets go.
  struct Place {
    int x = 0;
    int y = 0;
  };
  void drag(WPARAM held, std::initializer_list<Place> places);
};

}  // namespace tintora::windows_test
