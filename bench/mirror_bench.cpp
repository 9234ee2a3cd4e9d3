// tintora_mirror_bench PROGRAM: prints the processor time that the mirror takes for a frame, next
// to that of copying the frame once, and what the program does while the source stands still.
#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <fstream>
#include <vector>

#include "tests/mirror/mirror_run.h"

namespace tintora::mirror_test {
namespace {

struct Goal {
  int width;
  int height;
  int rate;  // frames a second
};
constexpr std::array<Goal, 2> goals{{{1920, 1080, 60}, {3840, 2160, 30}}};
constexpr int rounds = 5;
constexpr int framesInRound = 40;

// Returns the processor time that this thread has used, in seconds.
double secondsUsed() {
  timespec used{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &used);
  constexpr double nano = 1e-9;
  return static_cast<double>(used.tv_sec) + nano * static_cast<double>(used.tv_nsec);
}

double median(std::vector<double> values) {
  std::ranges::sort(values);
  return values[values.size() / 2];
}

// Returns the processor time in seconds that copying a frame of this many bytes takes.
double copySeconds(std::size_t bytes) {
  std::vector<std::uint8_t> from(bytes);
  std::vector<std::uint8_t> to(bytes);
  std::vector<double> seconds;
  for (int i = 0; i < framesInRound; ++i) {
    from[bytes / 2] = static_cast<std::uint8_t>(i);
    const double begin = secondsUsed();
    std::memcpy(to.data(), from.data(), bytes);
    seconds.push_back(secondsUsed() - begin);
    EXPECT_EQ(to[bytes / 2], i);
  }
  return median(seconds);
}

class MirrorBench : public MirrorTest {
 protected:
  // Sends a frame of one grey, and waits until the view shows it.
  void sendFrame() {
    constexpr std::uint32_t levels = 200;
    const std::uint32_t grey = 20 + ++frames_ % levels;
    session().send("solid " + std::to_string(grey * 0x010101U));
    ASSERT_TRUE(eventually(
        [&] {
          const Area area = view();
          return (x().read({area.x + 9, area.y + 9, 1, 1}).at(0, 0) & 0xFFU) == grey;
        },
        most));
  }

  double secondsForFrame() {
    const double before = process().processorSeconds();
    for (int i = 0; i < framesInRound; ++i) sendFrame();
    return (process().processorSeconds() - before) / framesInRound;
  }

  // Returns how often the first thread has slept and been woken.
  long wakeUps() {
    std::ifstream status("/proc/" + std::to_string(process().id()) + "/status");
    for (std::string word; status >> word;) {
      long count = 0;
      if (word == "voluntary_ctxt_switches:" && status >> count) return count;
    }
    return 0;
  }

 private:
  std::uint32_t frames_ = 0;
};

TEST_F(MirrorBench, Costs) {
  useDisplay({}, desktop_test::Manager::Openbox, "4000x2300");
  startMirror();
  for (const auto& [width, height, rate] : goals) {
    session().send("format BGRx " + std::to_string(width) + ' ' + std::to_string(height) +
                   " 0 0 0 0 0 0");
    sendFrame();
    ASSERT_EQ(view().width, width);
    std::vector<double> frame;
    std::vector<double> copy;
    for (int round = 0; round < rounds; ++round) {
      frame.push_back(secondsForFrame());
      copy.push_back(copySeconds(4U * static_cast<std::size_t>(width * height)));
    }
    constexpr double milliseconds = 1000;
    std::printf("%dx%d: %.2f ms a frame, %.1f copies of it; at %d/s %.0f%% of a core.\n", width,
                height, milliseconds * median(frame), median(frame) / median(copy), rate,
                100 * rate * median(frame));
  }
  settle();
  constexpr std::chrono::seconds still{5};
  const long wakeUpsBefore = wakeUps();
  const double before = process().processorSeconds();
  std::this_thread::sleep_for(still);
  std::printf("The source stands still for 5 s: %ld wake-ups, %.2f s.\n", wakeUps() - wakeUpsBefore,
              process().processorSeconds() - before);
}

}  // namespace
}  // namespace tintora::mirror_test
