// The user's own transforms, from the file beside the program to the screen.
#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "engine/custom_transforms.h"
#include "engine/effect_matrix.h"
#include "expected_calls.h"
#include "program_run.h"
#include "shell/shell_state.h"

namespace tintora {
namespace {

using platform::nullDesktop;
using Mode = TransformMode;

const std::string threeTransforms =
    "Warm\n1 0 0 0\n0 1 0 0\n0 0 0.5 0\n"
    "$Deutan correction\n0.5 0 0 0.2\n0 0.5 0 0.2\n0 0 0.5 0.2\n"
    "Bare\n1 0 0 0\n0 1 0 0\n0 0 1 0\n";

class CustomTransforms : public ShellTest {
 protected:
  CustomTransforms() { start(threeTransforms); }

  void start(const std::string& file) const {
    forgetEverything();
    folder.writeCustomTransforms(file);
    nullDesktop().commandLine = folder.program();
  }

  ProgramFolder folder;
};

TEST_F(CustomTransforms, AreAppliedWhenPicked) {
  play([]() -> Script {
    co_yield keyDown('H');
    co_yield command(0);
    expectCalls(joined(
        {{"setTitle main Warm", "setColourEffect magnifier"}, magnifierInvalidated(), painted()}));
    EXPECT_EQ(transformSettings.Selected, Mode::Custom);
    EXPECT_EQ(nullDesktop().colourEffect, (EffectMatrix{{{1, 0, 0, 0, 0},
                                                         {0, 1, 0, 0, 0},
                                                         {0, 0, 0.5, 0, 0},
                                                         {0, 0, 0, 1, 0},
                                                         {0, 0, 0, 0, 1}}}));
    co_yield command(1);
    expectCalls(joined({{"setTitle main Deutan correction", "setColourEffect magnifier",
                         "setTitle main Deutan correction   100% (mouse-wheel adjusts %)"},
                        magnifierInvalidated(),
                        painted()}));
    EXPECT_EQ(transformSettings.customIndex, 1);
    EXPECT_EQ(nullDesktop().colourEffect[0][0], 0.5F);
    EXPECT_EQ(nullDesktop().colourEffect[4][2], 0.2F);
  });
  EXPECT_EQ(nullDesktop().store->at("Selected"), 1U);
}

TEST_F(CustomTransforms, FollowTheSeverityIfAdjustable) {
  nullDesktop().store = Store{{"Selected", 1}, {"ScrollPc", 60}};
  play([]() -> Script {
    EXPECT_EQ(title(), "Deutan correction   60% (mouse-wheel adjusts %)");
    // The last step reaches the limit, which removes the rounding error of the others.
    for (int turn = 0; turn < 13; ++turn) co_yield wheel(false);
    EXPECT_EQ(title(), "Deutan correction   0% (mouse-wheel adjusts %)");
    EXPECT_EQ(nullDesktop().colourEffect, identityEffectMatrix);
  });
}

TEST_F(CustomTransforms, AreAppliedAtStartUpBeforeAndWithTheMarks) {
  nullDesktop().store = Store{{"Selected", 0}};
  play([]() -> Script {
    const Calls& calls = nullDesktop().calls;
    // First alone, then once more as the mode in force.
    const auto unmagnified = std::ranges::find(calls, "setUnmagnified magnifier");
    EXPECT_EQ(Calls(unmagnified + 1, unmagnified + 3),
              (Calls{"setTitle main Warm", "setColourEffect magnifier"}));
    const auto shown = std::ranges::find(calls, "showWindow main as started");
    EXPECT_EQ(Calls(shown, calls.end()), joined({{"showWindow main as started"},
                                                 sourceSet("718,371,1210,740"),
                                                 otherEffect("Warm"),
                                                 {"showWindow colour space as started"}}));
    co_return;
  });
}

TEST_F(CustomTransforms, AreTurnedOffAndOnByTab) {
  play([]() -> Script {
    co_yield keyDown('H');
    co_yield command(1);
    const EffectMatrix correction = nullDesktop().colourEffect;
    co_yield keyDown(9);
    expectCalls(joined({switchedOff(), painted()}));
    EXPECT_EQ(nullDesktop().colourEffect, identityEffectMatrix);
    // On again without a change of the marks.
    co_yield keyDown(9);
    expectCalls(joined({{"setTitle main Deutan correction", "setColourEffect magnifier",
                         "setTitle main Deutan correction   100% (mouse-wheel adjusts %)"},
                        painted()}));
    EXPECT_EQ(nullDesktop().colourEffect, correction);
    EXPECT_FALSE(transformSettings.transformOff);
    // And by the command, which counts from the custom transforms.
    co_yield command(53);
    EXPECT_TRUE(transformSettings.transformOff);
    co_yield command(53);
    EXPECT_FALSE(transformSettings.transformOff);
    EXPECT_EQ(transformSettings.customIndex, 1);
  });
}

TEST_F(CustomTransforms, KeepTheLastDeficiencyForTheKeysOfTheViewers) {
  play([]() -> Script {
    co_yield keyDown('D');
    co_yield command(2);
    EXPECT_EQ(title(), "Bare");
    co_yield keyDown('A');
    EXPECT_EQ(title(), " Daltonize - Deuteranope 100% severity");
  });
}

TEST_F(CustomTransforms, FallBackToTheFirstIfTheFileHasBecomeShorter) {
  start("Only\n0.5 0 0 0\n0 1 0 0\n0 0 1 0\n");
  play([]() -> Script {
    transformSettings.Selected = Mode::Custom;
    transformSettings.customIndex = 2;
    co_yield wheel(false);
    EXPECT_EQ(title(), "Only");
    EXPECT_EQ(transformSettings.customIndex, 0);
  });
}

TEST_F(CustomTransforms, StartWithTheEntriesBeforeAMalformedOne) {
  struct Row {
    const char* what;
    std::string file;
    std::size_t count;
  };
  const std::string warm = "Warm\n1 0 0 0\n0 1 0 0\n0 0 0.5 0\n";
  const std::vector<Row> rows{
      {"no file to speak of", "", 0},
      {"whole", threeTransforms, 3},
      {"a last record cut short", warm + "Short\n1 0 0 0\n0 1 0 0\n", 1},
      {"three numbers", warm + "Three\n1 0 0\n0 1 0 0\n0 0 1 0\n" + warm, 1},
      {"five numbers", warm + "Five\n1 0 0 0 0\n0 1 0 0\n0 0 1 0\n" + warm, 1},
      {"a tab at the end", "Tab\n1 0 0 0\t\n0 1 0 0\n0 0 1 0\n", 1},
      {"a blank line between", warm + "\n" + warm, 1},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    start(row.file);
    play([&row]() -> Script {
      EXPECT_EQ(customTransforms.size(), row.count);
      const auto& entries = shellState.menus.main->entries;
      // The custom section takes a heading and a separator besides.
      const std::size_t section = row.count == 0 ? 0 : row.count + 2;
      EXPECT_EQ(entries.size(), 17 + section);
      EXPECT_EQ(entries.at(section + 1).command, static_cast<int>(row.count) + 1);
      co_return;
    });
  }
}

TEST_F(CustomTransforms, AreLookedForBesideTheProgram) {
  struct Row {
    std::string commandLine;
    std::size_t count;
  };
  const std::string program = folder.program();
  const std::vector<Row> rows{
      {program, 3},
      {"\"" + program + "\"", 3},
      {" \t\"" + program + "\" ", 3},
      {program + " -st", 3},
      {"/nowhere/Tintora", 0},
      {"Tintora", 0},
      {"", 0},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.commandLine);
    forgetEverything();
    nullDesktop().commandLine = row.commandLine;
    playNothing();
    EXPECT_EQ(customTransforms.size(), row.count);
  }
}

TEST_F(CustomTransforms, AreLookedForInTheCurrentDirectoryByDefault) {
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(std::filesystem::path(folder.program()).parent_path());
  for (const char* commandLine : {"Tintora", "\"Tintora\"", "Tintora -st"}) {
    SCOPED_TRACE(commandLine);
    forgetEverything();
    nullDesktop().commandLine = commandLine;
    playNothing();
    EXPECT_EQ(customTransforms.size(), 3U);
  }
  std::filesystem::current_path(before);
}

}  // namespace
}  // namespace tintora
