// Tests that run on every desktop: on each window manager, with and without a compositing manager.
#pragma once

#include <string>
#include <vector>

#include "program_run.h"

namespace tintora::desktop_test {

struct Desktop {
  std::string name;
  Manager manager;
  Compositor compositor;
};

const std::vector<Desktop>& allDesktops();
std::string nameOf(const testing::TestParamInfo<Desktop>& info);

// Starts a desktop's display once, for all tests of a run.
class OnDesktop : public ProgramTest, public testing::WithParamInterface<Desktop> {
 protected:
  void SetUp() override;
  static void TearDownTestSuite();
};

}  // namespace tintora::desktop_test
