// tintora_mirror_bench PROGRAM: shows a stream at a steady rate, and prints how many of its frames
// the view shows, how long after they were sent, and the processor time that a frame takes, next to
// that of copying it once; then what the program does while the source stands still.
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <utility>
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
constexpr int secondsOfStream = 10;
constexpr std::size_t greys = 200;  // that the source sends in turn, from the first one
constexpr std::uint32_t firstGrey = 20;
using Clock = std::chrono::steady_clock;

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
  constexpr int copies = 40;
  for (int i = 0; i < copies; ++i) {
    from[bytes / 2] = static_cast<std::uint8_t>(i);
    const double begin = secondsUsed();
    std::memcpy(to.data(), from.data(), bytes);
    seconds.push_back(secondsUsed() - begin);
    EXPECT_EQ(to[bytes / 2], i);
  }
  return median(seconds);
}

// What the view showed of a stream.
struct Shown {
  std::vector<double> latencies;  // in milliseconds
  double rate = 0;                // frames a second
  double sentRate = 0;
};

class MirrorBench : public MirrorTest {
 protected:
  // Sends a format and a first frame, and waits until the view shows it.
  void begin(const Goal& goal) {
    session().send("format BGRx " + std::to_string(goal.width) + ' ' + std::to_string(goal.height) +
                   " 0 0 0 0 0 0");
    session().send("solid 1973790");
    ASSERT_TRUE(
        eventually([&] { return view().width == goal.width && lastPixel(view()) == 30; }, most));
  }

  // Returns the grey of the view's pixel that is drawn last.
  std::uint32_t lastPixel(const Area& area) {
    return x().read({area.right() - 1, area.bottom() - 1, 1, 1}).at(0, 0) & 0xFFU;
  }

  Shown watch(const Goal& goal) {
    const Area area = view();
    const std::size_t linesBefore = outputLines();
    const int frames = goal.rate * secondsOfStream;
    session().send("pace " + std::to_string(goal.rate) + ' ' + std::to_string(frames));
    std::vector<std::pair<std::size_t, Clock::time_point>> seen;
    const auto watched = [&] {
      const std::uint32_t grey = lastPixel(area);
      const auto now = Clock::now();
      const std::size_t before = seen.empty() ? 0 : seen.back().first;
      const std::size_t steps = (grey - firstGrey + greys - before % greys) % greys;
      const bool isFirst = seen.empty() && grey != 30;
      if (isFirst || (!seen.empty() && steps > 0)) seen.emplace_back(before + steps, now);
      return !seen.empty() && now - seen.back().second > std::chrono::seconds(1) &&
             outputLines() > linesBefore;
    };
    constexpr std::chrono::microseconds pause{500};
    const auto end = Clock::now() + std::chrono::seconds(3 * secondsOfStream);
    while (!watched() && Clock::now() < end) std::this_thread::sleep_for(pause);
    if (seen.empty() || outputLines() == linesBefore) return {};
    const std::vector<Clock::time_point> sent = sentTimes();
    Shown shown;
    for (const auto& [frame, time] : seen) {
      if (frame < sent.size()) {
        shown.latencies.push_back(
            std::chrono::duration<double, std::milli>(time - sent[frame]).count());
      }
    }
    const double duration = std::chrono::duration<double>(sent.back() - sent.front()).count();
    shown.sentRate = static_cast<double>(sent.size() - 1) / duration;
    shown.rate = static_cast<double>(seen.size() - 1) /
                 std::chrono::duration<double>(seen.back().second - seen.front().second).count();
    std::ranges::sort(shown.latencies);
    return shown;
  }

  // Returns how often the program's threads have slept and been woken.
  long wakeUps() {
    long all = 0;
    const std::string tasks = "/proc/" + std::to_string(process().id()) + "/task";
    for (const auto& task : std::filesystem::directory_iterator(tasks)) {
      std::ifstream status(task.path() / "status");
      for (std::string word; status >> word;) {
        long count = 0;
        if (word == "voluntary_ctxt_switches:" && status >> count) all += count;
      }
    }
    return all;
  }

 private:
  static std::size_t outputLines() {
    return static_cast<std::size_t>(std::ranges::count(session().sourceOutput(), '\n'));
  }

  static std::vector<Clock::time_point> sentTimes() {
    const std::string output = session().sourceOutput();
    std::istringstream line(output.substr(output.rfind("sent") + 4));
    std::vector<Clock::time_point> times;
    for (std::int64_t time = 0; line >> time;) {
      times.emplace_back(std::chrono::nanoseconds(time));
    }
    return times;
  }
};

TEST_F(MirrorBench, Costs) {
  useDisplay({}, desktop_test::Manager::Openbox, "4000x2300");
  startMirror();
  for (const Goal& goal : goals) {
    const auto& [width, height, rate] = goal;
    begin(goal);
    const double copy = copySeconds(4U * static_cast<std::size_t>(width * height));
    const double before = process().processorSeconds();
    const auto start = Clock::now();
    const auto [latencies, shownRate, sentRate] = watch(goal);
    const double used = process().processorSeconds() - before;
    const double share = used / std::chrono::duration<double>(Clock::now() - start).count();
    ASSERT_FALSE(latencies.empty());
    const auto at = [&latencies = latencies](double part) {
      return latencies[static_cast<std::size_t>(part * static_cast<double>(latencies.size() - 1))];
    };
    std::printf("%dx%d at %d/s: sent %.1f/s, shown %.1f/s (%.3f of it).\n", width, height, rate,
                sentRate, shownRate, shownRate / sentRate);
    std::printf(
        "  from the source to the view: median %.1f ms (%.2f intervals), 90%% %.1f, most %.1f\n",
        at(0.5), at(0.5) * rate / 1000, at(0.9), at(1));
    std::printf(
        "  program: %.0f%% of a core, %.2f ms a frame, %.1f copies of it (one takes %.2f ms)\n",
        100 * share, 1000 * used / (rate * secondsOfStream), used / (rate * secondsOfStream) / copy,
        1000 * copy);
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
