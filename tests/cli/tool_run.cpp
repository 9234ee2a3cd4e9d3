#include "tests/cli/tool_run.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>

#include "tests/cli/built_tool.h"

namespace tintora {

namespace {

constexpr int writeWhole = O_WRONLY | O_CREAT | O_TRUNC;

// Runs the tool with these three files and returns its status.
int runWith(const std::vector<std::string>& arguments, const std::string& in,
            const std::string& out, const std::string& err) {
  std::vector<std::string> words{toolPath};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<char*> argv;
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, in.c_str(), O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, out.c_str(), writeWhole, 0600);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, err.c_str(), writeWhole, 0600);
  pid_t child = 0;
  const int failure = posix_spawn(&child, toolPath, &actions, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (failure != 0) throw std::runtime_error("the tool does not start");

  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

}  // namespace

Words operator+(Words words, const Words& more) {
  words.insert(words.end(), more.begin(), more.end());
  return words;
}

void expectRefused(const ToolRun& run, int status, const std::string& mention) {
  EXPECT_EQ(run.status, status);
  EXPECT_EQ(run.output, "");
  EXPECT_EQ(linesOf(run.error).size(), 1U) << run.error;
  EXPECT_EQ(run.error.rfind("tintora-cli: ", 0), 0U) << run.error;
  EXPECT_NE(run.error.find(mention), std::string::npos) << run.error;
}

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

ToolRun runTool(const std::vector<std::string>& arguments, const std::string& input) {
  const TemporaryFolder folder;
  const std::string in = folder.write("in", input);
  const int status = runWith(arguments, in, folder / "out", folder / "err");
  return {status, readFile(folder / "out"), readFile(folder / "err")};
}

ToolRun runToolOnTerminal(const std::vector<std::string>& arguments, bool outputToo) {
  const TemporaryFolder folder;
  const int terminal = posix_openpt(O_RDWR | O_NOCTTY);
  if (terminal < 0 || grantpt(terminal) != 0 || unlockpt(terminal) != 0) {
    throw std::runtime_error("no terminal");
  }
  // Keep the terminal open, because closing it discards what the tool wrote.
  const std::string name = ptsname(terminal);
  const int screen = open(name.c_str(), O_RDWR | O_NOCTTY);
  const std::string out = outputToo ? name : (folder / "out").string();
  const int status = runWith(arguments, "/dev/null", out, name);
  // Output arrives piece by piece; a mark shows where it ends.
  const std::string mark("\x04", 1);
  std::string shown;
  bool arrives = write(screen, mark.data(), mark.size()) == 1;
  while (arrives && !shown.ends_with(mark)) {
    std::array<char, 4096> part;
    const ssize_t length = read(terminal, part.data(), part.size());
    arrives = length > 0;
    if (arrives) shown.append(part.data(), static_cast<std::size_t>(length));
  }
  if (shown.ends_with(mark)) shown.pop_back();
  close(screen);
  close(terminal);
  return {status, readFile(folder / "out"), shown};
}

TemporaryFolder::TemporaryFolder() {
  std::string name = std::filesystem::temp_directory_path() / "tintora-test-XXXXXX";
  if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
  path = name;
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path, ignored);
}

std::string TemporaryFolder::write(const std::string& name, const std::string& contents) const {
  std::ofstream(path / name, std::ios::binary) << contents;
  return path / name;
}

std::vector<std::string> TemporaryFolder::names() const {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(path)) {
    names.push_back(entry.path().filename());
  }
  std::sort(names.begin(), names.end());
  return names;
}

std::string readFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

}  // namespace tintora
