// Tests that run on every desktop: each window manager, with and without a compositing manager.
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

// A desktop's display is started once and used by all tests of a run.
class OnDesktop : public ProgramTest, public testing::WithParamInterface<Desktop> {
 protected:
  void SetUp() override;
  static void TearDownTestSuite();
};

}  // namespace tintora::desktop_test
