// The item that the user has chosen from a menu stays on the screen for a moment and fades.
#pragma once

namespace tintora::platform {

// Waits until the item last chosen is gone, and draws the view meanwhile.
void awaitMenuFade();

}  // namespace tintora::platform
