// Records or refuses those of the program's calls of the desktop that no window shows.
#pragma once

#include "magnifier_record.h"

namespace tintora::windows_test {

// From now on, redirects some of the program's calls of the desktop's libraries to the stand-in.
void watchCalls(MagnifierRecord& written);

}  // namespace tintora::windows_test
