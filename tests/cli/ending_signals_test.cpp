// What a signal that ends the tool leaves behind.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <string>
#include <thread>
#include <utility>

#include "tests/cli/built_tool.h"
#include "tests/cli/image_samples.h"
#include "tests/cli/tool_run.h"

namespace tintora {
namespace {

// The tool while it waits for the rest of a picture and has begun to write it.
class WaitingFilter {
 public:
  explicit WaitingFilter(const TemporaryFolder& folder) {
    std::array<int, 2> ends{};
    EXPECT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[0], STDIN_FILENO);
    std::string output = folder / "out.png";
    std::array<std::string, 6> words{toolPath, "filter", "--mode", "invert", "-", output};
    std::array<char*, 7> argv{};
    std::ranges::transform(words, argv.begin(), [](std::string& word) { return word.data(); });
    EXPECT_EQ(::posix_spawn(&process_, toolPath, &actions, nullptr, argv.data(), environ), 0);
    posix_spawn_file_actions_destroy(&actions);
    ::close(ends[0]);
    input_ = ends[1];
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    const auto hasBegun = [&] {
      return std::ranges::any_of(folder.names(),
                                 [](const auto& name) { return name.ends_with(".tmp"); });
    };
    while (!hasBegun() && std::chrono::steady_clock::now() < end) {
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    EXPECT_TRUE(hasBegun());
  }
  ~WaitingFilter() { ::close(input_); }
  WaitingFilter(const WaitingFilter&) = delete;
  WaitingFilter& operator=(const WaitingFilter&) = delete;

  void signal(int number) const { ::kill(process_, number); }
  void complete(const cli::Bytes& picture) {
    EXPECT_EQ(::write(input_, picture.data(), picture.size()),
              static_cast<ssize_t>(picture.size()));
    ::close(std::exchange(input_, -1));
  }
  // Returns the status that waitpid() gives.
  int result() const {
    int status = -1;
    EXPECT_EQ(::waitpid(process_, &status, 0), process_);
    return status;
  }

 private:
  pid_t process_ = 0;
  int input_ = -1;
};

TEST(EndingSignals, LeaveNoTemporaryFile) {
  for (const int number : {SIGHUP, SIGINT, SIGTERM}) {
    const TemporaryFolder folder;
    static_cast<void>(folder.write("out.png", "old"));
    // It is ignored where a script runs the tests in the background.
    const auto before = std::signal(number, SIG_DFL);
    const WaitingFilter filter(folder);
    static_cast<void>(std::signal(number, before));
    filter.signal(number);
    const int status = filter.result();
    EXPECT_TRUE(WIFSIGNALED(status)) << number;
    EXPECT_EQ(WTERMSIG(status), number);
    EXPECT_EQ(folder.names(), Words{"out.png"});
    EXPECT_EQ(readFile(folder / "out.png"), "old");
  }
}

TEST(EndingSignals, StayIgnoredWhereTheyWere) {
  const TemporaryFolder folder;
  const auto before = std::signal(SIGHUP, SIG_IGN);
  WaitingFilter filter(folder);
  static_cast<void>(std::signal(SIGHUP, before));
  filter.signal(SIGHUP);
  filter.complete(cli::encodeImage(cli::smoothImage(9, 9), cli::ImageFormat::Png));
  const int status = filter.result();
  EXPECT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 0);
  EXPECT_EQ(folder.names(), Words{"out.png"});
}

}  // namespace
}  // namespace tintora
