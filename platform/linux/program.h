// What only this desktop's own rooms ask of the process.
#pragma once

#include <QString>

namespace tintora::platform {

// Remembers the arguments as they were given, the program's name first.
void setArguments(int count, char** given);

// Where the user's files of this program are kept.
QString configFolder();

}  // namespace tintora::platform
