// Files and processes for the tests of whole files in and out.
#pragma once

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdint>
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
#include <vector>

#include "cli/output_file.h"
#include "tests/cli/bytes.h"

namespace tintora::cli {

namespace fs = std::filesystem;

inline constexpr std::uint64_t noLimit = std::numeric_limits<std::uint32_t>::max();

// More than fits into a pipe at once.
inline Bytes manyBytes() {
  Bytes bytes(3000001);
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<std::uint8_t>(i % 251);
  return bytes;
}

inline Bytes contentsOf(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

inline void put(const fs::path& path, const Bytes& bytes) {
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
}

inline std::optional<std::string> failureOf(const std::function<void()>& action) {
  try {
    action();
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return std::nullopt;
}

inline std::optional<std::string> failureToWrite(const fs::path& target, const Bytes& contents) {
  return failureOf([&] { writeFileWhole(target, contents); });
}

inline mode_t permissionsOf(const fs::path& path) {
  struct stat status {};
  EXPECT_EQ(::stat(path.c_str(), &status), 0);
  return status.st_mode & 07777;
}

// Runs the action in another process, which may change its limits, user and descriptors, and
// returns the number that it ends with.
inline int resultInChild(const std::function<int()>& action) {
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

// Returns true for the superuser, to whom nothing is forbidden that the tests expect to be.
inline void becomeOrdinaryUser() {
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

}  // namespace tintora::cli
