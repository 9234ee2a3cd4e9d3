// Runs the real command-line tool.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace tintora {

using Words = std::vector<std::string>;

// Joins arguments.
Words operator+(Words words, const Words& more);

struct ToolRun {
  int status = -1;  // exit status; 128 and the signal where a signal ended it
  std::string output;
  std::string error;
};

ToolRun runTool(const Words& arguments, const std::string& input = "");

// Expects a status, nothing on standard output, and one line on standard error that mentions a
// text.
void expectRefused(const ToolRun& run, int status, const std::string& mention);

std::vector<std::string> linesOf(const std::string& text);

// Runs the tool with a terminal as standard error and, if asked for, as standard output.
ToolRun runToolOnTerminal(const Words& arguments, bool outputToo = false);

// A folder of its own for each test, removed at its end.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  std::filesystem::path operator/(const std::string& name) const { return path / name; }
  std::string write(const std::string& name, const std::string& contents) const;
  std::vector<std::string> names() const;  // sorted

  std::filesystem::path path;
};

std::string readFile(const std::filesystem::path& path);

}  // namespace tintora
