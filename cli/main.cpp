#include "cli/ending_signals.h"
#include "cli/tool.h"

int main(int argc, char** argv) {
  tintora::cli::removeTemporaryFilesAtSignals();
  return tintora::cli::runTool(argc, argv);
}
