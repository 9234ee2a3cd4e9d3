// The program from start to end.
#pragma once

namespace tintora {

// Starts up, handles events until the user leaves, saves the settings and shuts down. Returns the
// exit status, which is 0 even if the desktop lacks what the program needs.
int runProgram();

}  // namespace tintora
