#include <windows.h>

#include "shell/main.h"

int WINAPI WinMain(HINSTANCE /*instance*/, HINSTANCE /*previous*/, LPSTR /*arguments*/,
                   int /*show*/) {
  // Whatever the desktop loads on the program's behalf comes from its own folder too.
  SetDefaultDllDirectories(LOAD_LIBRARY_SEARCH_SYSTEM32);
  return tintora::runProgram();
}
