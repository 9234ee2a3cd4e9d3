// Copies the filtered image to the clipboard.
#pragma once

namespace tintora {

// Copies what the main window shows to the clipboard and says so in its title for three seconds.
void copyToClipboard();

// Puts the transform's title back and stops the title timer.
void restoreTitle();

// Stops the title timer if it is running.
void stopTitleTimer();

}  // namespace tintora
