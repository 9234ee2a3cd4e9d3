// The process and the screen it runs on. Text is Windows-1252 throughout the program.
#pragma once

#include <string>

#include "platform/geometry.h"

namespace tintora::platform {

// Returns the path of the file that may hold the user's own transforms
// (engine/custom_transforms.h); relative paths start at the current directory.
std::string customTransformFile();

// What follows the program's own path on the command line, without the blanks between.
std::string programArguments();

// The size of the primary screen.
Size screenSize();

// Shows a page that stands beside the program in the user's web browser.
void openPageBesideProgram(const std::string& fileName);

}  // namespace tintora::platform
