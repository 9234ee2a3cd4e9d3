#include "cli/tool.h"

int main(int argc, char** argv) {
  return tintora::cli::runTool(argc, argv);
}
