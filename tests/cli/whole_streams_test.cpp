#include <dlfcn.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <random>
#include <string>
#include <thread>

#include "cli/byte_stream.h"
#include "cli/jpeg_writer.h"
#include "cli/output_file.h"
#include "cli/png_writer.h"
#include "tests/cli/output_samples.h"

namespace tintora::cli {
namespace {

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
    // Fill the pipe, so that the writer has to wait.
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

TEST(WriteStandardOutput, WaitsForADescriptorThatDoesNotBlock) {
  const PipedRun run = runPiped(
      [] {
        writeStandardOutput(manyBytes());
        return 0;
      },
      O_NONBLOCK);
  EXPECT_EQ(run.result, 0);
  EXPECT_EQ(run.output, manyBytes());
}

TEST(WriteStandardOutput, ReportsAClosedPipeAndContinues) {
  std::array<int, 2> ends{};
  ASSERT_EQ(::pipe(ends.data()), 0);
  ::close(ends[0]);
  EXPECT_EQ(resultOfWritingTo(ends[1], "cannot write standard output: Broken pipe"), 0);
  ::close(ends[1]);
}

TEST(WriteStandardOutput, ReportsAFullDevice) {
  const int full = ::open("/dev/full", O_WRONLY);
  ASSERT_GE(full, 0);
  EXPECT_EQ(resultOfWritingTo(full, "cannot write standard output: No space left on device"), 0);
  ::close(full);
}

TEST(WriteStandardOutput, RestoresTheHandlingOfSignals) {
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

TEST(WriteStandardOutput, EndsWhereNothingMoreIsWritten) {
  const int result = resultInChild([] {
    ::alarm(60);
    if (!breakCall(SYS_write, 0)) return notPossible;
    const auto failure = failureOf([] { writeStandardOutput(manyBytes()); });
    return failure == "cannot write standard output: Input/output error" ? 0 : 1;
  });
  if (result == notPossible) GTEST_SKIP() << "system calls cannot be filtered here";
  EXPECT_EQ(result, 0);
}

TEST(ByteSink, TellsThatThereIsNoMemory) {
  if (::dlsym(RTLD_DEFAULT, "__asan_init") != nullptr) GTEST_SKIP() << "memory is checked";
  constexpr std::size_t size = std::size_t{1} << 30;
  EXPECT_EQ(resultInChild([] {
              void* const zeros = ::mmap(nullptr, size, PROT_READ,
                                         MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
              if (zeros == MAP_FAILED) return 1;
              const rlimit limit{size, size};
              ::setrlimit(RLIMIT_AS, &limit);
              ByteSink sink;
              const bool done = put(sink, {static_cast<const std::uint8_t*>(zeros), size});
              return !done && sink.error == ENOMEM ? 0 : 2;
            }),
            0);
}

enum class Step { Start, Rows, Finish };

// Writes a picture of noise until the device is full at one step, and returns that step's error.
std::optional<std::string> failureAt(Step full, ImageFormat format) {
  RowsHeader header;
  header.width = 4000;
  header.height = 8;
  header.exif = Bytes(60000);  // makes the header longer than any buffer
  Bytes row(rowBytes(header));
  std::mt19937 random(1);
  for (std::uint8_t& value : row) value = static_cast<std::uint8_t>(random());

  const Descriptor device(::open("/dev/full", O_WRONLY | O_CLOEXEC));
  ByteSink sink;
  const auto fillBefore = [&](Step step) {
    if (step != full) return;
    sink.descriptor = device.number;
    sink.bytes.resize(std::size_t{1} << 16);
  };
  ImageWriter writer;
  std::optional<std::string> failure;
  const auto take = [&](Step step, const std::function<void()>& action) {
    if (failure) return;
    fillBefore(step);
    failure = failureOf(action);
    EXPECT_EQ(failure.has_value(), step == full);
  };
  take(Step::Start, [&] {
    writer = format == ImageFormat::Png ? startPng(sink, header) : startJpeg(sink, header, 95);
  });
  take(Step::Rows, [&] {
    for (std::uint32_t y = 0; y < header.height; ++y) writer.writeRow(row.data());
  });
  take(Step::Finish, [&] { writer.finish({}); });
  return failure;
}

TEST(ImageWriters, TellThatTheDeviceIsFullAtEveryStep) {
  for (const Step step : {Step::Start, Step::Rows, Step::Finish}) {
    EXPECT_EQ(failureAt(step, ImageFormat::Png),
              "cannot write the PNG file: No space left on device");
    EXPECT_EQ(failureAt(step, ImageFormat::Jpeg),
              "cannot write the JPEG file: No space left on device");
  }
}

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

TEST_F(ReadFileWhole, ReadsFilesOfUnknownLength) {
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

TEST_F(ReadFileWhole, ReportsWhyAFileCannotBeRead) {
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
