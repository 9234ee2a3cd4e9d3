#include <windows.h>

#include "shell/main.h"

int WINAPI WinMain(HINSTANCE /*instance*/, HINSTANCE /*previous*/, LPSTR /*arguments*/,
                   int /*show*/) {
  // Libraries that Windows loads on the program's behalf come from the system folder too.
  SetDefaultDllDirectories(LOAD_LIBRARY_SEARCH_SYSTEM32);
  return tintora::runProgram();
}
