// A live, filtered mirror of a window or screen that the user picks, for desktops where no program
// may see what lies beneath its window.
#pragma once

namespace tintora::platform {

// Makes the mirror the view's source. Asks the user even if a former choice is remembered, if told
// so.
void useMirror(bool askAnew);

}  // namespace tintora::platform
