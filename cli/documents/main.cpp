// Writes the tool's manual pages and completions into the folder that is its only argument.

#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>

#include "cli/documents/completions.h"
#include "cli/documents/declared_tool.h"
#include "cli/documents/manual_pages.h"

namespace {

void write(const std::filesystem::path& path, const std::string& contents) {
  std::ofstream file(path, std::ios::binary);
  file << contents << std::flush;
  if (!file) throw std::runtime_error(path.string() + ": cannot be written");
}

}  // namespace

int main(int argc, char** argv) {
  using namespace tintora::cli;
  if (argc != 2) return 2;
  const std::filesystem::path folder = argv[1];
  try {
    std::filesystem::create_directories(folder);
    const DeclaredTool tool = declaredTool();
    for (const ManualPage& page : manualPages(tool)) {
      write(folder / (page.name + ".1"), page.contents);
    }
    write(folder / "tintora-cli.bash", bashCompletion(tool));
    write(folder / "_tintora-cli", zshCompletion(tool));
    write(folder / "tintora-cli.fish", fishCompletion(tool));
  } catch (const std::exception& error) {
    std::cerr << "tintora_tool_documents: " << error.what() << '\n';
    return 1;
  }
  return 0;
}
