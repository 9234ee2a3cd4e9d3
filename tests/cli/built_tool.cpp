#include "tests/cli/built_tool.h"

namespace tintora {

const char* const toolPath = TINTORA_CLI;
const char* const toolDocumentsFolder = TINTORA_TOOL_DOCUMENTS;

}  // namespace tintora
