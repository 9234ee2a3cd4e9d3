// The settings file that a process leaves if it is killed while it saves. Starting the whole
// program for each kill would take minutes.
#include "platform/value_store.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace tintora {
namespace {

namespace fs = std::filesystem;
using Values = std::map<std::string, std::uint32_t>;
using Lines = std::map<std::string, std::string>;

// The two files differ in every line and in length.
const Values oneSet{{"Selected", 1},  {"ScrollPc", 100}, {"Filter", 100},
                    {"Swap", 200},    {"Option", 0},     {"Inversion", 0},
                    {"Daltonize", 0}, {"ColorSpace", 1}, {"View", 705}};
const Values otherSet{{"Selected", 12}, {"ScrollPc", 35},  {"Filter", 104},
                      {"Swap", 203},    {"Option", 3},     {"Inversion", 4294967295},
                      {"Daltonize", 1}, {"ColorSpace", 0}, {"View", 702}};

void save(const Values& values) {
  std::vector<platform::StoredValue> stored;
  for (const auto& [name, value] : values) stored.push_back({name, value});
  platform::writeValues(stored);
}

Lines linesOf(const Values& values) {
  Lines lines{{"[General]", ""}};
  for (const auto& [name, value] : values) lines[name] = std::to_string(value);
  return lines;
}

// A process that saves one set and the other in turn until it is killed.
class Saver {
 public:
  Saver() {
    std::array<int, 2> ends{};
    EXPECT_EQ(pipe(ends.data()), 0);
    id_ = fork();
    if (id_ == 0) {
      prctl(PR_SET_PDEATHSIG, SIGKILL);
      save(oneSet);
      if (write(ends[1], "", 1) != 1) _exit(1);
      for (;;) {
        save(otherSet);
        save(oneSet);
      }
    }
    close(ends[1]);
    news_ = ends[0];
  }
  ~Saver() {
    kill(id_, SIGKILL);
    waitpid(id_, nullptr, 0);
    close(news_);
  }
  Saver(const Saver&) = delete;
  Saver& operator=(const Saver&) = delete;

  // Waits until the process has saved once. Returns false if it does not.
  bool hasSaved() const {
    constexpr int conditionTimeout = 20000;  // milliseconds
    pollfd waiting{.fd = news_, .events = POLLIN, .revents = 0};
    return poll(&waiting, 1, conditionTimeout) == 1 && (waiting.revents & POLLIN) != 0;
  }

 private:
  pid_t id_ = 0;
  int news_ = 0;
};

class ValueStore : public testing::Test {
 protected:
  void SetUp() override {
    std::string path = (fs::temp_directory_path() / "tintora-store-XXXXXX").string();
    folder_ = mkdtemp(path.data());
    setenv("XDG_CONFIG_HOME", folder_.c_str(), 1);
  }
  void TearDown() override { fs::remove_all(folder_); }
  // Returns the lines of the file by what comes before the equals sign.
  Lines stored() const {
    Lines lines;
    std::ifstream file(folder_ / "tintora/settings.ini");
    for (std::string line; std::getline(file, line);) {
      const std::size_t sign = line.find('=');
      lines[line.substr(0, sign)] = sign == std::string::npos ? "" : line.substr(sign + 1);
    }
    return lines;
  }

  // Qt's lock, which a writer leaves if it is killed at work.
  fs::path lock() const { return folder_ / "tintora/settings.ini.lock"; }

 private:
  fs::path folder_;
};

TEST_F(ValueStore, IsWholeWheneverItsWriterIsKilled) {
  constexpr int kills = 200;
  const Lines one = linesOf(oneSet);
  const Lines other = linesOf(otherSet);
  std::mt19937 moments{std::random_device()()};
  int ones = 0;
  int others = 0;
  int killedAtWork = 0;
  for (int i = 0; i < kills; ++i) {
    {
      const auto begin = std::chrono::steady_clock::now();
      const Saver saver;
      ASSERT_TRUE(saver.hasSaved()) << "after " << i << " kills";
      const auto oneSave = std::chrono::steady_clock::now() - begin;
      std::this_thread::sleep_for(oneSave * std::uniform_real_distribution(0.0, 2.0)(moments));
    }
    const Lines lines = stored();
    ASSERT_TRUE(lines == one || lines == other) << testing::PrintToString(lines);
    ++(lines == one ? ones : others);
    if (fs::exists(lock())) ++killedAtWork;
  }
  EXPECT_GT(ones, 0);
  EXPECT_GT(others, 0);
  EXPECT_GT(killedAtWork, 0);
  save(otherSet);
  EXPECT_EQ(stored(), other);
}

// A lock without content belongs to a writer that was killed as soon as it had made the lock.
TEST_F(ValueStore, WaitsForNoLock) {
  fs::create_directories(lock().parent_path());
  std::ofstream(lock()).close();
  const Saver saver;
  EXPECT_TRUE(saver.hasSaved());
}

}  // namespace
}  // namespace tintora
