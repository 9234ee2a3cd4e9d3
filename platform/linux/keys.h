// Translates the keys of an X11 keyboard to virtual-key codes.
#pragma once

class QKeyEvent;

namespace tintora::platform {

// Returns the virtual-key code of a key, or 0 if it has none.
int virtualKey(const QKeyEvent& event);

}  // namespace tintora::platform
