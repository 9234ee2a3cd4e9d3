// Facts of the process that only this desktop's own files need.
#pragma once

#include <QString>

namespace tintora::platform {

// Remembers the arguments as they were given, the program's name first.
void setArguments(int count, char** given);

// Returns the folder of the user's files.
QString configFolder();

}  // namespace tintora::platform
