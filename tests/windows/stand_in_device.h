// Interferes with the program's graphics devices.
#pragma once

namespace tintora::windows_test {

// From now on, each Direct3D device of the program is lost when it shows a picture. A lost device
// shows nothing and reports the loss.
void loseDevices();

// From now on, no more devices are lost. Those that are stay so.
void keepDevices();

}  // namespace tintora::windows_test
