// tintora_desktop_tests PROGRAM [FILE] [options of GoogleTest]
// With FILE, the name of a source file, only its tests run.
#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <filesystem>
#include <string>

#include "program_run.h"

namespace {

// Closes the shared display when the tests have finished.
class Displays : public testing::Environment {
 public:
  void TearDown() override { tintora::desktop_test::endSharedDisplay(); }
};

// Returns GoogleTest's filter for the tests in a source file.
std::string testsOfFile(const std::string& name) {
  std::string filter;
  const testing::UnitTest& all = *testing::UnitTest::GetInstance();
  for (int i = 0; i < all.total_test_suite_count(); ++i) {
    const testing::TestSuite& suite = *all.GetTestSuite(i);
    for (int j = 0; j < suite.total_test_count(); ++j) {
      const testing::TestInfo& test = *suite.GetTestInfo(j);
      if (std::filesystem::path(test.file()).filename() == name) {
        filter += std::string(suite.name()) + "." + test.name() + ":";
      }
    }
  }
  return filter;
}

}  // namespace

int main(int count, char** arguments) {
  testing::InitGoogleTest(&count, arguments);
  if (count < 2 || count > 3) {
    std::fprintf(stderr, "Usage: %s PROGRAM [FILE]\n", arguments[0]);
    return 1;
  }
  if (count == 3) {
    const std::string filter = testsOfFile(arguments[2]);
    if (filter.empty()) {
      std::fprintf(stderr, "There are no tests in %s.\n", arguments[2]);
      return 1;
    }
    GTEST_FLAG_SET(filter, filter);
  }
  tintora::desktop_test::programPath = std::filesystem::absolute(arguments[1]).string();
  testing::AddGlobalTestEnvironment(new Displays);
  return RUN_ALL_TESTS();
}
