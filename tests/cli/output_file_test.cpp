#include "cli/output_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace tintora::cli {
namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<std::uint8_t>;

constexpr std::uint64_t noLimit = std::numeric_limits<std::uint32_t>::max();

Bytes bytesOf(std::string_view text) {
  return {text.begin(), text.end()};
}

// So many that no pipe takes them at once.
Bytes manyBytes() {
  Bytes bytes(3000001);
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<std::uint8_t>(i % 251);
  return bytes;
}

Bytes contentsOf(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void put(const fs::path& path, const Bytes& bytes) {
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
}

std::optional<std::string> failureOf(const std::function<void()>& action) {
  try {
    action();
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return std::nullopt;
}

std::optional<std::string> failureToWrite(const fs::path& target, const Bytes& contents) {
  return failureOf([&] { writeFileWhole(target, contents); });
}

mode_t permissionsOf(const fs::path& path) {
  struct stat status {};
  EXPECT_EQ(::stat(path.c_str(), &status), 0);
  return status.st_mode & 07777;
}

// What another process finds, as a number: its limits, its user and its descriptors are its own.
int resultInChild(const std::function<int()>& action) {
  const pid_t child = ::fork();
  if (child == 0) {
    int result = 99;
    try {
      result = action();
    } catch (...) {
    }
    ::_exit(result);
  }
  int status = 0;
  EXPECT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFEXITED(status)) << "ended by signal " << WTERMSIG(status);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// The superuser may do what the tests expect to be forbidden.
void becomeOrdinaryUser() {
  constexpr uid_t nobody = 65534;
  if (::geteuid() == 0 && (::setgid(nobody) != 0 || ::setuid(nobody) != 0)) ::_exit(98);
}

class FileTest : public testing::Test {
 protected:
  fs::path directory;

  void SetUp() override {
    std::string name = (fs::temp_directory_path() / "tintora-test-XXXXXX").string();
    ASSERT_NE(::mkdtemp(name.data()), nullptr);
    directory = name;
  }
  void TearDown() override {
    fs::permissions(directory, fs::perms::owner_all);
    fs::remove_all(directory);
  }

  std::vector<std::string> names() const {
    std::vector<std::string> found;
    for (const auto& entry : fs::directory_iterator(directory)) {
      found.push_back(entry.path().filename().string());
    }
    std::sort(found.begin(), found.end());
    return found;
  }
};

using Names = std::vector<std::string>;

// ---- writeFileWhole

class WriteFileWhole : public FileTest {};

TEST_F(WriteFileWhole, MakesAFileOfTheContentsAndNothingElse) {
  writeFileWhole(directory / "new.png", manyBytes());
  EXPECT_EQ(contentsOf(directory / "new.png"), manyBytes());
  EXPECT_EQ(names(), Names{"new.png"});
}

TEST_F(WriteFileWhole, MakesAnEmptyFileOfNoContents) {
  writeFileWhole(directory / "new.png", {});
  EXPECT_EQ(fs::file_size(directory / "new.png"), 0U);
}

TEST_F(WriteFileWhole, ReplacesALongerFile) {
  put(directory / "old.png", manyBytes());
  writeFileWhole(directory / "old.png", bytesOf("short"));
  EXPECT_EQ(contentsOf(directory / "old.png"), bytesOf("short"));
  EXPECT_EQ(names(), Names{"old.png"});
}

TEST_F(WriteFileWhole, LeavesTheOldContentsToWhoHasThemOpen) {
  put(directory / "old.png", bytesOf("old contents"));
  std::ifstream reader(directory / "old.png", std::ios::binary);
  writeFileWhole(directory / "old.png", bytesOf("new"));
  const Bytes seen{std::istreambuf_iterator<char>(reader), std::istreambuf_iterator<char>()};
  EXPECT_EQ(seen, bytesOf("old contents"));
}

TEST_F(WriteFileWhole, TakesANameWithoutADirectoryAsInTheCurrentOne) {
  EXPECT_EQ(resultInChild([&] {
              fs::current_path(directory);
              writeFileWhole("here.png", bytesOf("contents"));
              return 0;
            }),
            0);
  EXPECT_EQ(contentsOf(directory / "here.png"), bytesOf("contents"));
}

TEST_F(WriteFileWhole, TakesTheLongestNameOfAFile) {
  const std::string name(255, 'n');
  writeFileWhole(directory / name, bytesOf("contents"));
  EXPECT_EQ(names(), Names{name});
}

TEST_F(WriteFileWhole, GivesANewFileThePermissionsThatTheMaskLeaves) {
  for (const mode_t mask : {0022U, 0077U, 0002U}) {
    const fs::path target = directory / std::to_string(mask);
    EXPECT_EQ(resultInChild([&] {
                ::umask(mask);
                writeFileWhole(target, bytesOf("contents"));
                return 0;
              }),
              0);
    EXPECT_EQ(permissionsOf(target), 0666U & ~mask);
  }
}

TEST_F(WriteFileWhole, KeepsThePermissionsOfAReplacedFile) {
  for (const mode_t mode : {0600U, 0666U, 0755U, 0640U}) {
    put(directory / "old.png", bytesOf("old"));
    ASSERT_EQ(::chmod((directory / "old.png").c_str(), mode), 0);
    writeFileWhole(directory / "old.png", bytesOf("new"));
    EXPECT_EQ(permissionsOf(directory / "old.png"), mode);
  }
}

TEST_F(WriteFileWhole, LetsTheSuperuserReplaceAFileWithoutTakingItOver) {
  if (::geteuid() != 0) GTEST_SKIP() << "for the superuser only";
  put(directory / "old.png", bytesOf("old"));
  ASSERT_EQ(::chown((directory / "old.png").c_str(), 1234, 4321), 0);
  writeFileWhole(directory / "old.png", bytesOf("new"));
  struct stat status {};
  ASSERT_EQ(::stat((directory / "old.png").c_str(), &status), 0);
  EXPECT_EQ(status.st_uid, 1234U);
  EXPECT_EQ(status.st_gid, 4321U);
}

TEST_F(WriteFileWhole, DoesNotGiveAnotherGroupWhatTheGroupOfTheFileHad) {
  if (::geteuid() != 0) GTEST_SKIP() << "needs a file of another user";
  ASSERT_EQ(::chmod(directory.c_str(), 0777), 0);
  put(directory / "old.png", bytesOf("old"));
  ASSERT_EQ(::chown((directory / "old.png").c_str(), 1234, 4321), 0);
  ASSERT_EQ(::chmod((directory / "old.png").c_str(), 0666), 0);
  const auto replace = [&] {
    becomeOrdinaryUser();
    writeFileWhole(directory / "old.png", bytesOf("new"));
    return 0;
  };
  EXPECT_EQ(resultInChild(replace), 0);
  EXPECT_EQ(permissionsOf(directory / "old.png"), 0666U);

  // Others may write and not read, so that the new group may not read either.
  ASSERT_EQ(::chown((directory / "old.png").c_str(), 1234, 4321), 0);
  ASSERT_EQ(::chmod((directory / "old.png").c_str(), 0662), 0);
  EXPECT_EQ(resultInChild(replace), 0);
  EXPECT_EQ(permissionsOf(directory / "old.png"), 0622U);
}

TEST_F(WriteFileWhole, WritesThroughALinkToAFile) {
  fs::create_directory(directory / "there");
  put(directory / "there" / "file.png", bytesOf("old"));
  fs::create_symlink("there/file.png", directory / "relative");
  fs::create_symlink(directory / "relative", directory / "absolute");
  writeFileWhole(directory / "absolute", bytesOf("new"));
  EXPECT_EQ(contentsOf(directory / "there" / "file.png"), bytesOf("new"));
  EXPECT_TRUE(fs::is_symlink(directory / "absolute"));
  EXPECT_TRUE(fs::is_symlink(directory / "relative"));
  EXPECT_EQ(names(), (Names{"absolute", "relative", "there"}));
}

TEST_F(WriteFileWhole, MakesTheFileThatALinkLeadsTo) {
  fs::create_directory(directory / "there");
  fs::create_symlink("there/file.png", directory / "link");
  writeFileWhole(directory / "link", bytesOf("new"));
  EXPECT_TRUE(fs::is_symlink(directory / "link"));
  EXPECT_EQ(contentsOf(directory / "there" / "file.png"), bytesOf("new"));
}

TEST_F(WriteFileWhole, RefusesLinksThatLeadInACircle) {
  fs::create_symlink("b", directory / "a");
  fs::create_symlink("a", directory / "b");
  EXPECT_EQ(failureToWrite(directory / "a", bytesOf("new")),
            "cannot write " + (directory / "a").string() + ": Too many levels of symbolic links");
}

TEST_F(WriteFileWhole, WritesStraightIntoAPipe) {
  const fs::path pipe = directory / "pipe";
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  Bytes received;
  std::thread reader([&] { received = contentsOf(pipe); });
  writeFileWhole(pipe, manyBytes());
  reader.join();
  EXPECT_EQ(received, manyBytes());
  EXPECT_TRUE(fs::is_fifo(pipe));
  EXPECT_EQ(names(), Names{"pipe"});
}

TEST_F(WriteFileWhole, TellsThatADeviceIsFull) {
  EXPECT_EQ(failureToWrite("/dev/full", bytesOf("new")),
            "cannot write /dev/full: No space left on device");
}

TEST_F(WriteFileWhole, GoesOnWhereStandardOutputStands) {
  put(directory / "log", bytesOf("before "));
  EXPECT_EQ(resultInChild([&] {
              const int log = ::open((directory / "log").c_str(), O_WRONLY | O_APPEND);
              ::dup2(log, STDOUT_FILENO);
              writeFileWhole("/dev/stdout", bytesOf("contents"));
              return 0;
            }),
            0);
  EXPECT_EQ(contentsOf(directory / "log"), bytesOf("before contents"));
  EXPECT_EQ(names(), Names{"log"});
}

TEST_F(WriteFileWhole, RefusesADirectory) {
  fs::create_directory(directory / "there");
  EXPECT_EQ(failureToWrite(directory / "there", bytesOf("new")),
            "cannot write " + (directory / "there").string() + ": Is a directory");
  EXPECT_TRUE(fs::is_directory(directory / "there"));
  EXPECT_EQ(names(), Names{"there"});
}

TEST_F(WriteFileWhole, TellsThatTheDirectoryIsMissing) {
  const fs::path target = directory / "missing" / "new.png";
  EXPECT_EQ(failureToWrite(target, bytesOf("new")),
            "cannot write " + target.string() +
                ": no file can be made beside it: No such file or directory");
  put(directory / "file", {});
  EXPECT_EQ(failureToWrite(directory / "file" / "new.png", bytesOf("new")),
            "cannot write " + (directory / "file" / "new.png").string() + ": Not a directory");
  EXPECT_TRUE(failureToWrite("", bytesOf("new")).has_value());
}

TEST_F(WriteFileWhole, LeavesAllAsItWasInADirectoryWithoutLeaveToWrite) {
  put(directory / "old.png", bytesOf("old"));
  ASSERT_EQ(::chmod((directory / "old.png").c_str(), 0666), 0);
  ASSERT_EQ(::chmod(directory.c_str(), 0555), 0);
  for (const char* const name : {"old.png", "new.png"}) {
    const fs::path target = directory / name;
    EXPECT_EQ(resultInChild([&] {
                becomeOrdinaryUser();
                return failureToWrite(target, bytesOf("new")) ==
                               "cannot write " + target.string() +
                                   ": no file can be made beside it: Permission denied"
                           ? 0
                           : 1;
              }),
              0);
  }
  EXPECT_EQ(names(), Names{"old.png"});
  EXPECT_EQ(contentsOf(directory / "old.png"), bytesOf("old"));
}

TEST_F(WriteFileWhole, LeavesAWriteProtectedFileAlone) {
  ASSERT_EQ(::chmod(directory.c_str(), 0777), 0);
  put(directory / "old.png", bytesOf("old"));
  ASSERT_EQ(::chmod((directory / "old.png").c_str(), 0444), 0);
  EXPECT_EQ(resultInChild([&] {
              becomeOrdinaryUser();
              return failureToWrite(directory / "old.png", bytesOf("new")) ==
                             "cannot write " + (directory / "old.png").string() +
                                 ": Permission denied"
                         ? 0
                         : 1;
            }),
            0);
  EXPECT_EQ(contentsOf(directory / "old.png"), bytesOf("old"));
  EXPECT_EQ(names(), Names{"old.png"});
}

TEST_F(WriteFileWhole, LeavesAllAsItWasWhenThereIsNoRoomForTheContents) {
  put(directory / "old.png", bytesOf("old"));
  for (const char* const name : {"old.png", "new.png"}) {
    const fs::path target = directory / name;
    EXPECT_EQ(resultInChild([&] {
                const rlimit limit{100000, 100000};
                ::setrlimit(RLIMIT_FSIZE, &limit);
                return failureToWrite(target, manyBytes()) ==
                               "cannot write " + target.string() + ": File too large"
                           ? 0
                           : 1;
              }),
              0);
  }
  EXPECT_EQ(names(), Names{"old.png"});
  EXPECT_EQ(contentsOf(directory / "old.png"), bytesOf("old"));
}

TEST_F(WriteFileWhole, LeavesAllAsItWasWhenTheFileMayNotBeReplaced) {
  if (::geteuid() != 0) GTEST_SKIP() << "needs a file of another user";
  // In a directory like this only the owner of a file may put another one in its place.
  ASSERT_EQ(::chmod(directory.c_str(), 01777), 0);
  put(directory / "old.png", bytesOf("old"));
  ASSERT_EQ(::chown((directory / "old.png").c_str(), 1234, 4321), 0);
  ASSERT_EQ(::chmod((directory / "old.png").c_str(), 0666), 0);
  EXPECT_EQ(resultInChild([&] {
              becomeOrdinaryUser();
              return failureToWrite(directory / "old.png", bytesOf("new")) ==
                             "cannot write " + (directory / "old.png").string() +
                                 ": Operation not permitted"
                         ? 0
                         : 1;
            }),
            0);
  EXPECT_EQ(contentsOf(directory / "old.png"), bytesOf("old"));
  EXPECT_EQ(names(), Names{"old.png"});
}

TEST_F(WriteFileWhole, RefusesTheNameOfADirectoryThatIsMissing) {
  const std::string target = (directory / "new.png").string() + "/";
  EXPECT_TRUE(failureToWrite(target, bytesOf("new")).has_value());
  EXPECT_EQ(names(), Names{});
}

// ---- writeStandardOutput

// Runs the action with standard output into a pipe, in another process; returns its result and what
// came out of the pipe.
struct PipedRun {
  int result;
  Bytes output;
};

PipedRun runPiped(const std::function<int()>& action, int flags = 0) {
  std::array<int, 2> ends{};
  EXPECT_EQ(::pipe2(ends.data(), flags), 0);
  PipedRun run{-1, {}};
  std::thread reader([&] {
    // The writer is to find the pipe full at first.
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    std::array<std::uint8_t, 5000> buffer{};
    ssize_t count = 0;
    while ((count = ::read(ends[0], buffer.data(), buffer.size())) != 0) {
      if (count > 0) run.output.insert(run.output.end(), buffer.begin(), buffer.begin() + count);
    }
  });
  run.result = resultInChild([&] {
    ::dup2(ends[1], STDOUT_FILENO);
    ::close(ends[0]);
    ::close(ends[1]);
    return action();
  });
  ::close(ends[1]);
  reader.join();
  ::close(ends[0]);
  return run;
}

int resultOfWritingTo(int descriptor, const std::string& expectedFailure) {
  return resultInChild([&] {
    ::dup2(descriptor, STDOUT_FILENO);
    return failureOf([] { writeStandardOutput(manyBytes()); }) == expectedFailure ? 0 : 1;
  });
}

TEST(WriteStandardOutput, WritesAllInAsManyStepsAsItTakes) {
  const PipedRun run = runPiped([] {
    writeStandardOutput(manyBytes());
    return 0;
  });
  EXPECT_EQ(run.result, 0);
  EXPECT_EQ(run.output, manyBytes());
}

TEST(WriteStandardOutput, WaitsWhereWritingDoesNot) {
  const PipedRun run = runPiped(
      [] {
        writeStandardOutput(manyBytes());
        return 0;
      },
      O_NONBLOCK);
  EXPECT_EQ(run.result, 0);
  EXPECT_EQ(run.output, manyBytes());
}

TEST(WriteStandardOutput, TellsThatNobodyReadsAndLivesOn) {
  std::array<int, 2> ends{};
  ASSERT_EQ(::pipe(ends.data()), 0);
  ::close(ends[0]);
  EXPECT_EQ(resultOfWritingTo(ends[1], "cannot write standard output: Broken pipe"), 0);
  ::close(ends[1]);
}

TEST(WriteStandardOutput, TellsThatThereIsNoRoom) {
  const int full = ::open("/dev/full", O_WRONLY);
  ASSERT_GE(full, 0);
  EXPECT_EQ(resultOfWritingTo(full, "cannot write standard output: No space left on device"), 0);
  ::close(full);
}

TEST(WriteStandardOutput, LeavesTheHandlingOfSignalsAsItWas) {
  std::array<int, 2> ends{};
  ASSERT_EQ(::pipe(ends.data()), 0);
  ::close(ends[0]);
  EXPECT_EQ(resultInChild([&] {
              ::dup2(ends[1], STDOUT_FILENO);
              failureOf([] { writeStandardOutput(manyBytes()); });
              sigset_t mask{};
              sigset_t pending{};
              ::pthread_sigmask(SIG_BLOCK, nullptr, &mask);
              ::sigpending(&pending);
              return sigismember(&mask, SIGPIPE) + sigismember(&mask, SIGXFSZ) +
                     sigismember(&pending, SIGPIPE);
            }),
            0);
  ::close(ends[1]);
}

// ---- readFileWhole

class ReadFileWhole : public FileTest {
 protected:
  std::optional<std::string> failureToRead(const fs::path& source, std::uint64_t limit) const {
    return failureOf([&] { readFileWhole(source, limit); });
  }
};

TEST_F(ReadFileWhole, GivesTheBytesOfTheFile) {
  put(directory / "file", manyBytes());
  EXPECT_EQ(readFileWhole(directory / "file", noLimit), manyBytes());
  put(directory / "empty", {});
  EXPECT_EQ(readFileWhole(directory / "empty", noLimit), Bytes{});
  EXPECT_EQ(readFileWhole(directory / "empty", 0), Bytes{});
}

TEST_F(ReadFileWhole, ReadsFilesThatDoNotTellTheirLength) {
  EXPECT_EQ(readFileWhole("/proc/self/cmdline", noLimit), contentsOf("/proc/self/cmdline"));
  const fs::path pipe = directory / "pipe";
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  std::thread writer([&] { put(pipe, manyBytes()); });
  EXPECT_EQ(readFileWhole(pipe, manyBytes().size()), manyBytes());
  writer.join();
}

TEST_F(ReadFileWhole, ReadsStandardInputForADash) {
  put(directory / "file", manyBytes());
  EXPECT_EQ(resultInChild([&] {
              fs::current_path(directory);
              put("-", bytesOf("the file of that name"));
              const int file = ::open("file", O_RDONLY);
              ::dup2(file, STDIN_FILENO);
              return readFileWhole("-", noLimit) == manyBytes() ? 0 : 1;
            }),
            0);
}

TEST_F(ReadFileWhole, RefusesMoreThanTheLimit) {
  put(directory / "file", Bytes(1000));
  EXPECT_EQ(readFileWhole(directory / "file", 1000).size(), 1000U);
  EXPECT_EQ(failureToRead(directory / "file", 999),
            "cannot read " + (directory / "file").string() +
                ": it is longer than the limit of 999 bytes");
  EXPECT_EQ(failureToRead("/dev/zero", 100000),
            "cannot read /dev/zero: it is longer than the limit of 100000 bytes");
}

TEST_F(ReadFileWhole, RefusesAHugeFileWithoutReadingIt) {
  put(directory / "file", bytesOf("start"));
  fs::resize_file(directory / "file", std::uint64_t{1} << 40);
  EXPECT_EQ(failureToRead(directory / "file", noLimit),
            "cannot read " + (directory / "file").string() +
                ": it is longer than the limit of 4294967295 bytes");
}

TEST_F(ReadFileWhole, TellsWhyAFileCannotBeRead) {
  const auto failure = [](const fs::path& path, const std::string& why) {
    return "cannot read " + path.string() + ": " + why;
  };
  EXPECT_EQ(failureToRead(directory, noLimit), failure(directory, "Is a directory"));
  EXPECT_EQ(failureToRead(directory / "missing", noLimit),
            failure(directory / "missing", "No such file or directory"));
  ASSERT_EQ(::chmod(directory.c_str(), 0755), 0);
  put(directory / "secret", bytesOf("secret"));
  ASSERT_EQ(::chmod((directory / "secret").c_str(), 0), 0);
  EXPECT_EQ(resultInChild([&] {
              becomeOrdinaryUser();
              return failureToRead(directory / "secret", noLimit) ==
                             failure(directory / "secret", "Permission denied")
                         ? 0
                         : 1;
            }),
            0);
}

}  // namespace
}  // namespace tintora::cli
