// Draws the view once for each new picture of the screen, and no more often.
#pragma once

namespace tintora::platform {

// Waits until the screen's next picture is due. Returns false at once if a message other than a
// paint arrives first.
bool awaitNextPicture();

// Paints each window of this thread that needs it, once.
void paintWaitingWindows();

// Measures the refresh rate again at the next picture, because the screen's settings have changed.
void forgetPace();

// Windows runs its own message loop while a menu is open or a window is dragged. Between these two
// calls, a timer draws the view in that loop.
void beginModalLoop();
void endModalLoop();

}  // namespace tintora::platform
