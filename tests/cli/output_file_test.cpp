#include "cli/output_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>

#include "tests/cli/output_samples.h"

namespace tintora::cli {
namespace {

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

TEST_F(WriteFileWhole, LeavesTheOldContentsToProgramsThatHaveThemOpen) {
  put(directory / "old.png", bytesOf("old contents"));
  std::ifstream reader(directory / "old.png", std::ios::binary);
  writeFileWhole(directory / "old.png", bytesOf("new"));
  const Bytes seen{std::istreambuf_iterator<char>(reader), std::istreambuf_iterator<char>()};
  EXPECT_EQ(seen, bytesOf("old contents"));
}

TEST_F(WriteFileWhole, WritesANameWithoutADirectoryToTheCurrentOne) {
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

TEST_F(WriteFileWhole, KeepsTheOwnerWhenTheSuperuserReplacesAFile) {
  if (::geteuid() != 0) GTEST_SKIP() << "for the superuser only";
  put(directory / "old.png", bytesOf("old"));
  ASSERT_EQ(::chown((directory / "old.png").c_str(), 1234, 4321), 0);
  writeFileWhole(directory / "old.png", bytesOf("new"));
  struct stat status {};
  ASSERT_EQ(::stat((directory / "old.png").c_str(), &status), 0);
  EXPECT_EQ(status.st_uid, 1234U);
  EXPECT_EQ(status.st_gid, 4321U);
}

TEST_F(WriteFileWhole, GivesAnotherGroupNoneOfTheFormerGroupsPermissions) {
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

  // Others may write but not read, so the new group must not be able to read either.
  ASSERT_EQ(::chown((directory / "old.png").c_str(), 1234, 4321), 0);
  ASSERT_EQ(::chmod((directory / "old.png").c_str(), 0662), 0);
  EXPECT_EQ(resultInChild(replace), 0);
  EXPECT_EQ(permissionsOf(directory / "old.png"), 0622U);
}

TEST_F(WriteFileWhole, ReplacesAFileWhosePermissionsNobodyCanChangeIfTheyAreRight) {
  const fs::path target = directory / "old.png";
  // A new file has the permissions 0644.
  const auto replace = [&](const std::optional<std::string>& failure) {
    return resultInChild([&] {
      ::umask(0022);
      if (!breakCall(SYS_fchmod, EPERM)) return notPossible;
      return failureToWrite(target, bytesOf("new")) == failure ? 0 : 1;
    });
  };
  put(target, bytesOf("old"));
  ASSERT_EQ(::chmod(target.c_str(), 0600), 0);
  const int secret = replace("cannot write " + target.string() + ": Operation not permitted");
  if (secret == notPossible) GTEST_SKIP() << "system calls cannot be filtered here";
  EXPECT_EQ(secret, 0) << "all could have read it";
  EXPECT_EQ(contentsOf(target), bytesOf("old"));
  EXPECT_EQ(names(), Names{"old.png"});

  ASSERT_EQ(::chmod(target.c_str(), 0644), 0);
  EXPECT_EQ(replace(std::nullopt), 0);
  EXPECT_EQ(contentsOf(target), bytesOf("new"));
  EXPECT_EQ(names(), Names{"old.png"});
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

TEST_F(WriteFileWhole, ReportsAFullDevice) {
  EXPECT_EQ(failureToWrite("/dev/full", bytesOf("new")),
            "cannot write /dev/full: No space left on device");
}

TEST_F(WriteFileWhole, ContinuesAtThePositionOfStandardOutput) {
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

TEST_F(WriteFileWhole, ReportsAMissingDirectory) {
  const fs::path target = directory / "missing" / "new.png";
  EXPECT_EQ(failureToWrite(target, bytesOf("new")),
            "cannot write " + target.string() +
                ": no file can be made beside it: No such file or directory");
  put(directory / "file", {});
  EXPECT_EQ(failureToWrite(directory / "file" / "new.png", bytesOf("new")),
            "cannot write " + (directory / "file" / "new.png").string() + ": Not a directory");
  EXPECT_TRUE(failureToWrite("", bytesOf("new")).has_value());
}

TEST_F(WriteFileWhole, ChangesNothingInADirectoryWithoutWritePermission) {
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

TEST_F(WriteFileWhole, ChangesNothingWhenTheContentsDoNotFit) {
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

TEST_F(WriteFileWhole, ChangesNothingWhenTheFileMayNotBeReplaced) {
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

}  // namespace
}  // namespace tintora::cli
