// A copy of the filtered image on the clipboard.
#pragma once

namespace tintora {

// Copies what the main window shows to the clipboard and says so in its title for three seconds.
void copyToClipboard();

// Ends those three seconds: the title names the transform again.
void restoreTitle();

// Lets a pending title timer go.
void stopTitleTimer();

}  // namespace tintora
