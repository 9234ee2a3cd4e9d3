// Trouble on the desktop: settings that cannot be read, a killed process, a second instance, a lost
// graphics device.
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "colour_space_run.h"
#include "program_run.h"
#include "stored_values.h"

namespace tintora::windows_test {
namespace {

namespace fs = std::filesystem;

using Trouble = ProgramTest;

TEST_F(Trouble, WithTheSettingsKeyGivesTheDefaultsAndSavesNothing) {
  const StoredValues stored{{"Selected", 5}, {"View", 703}};
  storeValues(stored);
  magnifierRecord().refusal = Refusal::SettingsKey;
  start();
  EXPECT_EQ(title(), " Simulation - Protanope 100% severity");
  EXPECT_EQ(titleOf(windows().colourSpace), "Help");
  choose(4);
  EXPECT_EQ(title(), "Greyscale");
  end();
  EXPECT_EQ(process().result(), 0U);
  EXPECT_EQ(storedValues(), stored);
}

// Kills the program at random moments after its main window was asked to close. TINTORA_KILLS sets
// how many times.
TEST_F(Trouble, OfAKilledProcessLeavesEverySettingOldOrNew) {
  constexpr int usually = 8;
  constexpr int latest = 40;  // milliseconds; most runs end sooner
  const char* const asked = std::getenv("TINTORA_KILLS");
  const int kills = asked == nullptr ? usually : std::stoi(asked);
  const StoredValues before{{"Selected", 1},  {"ScrollPc", 100}, {"Filter", 100},
                            {"Swap", 200},    {"Option", 0},     {"Inversion", 0},
                            {"Daltonize", 0}, {"ColorSpace", 0}, {"View", 705}};
  StoredValues after = before;
  after["Selected"] = 2;
  after["ScrollPc"] = 90;
  after["View"] = 703;
  after["ColorSpace"] = 1;
  std::mt19937 moments{std::random_device()()};
  std::map<std::string, int> outcomes;
  for (int i = 0; i < kills; ++i) {
    storeValues(before);
    start();
    choose(2);
    choose(703);
    turnWheel(false, 2);
    PostMessageA(windows().main, WM_CLOSE, 0, 0);
    Sleep(std::uniform_int_distribution<DWORD>(0, latest)(moments));
    kill();
    const StoredValues stored = storedValues();
    ASSERT_EQ(stored.size(), before.size());
    for (const auto& [name, value] : stored) {
      EXPECT_TRUE(value == before.at(name) || value == after.at(name)) << name << " " << value;
    }
    ++outcomes[stored == before ? "old" : stored == after ? "new" : "partly new"];
  }
  for (const auto& [outcome, count] : outcomes) std::printf("%s: %d\n", outcome.c_str(), count);
  start();
  end();
  EXPECT_EQ(process().result(), 0U);
}

TEST_F(Trouble, WithASecondInstanceIsNone) {
  start();
  Process second;
  HWND secondWindow = nullptr;
  ASSERT_TRUE(eventually([&] {
    for (const HWND window : windowsOf(second.id(), "WindowClassZub")) secondWindow = window;
    return secondWindow != nullptr && IsWindowVisible(secondWindow);
  }));
  EXPECT_TRUE(
      eventually([&] { return titleOf(secondWindow) == " Simulation - Protanope 100% severity"; }));
  PostMessageA(secondWindow, WM_COMMAND, 5, 0);
  EXPECT_TRUE(eventually([&] { return titleOf(secondWindow) == "Invert "; }));
  EXPECT_EQ(title(), " Simulation - Protanope 100% severity");
  PostMessageA(secondWindow, WM_CLOSE, 0, 0);
  EXPECT_TRUE(second.hasEnded());
  EXPECT_EQ(second.result(), 0U);
  EXPECT_EQ(storedValues()["Selected"], 5U);
  choose(4);
  EXPECT_EQ(title(), "Greyscale");
  end();
  // The instance that ends last overwrites the settings.
  EXPECT_EQ(storedValues()["Selected"], 4U);
}

// Nothing is written to the program's folder, so it may be read-only.
TEST_F(Trouble, WithAReadOnlyFolderIsNone) {
  const auto filesAndTimes = [] {
    std::map<std::string, fs::file_time_type> files;
    for (const auto& entry : fs::recursive_directory_iterator(programFolder())) {
      files[entry.path().string()] = entry.last_write_time();
    }
    return files;
  };
  const auto before = filesAndTimes();
  EXPECT_FALSE(before.empty());
  start("-st");
  choose(703);
  choose(52);
  EXPECT_TRUE(hasCopied());
  end();
  EXPECT_EQ(filesAndTimes(), before);
}

class LostDevice : public ColourSpaceTest {
 protected:
  void turnAndStep() {
    drag(MK_LBUTTON, {{200, 200}, {300, 240}});
    turnWheel(false, 4);
  }
};

TEST_F(LostDevice, LeavesTheOtherWindowsAlive) {
  startWith(ColourSpaceView::CubeView);
  const Picture before = shown();
  ask(LoseDevices, 0);
  turnAndStep();
  EXPECT_EQ(title(), " Simulation - Deuteranomalous 80% severity");
  EXPECT_TRUE(areAlike(shown(), before, 0)) << "The device is not lost.";
  press('H');
  EXPECT_TRUE(IsWindowVisible(windows().control));
  press('H');
  const std::uint64_t paints = magnifierRecord().paints;
  EXPECT_TRUE(eventually([&] { return magnifierRecord().paints > paints + 5; }));
  resize({300, 300});
  press('E');
  EXPECT_EQ(titleOf(windows().colourSpace), "Photoreceptor Response Curves");
  end();
  EXPECT_EQ(process().result(), 0U);
}

TEST_F(LostDevice, LeavesNoTraceAfterItsWindowIsResized) {
  std::vector<Picture> pictures;
  for (const bool lost : {false, true}) {
    startWith(ColourSpaceView::CubeView);
    if (lost) ask(LoseDevices, 0);
    turnAndStep();
    if (lost) ask(KeepDevices, 0);
    resize({300, 300});
    pictures.push_back(shown());
    end();
  }
  EXPECT_TRUE(areAlike(pictures[1], pictures[0], 0));
}

}  // namespace
}  // namespace tintora::windows_test
