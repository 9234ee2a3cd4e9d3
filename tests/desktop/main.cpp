// tintora_desktop_tests PROGRAM [options of GoogleTest]
#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <filesystem>

#include "program_run.h"

namespace {

// The display that all share goes when the tests are done.
class Displays : public testing::Environment {
 public:
  void TearDown() override { tintora::desktop_test::endSharedDisplay(); }
};

}  // namespace

int main(int count, char** arguments) {
  testing::InitGoogleTest(&count, arguments);
  if (count != 2) {
    std::fprintf(stderr, "Usage: %s PROGRAM\n", arguments[0]);
    return 1;
  }
  tintora::desktop_test::programPath = std::filesystem::absolute(arguments[1]).string();
  testing::AddGlobalTestEnvironment(new Displays);
  return RUN_ALL_TESTS();
}
