#include "process.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace tintora::desktop_test {

namespace {

void redirect(const std::string& path, int descriptor) {
  const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  dup2(file, descriptor);
  close(file);
}

[[noreturn]] void become(const Launch& launch) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  setsid();
  for (const auto& [name, value] : launch.environment) {
    if (value) {
      setenv(name.c_str(), value->c_str(), 1);
    } else {
      unsetenv(name.c_str());
    }
  }
  redirect(launch.output, STDOUT_FILENO);
  redirect(launch.errors, STDERR_FILENO);
  if (launch.inherited >= 0) fcntl(launch.inherited, F_SETFD, 0);
  std::vector<char*> arguments;
  for (const std::string& argument : launch.command) {
    arguments.push_back(const_cast<char*>(argument.c_str()));
  }
  arguments.push_back(nullptr);
  execvp(arguments[0], arguments.data());
  constexpr int notFound = 127;
  _exit(notFound);
}

// Returns the system's statistics of a process, starting with its state, which follows its name.
std::istringstream statisticsOf(pid_t process) {
  const std::string text = readFile("/proc/" + std::to_string(process) + "/stat");
  return std::istringstream(text.substr(text.rfind(')') + 1));
}

}  // namespace

Process::Process(const Launch& launch) : id_(fork()) {
  if (id_ < 0) throw std::runtime_error("No process could be started.");
  if (id_ == 0) become(launch);
}

Process::~Process() {
  if (!isRunning()) return;
  // A program that is killed does not write down which of its lines ran.
  if (std::getenv("TINTORA_COVERAGE") != nullptr) {
    signal(SIGTERM);
    signal(SIGCONT);
    if (result()) return;
  }
  // Ends the processes that it started, too.
  kill(-id_, SIGKILL);
  waitpid(id_, nullptr, 0);
}

bool Process::isRunning() {
  return !result(std::chrono::milliseconds{0});
}

void Process::signal(int number) const {
  if (!result_) kill(id_, number);
}

std::optional<int> Process::result(std::chrono::milliseconds most) {
  eventually(
      [this] {
        int status = 0;
        if (!result_ && waitpid(id_, &status, WNOHANG) == id_) {
          result_ = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
        }
        return result_.has_value();
      },
      most);
  return result_;
}

long Process::memory() const {
  std::ifstream file("/proc/" + std::to_string(id_) + "/statm");
  long pages = 0;
  long resident = 0;
  file >> pages >> resident;
  return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

bool Process::isWaiting() const {
  std::string state;
  statisticsOf(id_) >> state;
  return state == "S";
}

bool Process::rests(std::chrono::milliseconds whole, std::chrono::milliseconds most) const {
  const auto wakings = [&] {
    const std::string text = readFile("/proc/" + std::to_string(id_) + "/status");
    return text.substr(text.find("voluntary_ctxt_switches"));
  };
  std::string last = wakings();
  auto since = std::chrono::steady_clock::now();
  const auto hasRested = [&] {
    const std::string now = wakings();
    const bool woke = std::exchange(last, now) != now;
    if (woke || !isWaiting()) since = std::chrono::steady_clock::now();
    return std::chrono::steady_clock::now() - since > whole;
  };
  return eventually(hasRested, most);
}

double Process::processorSeconds() const {
  std::istringstream fields = statisticsOf(id_);
  constexpr int fieldsBefore = 11;
  std::string skipped;
  for (int i = 0; i < fieldsBefore; ++i) fields >> skipped;
  double user = 0;
  double system = 0;
  fields >> user >> system;
  return (user + system) / static_cast<double>(sysconf(_SC_CLK_TCK));
}

TemporaryFolder::TemporaryFolder() {
  path_ = (std::filesystem::temp_directory_path() / "tintora-desktop-XXXXXX").string();
  if (mkdtemp(path_.data()) == nullptr) throw std::runtime_error("No folder could be made.");
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::string readFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

void writeFile(const std::string& path, const std::string& text) {
  std::filesystem::create_directories(std::filesystem::path(path).parent_path());
  std::ofstream(path, std::ios::binary) << text;
}

}  // namespace tintora::desktop_test
