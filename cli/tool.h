// The tool as a whole.
#pragma once

namespace tintora::cli {

// Does what a command line asks for. Returns the exit status: 0, 1 if a command failed, 2 if the
// command line is wrong; what failed is one line on standard error.
int runTool(int argc, const char* const* argv);

}  // namespace tintora::cli
