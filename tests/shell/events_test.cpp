#include <string>
#include <vector>

#include "engine/custom_transforms.h"
#include "expected_calls.h"
#include "program_run.h"

namespace tintora {
namespace {

using platform::EventKind;
using platform::nullDesktop;
using platform::Window;
using Events = ShellTest;
using DroppedFiles = ShellTest;

TEST_F(Events, ClosingTheMainWindowIsLeftToTheDesktop) {
  play([]() -> Script {
    co_yield keyDown('H');
    co_yield happens(EventKind::Closing, mainWindow());
    expectCalls({});
    EXPECT_FALSE(nullDesktop().handled);
    EXPECT_FALSE(nullDesktop().quitResult);
  });
}

TEST_F(Events, TheEndOfAWindowEndsTheProgram) {
  for (const char* window : {"main", "control", "colour space"}) {
    SCOPED_TRACE(window);
    forgetEverything();
    const int result = play([window]() -> Script {
      co_yield happens(EventKind::Destroyed, *nullDesktop().window(window));
    });
    EXPECT_EQ(result, 0);
    EXPECT_EQ(nullDesktop().quitResult, 0);
    EXPECT_TRUE(nullDesktop().store);
  }
}

TEST_F(Events, PressingTheRightButtonDoesNothing) {
  play([]() -> Script {
    const std::vector<Window*> windows{&mainWindow(), &controlWindow(), &colourSpaceWindow()};
    for (Window* const window : windows) {
      co_yield mouse(EventKind::RightDown, *window, 1, 2);
      expectCalls({});
      EXPECT_TRUE(nullDesktop().handled);
    }
  });
}

TEST_F(DroppedFiles, AreAcceptedFromStartToEnd) {
  play([]() -> Script {
    EXPECT_TRUE(mainWindow().acceptsFiles);
    EXPECT_FALSE(controlWindow().acceptsFiles);
    EXPECT_FALSE(colourSpaceWindow().acceptsFiles);
    co_return;
  });
  EXPECT_FALSE(mainWindow().acceptsFiles);
}

TEST_F(DroppedFiles, OnlyRepaintTheControlWindow) {
  const ProgramFolder folder;
  folder.writeCustomTransforms("Warm\n1 0 0 0\n0 1 0 0\n0 0 0.5 0\n");
  nullDesktop().commandLine = folder.program();
  play([&folder]() -> Script {
    co_yield keyDown('H');
    folder.writeCustomTransforms("Cool\n0.5 0 0 0\n0 1 0 0\n0 0 1 0\n");
    const std::string before = describe(transformSettings);
    co_yield happens(EventKind::FilesDropped, mainWindow());
    expectCalls(painted());
    EXPECT_EQ(describe(transformSettings), before);
    EXPECT_EQ(customTransforms.size(), 1U);
    EXPECT_EQ(customTransforms.at(0).name, "Warm");
    EXPECT_TRUE(mainWindow().acceptsFiles);
  });
}

}  // namespace
}  // namespace tintora
