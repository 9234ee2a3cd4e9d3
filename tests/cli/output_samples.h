// Files and processes for the tests of whole files in and out.
#pragma once

#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstddef>
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

// Makes a system call do nothing from now on, in a child: it fails with an error, or returns 0
// where that is none. Returns false if the system does not allow that.
inline bool breakCall(std::uint32_t call, std::uint32_t error) {
  std::array<sock_filter, 4> steps{{BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
                                    BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, call, 0, 1),
                                    BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | error),
                                    BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW)}};
  const sock_fprog program{steps.size(), steps.data()};
  return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
         ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

// What a child returns if a test cannot be made there.
inline constexpr int notPossible = 77;

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
