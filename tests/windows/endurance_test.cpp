// Creates and releases objects of the desktop many times.
#include <string>

#include "program_run.h"

namespace tintora::windows_test {
namespace {

class Endurance : public ProgramTest {
 protected:
  void goRound(int round) {
    for (const char key : {'E', 'W', 'F', 'F', 'H', 'H', ' ', ' '}) {
      PostMessageA(windows().main, WM_KEYDOWN, static_cast<WPARAM>(key), 0);
    }
    choose(52);
    const int size = 200 + round % 7 * 30;
    SetWindowPos(windows().main, nullptr, 50, 60, size, size, SWP_NOZORDER | SWP_NOACTIVATE);
    settle();
  }
};

TEST_F(Endurance, LeavesNoObjectsBehind) {
  constexpr int rounds = 50;
  constexpr int untilSettled = 10;
  start("-st");
  for (int round = 0; round < untilSettled; ++round) goRound(round);
  const Objects before = objects();
  EXPECT_GT(before.graphics, 0U);
  EXPECT_GT(before.user, 0U);
  for (int round = untilSettled; round < rounds; ++round) goRound(round);
  const Objects after = objects();
  // The desktop keeps a few objects for itself. A round that leaves one would exceed this.
  EXPECT_LE(after.graphics, before.graphics + 5);
  EXPECT_LE(after.user, before.user + 5);
  EXPECT_TRUE(process().isRunning());
}

}  // namespace
}  // namespace tintora::windows_test
