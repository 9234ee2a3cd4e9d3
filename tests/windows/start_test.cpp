// How the program starts and ends.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "expected_effects.h"
#include "program_run.h"
#include "stored_values.h"

namespace tintora::windows_test {
namespace {

using namespace expected;

using StartUp = ProgramTest;
using ShutDown = ProgramTest;

std::vector<MagnifierCall> kindsOf(const std::vector<RecordedCall>& calls) {
  std::vector<MagnifierCall> kinds;
  for (const RecordedCall& call : calls) {
    // The source may be set several times while the windows appear; count that as one call.
    if (!kinds.empty() && call.call == kinds.back() &&
        call.call == MagnifierCall::SetWindowSource) {
      continue;
    }
    kinds.push_back(call.call);
  }
  return kinds;
}

TEST_F(StartUp, SetsTheMagnifierUpInOrder) {
  start();
  const std::vector<RecordedCall> all = calls();
  const std::vector<MagnifierCall> kinds = kindsOf(all);
  ASSERT_GE(kinds.size(), 5U);
  EXPECT_EQ(kinds[0], MagnifierCall::Initialize);
  EXPECT_EQ(kinds[1], MagnifierCall::SetWindowTransform);
  EXPECT_EQ(kinds[2], MagnifierCall::SetColorEffect);
  EXPECT_EQ(kinds[3], MagnifierCall::SetWindowSource);
  EXPECT_EQ(kinds[4], MagnifierCall::SetColorEffect);
  for (std::size_t n = 1; n < all.size(); ++n) {
    EXPECT_EQ(all[n].window, reinterpret_cast<std::uintptr_t>(windows().magnifier));
  }
}

TEST_F(StartUp, MagnifiesNothing) {
  start();
  const RecordedCall call = lastCall(MagnifierCall::SetWindowTransform);
  const std::array<float, 9> identity{1, 0, 0, 0, 1, 0, 0, 0, 1};
  EXPECT_TRUE(std::equal(identity.begin(), identity.end(), call.values.begin()));
}

TEST_F(StartUp, ShowsAProtanSimulationAtFirst) {
  start();
  EXPECT_EQ(title(), " Simulation - Protanope 100% severity");
  EXPECT_TRUE(areEqual(lastCall(MagnifierCall::SetColorEffect).values, effectOf(juddProtan(1))));
}

TEST_F(ShutDown, ReleasesTheMagnifierAndReturnsZero) {
  start();
  end();
  EXPECT_EQ(process().result(), 0U);
  const std::vector<RecordedCall> all = calls();
  EXPECT_EQ(std::ranges::count(all, MagnifierCall::Uninitialize, &RecordedCall::call), 1);
  EXPECT_EQ(all.back().call, MagnifierCall::Uninitialize);
}

TEST_F(ShutDown, EndsFromEveryForm) {
  for (const int key : {int{' '}, int{'H'}, int{'F'}, int{VK_TAB}}) {
    start();
    press(key);
    end();
    EXPECT_EQ(process().result(), 0U);
  }
}

struct ShowRow {
  const char* name;
  WORD show;
  bool maximised;
  bool minimised;
};

void PrintTo(const ShowRow& row, std::ostream* out) {
  *out << row.name;
}

constexpr std::array showRows{
    ShowRow{"Normal", SW_SHOWNORMAL, false, false},
    ShowRow{"Maximised", SW_SHOWMAXIMIZED, true, false},
    ShowRow{"Minimised", SW_SHOWMINIMIZED, false, true},
};

class ShowCommands : public UndrawnTest, public testing::WithParamInterface<ShowRow> {};

TEST_P(ShowCommands, HoldForBothWindows) {
  start(Launch{.show = GetParam().show});
  for (const HWND window : {windows().main, windows().colourSpace}) {
    EXPECT_TRUE(IsWindowVisible(window));
    EXPECT_EQ(IsZoomed(window) != FALSE, GetParam().maximised);
    EXPECT_EQ(IsIconic(window) != FALSE, GetParam().minimised);
  }
}

INSTANTIATE_TEST_SUITE_P(By, ShowCommands, testing::ValuesIn(showRows),
                         [](const auto& row) { return std::string(row.param.name); });

// Starts that cannot succeed: nothing may be shown, and no message box may wait for the user.
class FailingStart : public ProgramTest {
 protected:
  void expectToEndUnseen() {
    const Process process;
    bool seen = false;
    EXPECT_TRUE(eventually([&] {
      for (const char* name : {"WindowClassZub", "WindowClassZub2", "#32770"}) {
        for (const HWND window : windowsOf(process.id(), name)) seen |= IsWindowVisible(window);
      }
      return !process.isRunning();
    }));
    EXPECT_FALSE(seen);
    EXPECT_EQ(process.result(), 0U);
    EXPECT_TRUE(storedValues().empty());
  }
};

TEST_F(FailingStart, WithoutTheMagnificationApi) {
  const MissingMagnification missing;
  expectToEndUnseen();
}

TEST_F(FailingStart, WhenTheMagnifierCannotBeInitialised) {
  magnifierRecord().refusal = Refusal::Initialize;
  expectToEndUnseen();
}

TEST_F(FailingStart, WhenTheMagnifierWindowCannotBeHad) {
  magnifierRecord().refusal = Refusal::MagnifierWindow;
  expectToEndUnseen();
}

struct ArgumentsRow {
  const char* name;
  const char* arguments;
  bool simulationOptions;
  bool tritan;
};

void PrintTo(const ArgumentsRow& row, std::ostream* out) {
  *out << row.arguments;
}

const std::array argumentsRows{
    ArgumentsRow{"None", "", false, false},
    ArgumentsRow{"Both", "-st", true, true},
    ArgumentsRow{"Simulation", "-s", true, false},
    ArgumentsRow{"Tritan", "t", false, true},
    ArgumentsRow{"UpperCase", "-ST", false, false},
    ArgumentsRow{"InOtherWords", "cast", true, true},
    ArgumentsRow{"UpToTheTenth", "--------st", true, true},
    ArgumentsRow{"NotAfterTheTenth", "---------st", true, false},
    ArgumentsRow{"Late", "---------- st", false, false},
};

class Arguments : public UndrawnTest, public testing::WithParamInterface<ArgumentsRow> {};

TEST_P(Arguments, SwitchMenuItemsOn) {
  start(GetParam().arguments);
  bool simulationOptions = false;
  bool tritan = false;
  for (const MenuItem& item : menu()) {
    simulationOptions |= item.text == "Simulation Option";
    tritan |= item.text.starts_with("Tritan");
  }
  EXPECT_EQ(simulationOptions, GetParam().simulationOptions);
  EXPECT_EQ(tritan, GetParam().tritan);
}

INSTANTIATE_TEST_SUITE_P(By, Arguments, testing::ValuesIn(argumentsRows),
                         [](const auto& row) { return std::string(row.param.name); });

using CustomFile = UndrawnTest;

constexpr const char* customText =
    "Night\n"
    "0.5 0 0 0.25\n"
    "0 0.5 0 0\n"
    "0 0 0.25 0\n"
    "$Deutan correction\n"
    "1 0 0 0\n"
    "-0.5 1.5 0 0\n"
    "0.5 -0.5 1 0.1\n";

void writeCustomFile(const std::string& path) {
  std::ofstream(path, std::ios::binary) << customText;
}

TEST_F(CustomFile, GivesTransformsToChoose) {
  writeCustomFile(customFile());
  start();
  choose(0);
  EXPECT_EQ(title(), "Night");
  EXPECT_TRUE(areEqual(lastCall(MagnifierCall::SetColorEffect).values,
                       effectOf({{{0.5, 0, 0}, {0, 0.5, 0}, {0, 0, 0.25}}}, {0.25, 0, 0})));
  choose(1);
  turnWheel(false, 8);
  EXPECT_EQ(title(), "Deutan correction   60% (mouse-wheel adjusts %)");
  EXPECT_TRUE(areEqual(lastCall(MagnifierCall::SetColorEffect).values,
                       effectOf({{{1, 0, 0}, {-0.3, 1.3, 0}, {0.3, -0.3, 1}}}, {0, 0, 0.06})));
}

TEST_F(CustomFile, MovesTheCommandsBelowAHundred) {
  writeCustomFile(customFile());
  start();
  choose(2 + 5);
  EXPECT_EQ(title(), "Invert ");
}

TEST_F(CustomFile, IsTakenFromTheCurrentFolderWithoutAPath) {
  const std::string folder = programFolder() + "elsewhere\\";
  std::filesystem::create_directory(folder);
  writeCustomFile(folder + "Tintora_custom.txt");
  start(Launch{.folder = folder, .pathGiven = false});
  choose(0);
  EXPECT_EQ(title(), "Night");
  end();
  std::filesystem::remove_all(folder);
}

// The program's folder is looked for in the whole command line, including the arguments.
TEST_F(CustomFile, IsNotFoundBehindAnArgumentWithAFolder) {
  writeCustomFile(customFile());
  start("C:\\windows\\picture.png");
  choose(5);
  EXPECT_EQ(title(), "Invert ");
}

}  // namespace
}  // namespace tintora::windows_test
