// Lists of calls that belong together, to compare with the calls that the desktop recorded.
#pragma once

#include <initializer_list>
#include <string>

#include "platform/geometry.h"
#include "program_run.h"

namespace tintora {

Calls joined(std::initializer_list<Calls> lists);

// The positions in the main menu of the items that the engine marks.
struct ViewerItems {
  int simulation;
  int daltonize;
  int inverseTransform;
  int swapRedAndBlue;
  int otherColourEffects;
};
inline constexpr ViewerItems itemsWithoutLetters{6, 9, 10, 11, 13};
inline constexpr ViewerItems itemsWithTritan{7, 10, 11, 12, 14};
inline constexpr ViewerItems itemsWithOptions{6, 10, 11, 12, 14};
inline constexpr ViewerItems itemsWithBoth{7, 11, 12, 13, 15};

// One application of the settings in force, in a run without command line letters.
struct Application {
  std::string title;
  int viewerItem;
  int typeItem = 0;  // none
  int algorithmItem = 1;
  bool refreshesViews = false;
};
Calls applied(const Application& application, const ViewerItems& items = itemsWithoutLetters);

// The simulation of a type, or the correction that a viewer item stands for.
Calls simulated(int type, const std::string& title,
                int viewerItem = itemsWithoutLetters.simulation);

// Any other built-in effect.
Calls otherEffect(const std::string& title,
                  int viewerItem = itemsWithoutLetters.otherColourEffects);

// The transform switched off.
Calls switchedOff();

// The check marks with which every application begins.
Calls marksCleared(const ViewerItems& items = itemsWithoutLetters);

Calls mainMark(int position, bool checked);
Calls algorithmMark(int position, bool checked);

Calls magnifierInvalidated();
Calls sourceSet(const std::string& source);

// Painting the control window and setting its title.
Calls painted(const std::string& controlText = "Hit Transparent, Press H to exit");

// Moving the colour space window beside the main window at its first place, and showing it.
Calls besideMain();
Calls shownBesideMain();

// Return the calls that create the colour space window's device with all its objects, that refresh
// what a transform changes, and that draw a frame.
Calls deviceCreated(int width, int height);
Calls viewsRefreshed();
Calls frameDrawn();

// Compares the calls of the last event, and expects those of the message loop after them.
void expectCalls(const Calls& expected);

// Returns the magnifier's source after every event, for the main window's present bounds.
std::string expectedSource();

std::string text(const platform::Rect& rect);

}  // namespace tintora
