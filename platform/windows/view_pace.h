// Draws the view once for each new picture of its monitor, and no more often.
#pragma once

namespace tintora::platform {

// Waits until the monitor's next picture is due. Returns false at once if a message other than a
// paint arrives first.
bool awaitNextPicture();

// Paints each window of this thread that needs it, once.
void paintWaitingWindows();

// Takes the pace from the monitor that the view is on. Call it when the view has moved.
void followMonitor();

// Reads the refresh rate again at the next picture, because the screen's settings have changed.
void forgetPace();

// Windows runs message loops of its own, for example while a menu is open or a window is dragged.
// Between these two calls, which may be nested, the view stays live in such a loop.
void beginModalLoop();
void endModalLoop();

// Draws the view's next picture in a modal loop. Call it for each pictureDue message.
void drawDuePicture();

// A private message, sent to the view's top-level window.
inline constexpr unsigned pictureDue = 0x8000;  // WM_APP

}  // namespace tintora::platform
