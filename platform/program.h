// The process and the screen it runs on. Text is Windows-1252 throughout the program.
#pragma once

#include <string>

#include "platform/geometry.h"

namespace tintora::platform {

// The whole command line as the desktop gives it, the program's own path first.
std::string commandLine();

// What follows the program's own path on the command line, without the blanks between.
std::string programArguments();

// The size of the primary screen.
Size screenSize();

// Shows a page that stands beside the program in the user's web browser.
void openPageBesideProgram(const std::string& fileName);

}  // namespace tintora::platform
