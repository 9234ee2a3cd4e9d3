// Where a build has its programs in C.
#pragma once

namespace tintora {

extern const char* const examplePath;
extern const char* const headerTestCommand;

}  // namespace tintora
