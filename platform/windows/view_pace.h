// How often the view is drawn: as often as the screen shows a new picture, and no more.
#pragma once

namespace tintora::platform {

// Waits until the screen's next picture is due; returns false as soon as a message other than a
// paint arrives before that.
bool awaitNextPicture();

// Paints once each window of this thread that waits for it.
void paintWaitingWindows();

// From now on, measures the screen's pace anew: its settings have changed.
void forgetPace();

// While a menu is open or a window is dragged, Windows runs a loop of its own, in which the program
// gets no turn. Between these two calls, draws the view at the screen's pace all the same.
void beginModalLoop();
void endModalLoop();

}  // namespace tintora::platform
