// Interferes with the program's graphics devices.
#pragma once

namespace tintora::windows_test {

// From now on, every Direct3D device of the program is lost: it shows nothing and reports the loss.
void loseDevices();

}  // namespace tintora::windows_test
