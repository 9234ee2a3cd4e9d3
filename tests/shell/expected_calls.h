// The calls that belong together, as lists to compare with what the desktop was asked.
#pragma once

#include <initializer_list>
#include <string>

#include "platform/geometry.h"
#include "program_run.h"

namespace tintora {

Calls joined(std::initializer_list<Calls> lists);

// Where the items marked by the engine stand in the main menu.
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

// One application of the settings in force, with the menus of a run that had no letters.
struct Application {
  std::string title;
  int viewerItem;
  int typeItem = 0;  // none
  int algorithmItem = 1;
  bool refreshesViews = false;
};
Calls applied(const Application& application, const ViewerItems& items = itemsWithoutLetters);

// A simulation of a type seen as one of the viewer items says.
Calls simulated(int type, const std::string& title,
                int viewerItem = itemsWithoutLetters.simulation);

// Any other built-in effect.
Calls otherEffect(const std::string& title,
                  int viewerItem = itemsWithoutLetters.otherColourEffects);

// The transform switched off.
Calls switchedOff();

// The check marks alone that come first in every application.
Calls marksCleared(const ViewerItems& items = itemsWithoutLetters);

Calls mainMark(int position, bool checked);
Calls algorithmMark(int position, bool checked);

Calls magnifierInvalidated();
Calls sourceSet(const std::string& source);

// The control window painted and named.
Calls painted(const std::string& controlText = "Hit Transparent, Press H to exit");

// The colour space window moved beside the main window as it stands at the start, and shown.
Calls besideMain();
Calls shownBesideMain();

// Compares the calls of the last event, and that those of the message loop follow.
void expectCalls(const Calls& expected);

// The filtered picture's source after every event, for the main window as it now stands.
std::string expectedSource();

std::string text(const platform::Rect& rect);

}  // namespace tintora
