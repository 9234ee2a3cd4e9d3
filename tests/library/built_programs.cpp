#include "tests/library/built_programs.h"

namespace tintora {

const char* const examplePath = TINTORA_EXAMPLE;
const char* const headerTestCommand = TINTORA_C_PROGRAM;

}  // namespace tintora
