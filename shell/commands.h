// The user's commands, whether they come by key or from the menu.
#pragma once

#include "engine/transform_settings.h"

namespace tintora {

// Applies the chosen transform. A custom transform leaves the check marks as they are.
void applyCurrentTransform();

// Runs a menu command. Unknown ones are ignored.
void runCommand(int command);

// Runs the action of a key. Keys without one are ignored.
void runKey(int key);

// Moves the value of the mode one step up or down: severity for most modes.
void stepValue(bool up);

}  // namespace tintora
