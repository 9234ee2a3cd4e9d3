// Programs that a test starts. They never outlive the test.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace tintora::desktop_test {

// The limit for anything that should happen at once. A busy machine may take seconds; a test waits
// this long only if it fails.
inline constexpr std::chrono::milliseconds conditionTimeout{20000};

// Returns true if a condition becomes true in time.
template <typename Condition>
bool eventually(Condition condition, std::chrono::milliseconds most = conditionTimeout) {
  constexpr std::chrono::milliseconds pause{4};
  const auto end = std::chrono::steady_clock::now() + most;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) return false;
    std::this_thread::sleep_for(pause);
  }
  return true;
}

struct Launch {
  std::vector<std::string> command;
  // Differences from the test's own environment. A variable without a value is removed.
  std::map<std::string, std::optional<std::string>> environment = {};
  std::string output = "/dev/null";
  std::string errors = "/dev/null";
  int inherited = -1;  // a file descriptor that the program inherits
};

class Process {
 public:
  explicit Process(const Launch& launch);
  ~Process();
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;

  pid_t id() const { return id_; }
  bool isRunning();
  void signal(int number) const;
  // Returns its exit status, or the negative number of the signal that ended it; nothing if it
  // still runs.
  std::optional<int> result(std::chrono::milliseconds most = conditionTimeout);
  // Returns the memory in use, in kilobytes.
  long memory() const;
  // Returns true if its first thread is waiting for an event.
  bool isWaiting() const;
  // Returns true once its first thread has waited that long without a pause.
  bool rests(std::chrono::milliseconds whole,
             std::chrono::milliseconds most = conditionTimeout) const;
  // Returns the processor time used, in seconds.
  double processorSeconds() const;

 private:
  pid_t id_;
  std::optional<int> result_;
};

// A folder that is removed with the object.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

std::string readFile(const std::string& path);
void writeFile(const std::string& path, const std::string& text);

}  // namespace tintora::desktop_test
