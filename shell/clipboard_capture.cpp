#include "shell/clipboard_capture.h"

#include "engine/apply_transform.h"
#include "platform/clipboard.h"
#include "platform/window.h"
#include "shell/shell_state.h"

namespace tintora {

namespace {

constexpr int confirmationMilliseconds = 3000;

}  // namespace

void copyToClipboard() {
  platform::Window* const window = shellState.mainWindow;
  // Hide the cursor and paint everything that is waiting, so that the copy shows neither.
  platform::showCursor(false);
  platform::handleWaitingEvents();
  platform::Picture* const picture = platform::captureClientArea(window);
  platform::putOnClipboard(window, picture);
  platform::deletePicture(picture);

  platform::setTitle(window, "Image Copied To Clipboard");
  stopTitleTimer();
  platform::startTimer(window, confirmationMilliseconds);
  shellState.titleTimerPending = true;
  platform::showCursor(true);
  platform::handleWaitingEvents();
}

void restoreTitle() {
  applyTransform();
  stopTitleTimer();
}

void stopTitleTimer() {
  if (!shellState.titleTimerPending) return;
  platform::stopTimer(shellState.mainWindow);
  shellState.titleTimerPending = false;
}

}  // namespace tintora
