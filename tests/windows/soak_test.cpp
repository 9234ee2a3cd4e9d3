// Random input for minutes while windows of other programs come and go. The magnifier does not read
// the screen here, because Wine keeps two graphics objects for each window of another program that
// was ever read. Not part of the usual run; TINTORA_MINUTES sets the duration:
//   tests/windows/run.py ... -- --gtest_also_run_disabled_tests --gtest_filter=*Soak*
#include <windows.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <random>
#include <string>

#include "colour_space_run.h"
#include "picture.h"
#include "stored_values.h"

namespace tintora::windows_test {
namespace {

struct Held {
  std::size_t memory = 0;  // working set, in bytes
  std::uint32_t handles = 0;
  std::uint32_t graphics = 0;
  std::uint32_t user = 0;
};

class DISABLED_Soak : public ColourSpaceTest {
 protected:
  int random(int least, int most) { return std::uniform_int_distribution(least, most)(random_); }

  // Resets the program and returns what it holds. The state is always the same, so that results can
  // be compared: framed, not transparent, a view of one size.
  Held held(const char* when) {
    reset();
    Held held;
    held.memory = memory();
    const Objects counted = objects();
    held.handles = counted.handles;
    held.graphics = counted.graphics;
    held.user = counted.user;
    std::printf("%s: %.1f MB, %u handles, %u graphics objects, %u user objects\n", when,
                static_cast<double>(held.memory) / 1e6, held.handles, held.graphics, held.user);
    std::fflush(stdout);
    return held;
  }

  void reset() {
    if (IsIconic(windows().main) != 0 || IsZoomed(windows().main) != 0) {
      send(windows().main, WM_SYSCOMMAND, SC_RESTORE);
    }
    if (IsWindowVisible(windows().control) != 0) send(windows().control, WM_CLOSE);
    press(VK_ESCAPE);
    SetWindowPos(windows().main, nullptr, 100, 100, 300, 200, SWP_NOZORDER | SWP_NOACTIVATE);
    settle();
    choose(703);
    resize({400, 400});
  }

  void actAtRandom() {
    constexpr std::array keys{int{VK_TAB},  int{VK_ESCAPE}, int{' '},   int{VK_PRIOR},
                              int{VK_NEXT}, int{VK_LEFT},   int{VK_UP}, int{VK_RIGHT},
                              int{VK_DOWN}, int{VK_F1}};
    switch (random(0, 9)) {
      case 0:
      case 1:
        press(random(0, 1) == 0 ? keys[static_cast<std::size_t>(random(0, keys.size() - 1))]
                                : random('A', 'Z'));
        break;
      case 2:
        // Leave out the guide, which would open browsers.
        choose(random(0, 54));
        break;
      case 3:
        choose(random(100, 304));
        break;
      case 4:
        choose(random(700, 705));
        break;
      case 5:
        turnWheel(random(0, 1) == 0, random(1, 5));
        break;
      case 6:
        SetWindowPos(windows().main, nullptr, random(-100, 900), random(-100, 600),
                     random(150, 900), random(100, 700), SWP_NOZORDER | SWP_NOACTIVATE);
        settle();
        break;
      case 7:
        drag(random(0, 1) == 0 ? MK_LBUTTON : MK_LBUTTON | MK_SHIFT,
             {{random(0, 400), random(0, 400)}, {random(0, 400), random(0, 400)}});
        break;
      case 8:
        resize({random(50, 700), random(50, 600)});
        break;
      default:
        exchangeNeighbour();
    }
  }

  // Replaces the window of another program.
  void exchangeNeighbour() {
    auto& neighbour = neighbours_[static_cast<std::size_t>(random(0, 2))];
    neighbour.reset();
    const int left = random(0, 900);
    const int top = random(0, 500);
    if (random(0, 2) > 0) {
      neighbour = std::make_unique<Neighbour>(left, top, random(50, 300), random(50, 250));
    }
  }

 private:
  // A window that stands for another program's.
  class Neighbour {
   public:
    Neighbour(int left, int top, int width, int height)
        : window_(CreateWindowExA(WS_EX_NOACTIVATE, "STATIC", "neighbour", WS_POPUP | WS_VISIBLE,
                                  left, top, width, height, nullptr, nullptr,
                                  GetModuleHandleA(nullptr), nullptr)) {}
    ~Neighbour() { DestroyWindow(window_); }
    Neighbour(const Neighbour&) = delete;
    Neighbour& operator=(const Neighbour&) = delete;

   private:
    HWND window_;
  };

  std::mt19937 random_{7};
  std::array<std::unique_ptr<Neighbour>, 3> neighbours_;
};

TEST_F(DISABLED_Soak, LeavesNothingBehind) {
  const char* const asked = std::getenv("TINTORA_MINUTES");
  const int minutes = asked == nullptr ? 10 : std::stoi(asked);
  constexpr ULONGLONG minute = 60000;
  start("-st");
  magnifierRecord().habits.drawsNothing = true;
  const ULONGLONG begin = GetTickCount64();
  Held first{};
  Held last{};
  int actions = 0;
  for (int passed = 1; passed <= minutes; ++passed) {
    while (GetTickCount64() < begin + static_cast<ULONGLONG>(passed) * minute) {
      actAtRandom();
      ++actions;
      ASSERT_TRUE(process().isRunning());
      ASSERT_FALSE(HasFatalFailure());
      MSG message{};
      while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE) != 0) DispatchMessageA(&message);
    }
    last = held(("After " + std::to_string(passed) + " min").c_str());
    if (passed == 1) first = last;
  }
  std::printf("%d actions\n", actions);
  // The desktop keeps a few objects for itself.
  EXPECT_LE(last.handles, first.handles + 10);
  EXPECT_LE(last.graphics, first.graphics + 10);
  EXPECT_LE(last.user, first.user + 10);
  EXPECT_LE(last.memory, first.memory + 20'000'000);
  end();
  EXPECT_EQ(process().result(), 0U);
  EXPECT_EQ(storedValues().size(), 9U);
}

}  // namespace
}  // namespace tintora::windows_test
