// Facts about the process that only the Linux files need.
#pragma once

#include <QString>

namespace tintora::platform {

// Stores the arguments, the program's name first.
void setArguments(int count, char** given);

// Returns the folder for the user's files.
QString configFolder();

}  // namespace tintora::platform
