// A live, filtered mirror of a window or screen that the user picks. For desktops where no program
// may see what lies beneath its window.
#pragma once

namespace tintora::platform {

// Makes the mirror the view's source. With `askAnew`, asks the user even if an earlier choice is
// remembered.
void useMirror(bool askAnew);

}  // namespace tintora::platform
