// The program's calls of the desktop that no window shows, written down or refused.
#pragma once

#include "magnifier_record.h"

namespace tintora::windows_test {

// From now on, passes some of the program's calls of the desktop's libraries through the stand-in.
void watchCalls(MagnifierRecord& record);

}  // namespace tintora::windows_test
