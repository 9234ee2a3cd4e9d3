// The tool as a whole.
#pragma once

namespace tintora::cli {

// Does what a command line asks for. Returns the exit status, by exit_status.h. What failed is one
// line on standard error.
int runTool(int argc, const char* const* argv);

}  // namespace tintora::cli
