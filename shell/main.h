// The program from start to end.
#pragma once

namespace tintora {

// Starts up, handles events until the user leaves, saves the settings and shuts down. Returns what
// the process returns: 0 also where the desktop lacks what the program needs.
int runProgram();

}  // namespace tintora
