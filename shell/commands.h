// The user's commands, whether they come by key or from the menu.
#pragma once

#include "engine/transform_settings.h"

namespace tintora {

// Applies the transform that is chosen, a custom one without touching the check marks.
void applyCurrentTransform();

// Runs a menu command. Unknown ones are ignored.
void runCommand(int command);

// Runs what a key stands for.
void runKey(int key);

// One step up or down of the value that the mode has: severity for most.
void stepValue(bool up);

}  // namespace tintora
