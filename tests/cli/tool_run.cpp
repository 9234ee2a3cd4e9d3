#include "tests/cli/tool_run.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace tintora {

ToolRun runTool(const std::vector<std::string>& arguments, const std::string& input) {
  const TemporaryFolder folder;
  const std::string in = folder.write("in", input);
  const std::string out = folder / "out";
  const std::string err = folder / "err";

  std::vector<std::string> words{TINTORA_CLI};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<char*> argv;
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, in.c_str(), O_RDONLY, 0);
  constexpr int write = O_WRONLY | O_CREAT | O_TRUNC;
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, out.c_str(), write, 0600);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, err.c_str(), write, 0600);
  pid_t child = 0;
  const int failure = posix_spawn(&child, TINTORA_CLI, &actions, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (failure != 0) throw std::runtime_error("the tool does not start");

  int status = 0;
  waitpid(child, &status, 0);
  return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status), readFile(out),
          readFile(err)};
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
