// The process and the screen it runs on. Text is Windows-1252 throughout the program.
#pragma once

#include <filesystem>
#include <string>

#include "platform/geometry.h"

namespace tintora::platform {

// Returns the path of the file that may hold the user's own transforms
// (engine/custom_transforms.h); relative paths start at the current directory.
std::filesystem::path customTransformFile();

// Returns the arguments as one string: the command line without the program's path.
std::string programArguments();

// Returns the size of the primary screen.
Size screenSize();

// Returns the scale of the primary screen, 1 at 96 dpi.
double screenScale();

// Opens a page that is installed with the program in the user's web browser.
void openPageBesideProgram(const std::string& fileName);

}  // namespace tintora::platform
