#include <algorithm>
#include <string>
#include <vector>

#include "engine/effect_matrix.h"
#include "expected_calls.h"
#include "program_run.h"
#include "shell/shell_state.h"

namespace tintora {
namespace {

using platform::Event;
using platform::EventKind;
using platform::nullDesktop;
using ClipboardCapture = ShellTest;

const std::string confirmation = "Image Copied To Clipboard";

Event copies() {
  return command(52);
}
Event timeElapses() {
  return happens(EventKind::TimerElapsed, mainWindow());
}

// The cursor is hidden and everything is painted before the picture is taken.
Calls copied(bool pending) {
  return joined({{"showCursor false", "handleWaitingEvents", "captureClientArea main",
                  "putOnClipboard main", "deletePicture", "setTitle main " + confirmation},
                 pending ? Calls{"stopTimer main"} : Calls{},
                 {"startTimer main 3000", "showCursor true", "handleWaitingEvents"}});
}

TEST_F(ClipboardCapture, CopiesThenConfirmsForThreeSeconds) {
  play([]() -> Script {
    co_yield copies();
    expectCalls(copied(false));
    EXPECT_EQ(title(), confirmation);
    EXPECT_EQ(mainWindow().timer, 3000);
    EXPECT_TRUE(nullDesktop().cursorShown);
    EXPECT_EQ(nullDesktop().picturesTaken, 1);
    EXPECT_EQ(nullDesktop().picturesHeld, 0);

    co_yield timeElapses();
    expectCalls(
        joined({simulated(1, " Simulation - Protanope 100% severity"), {"stopTimer main"}}));
    EXPECT_EQ(title(), " Simulation - Protanope 100% severity");
    EXPECT_FALSE(mainWindow().timer);
    EXPECT_FALSE(shellState.titleTimerPending);
  });
}

TEST_F(ClipboardCapture, RestartsTheThreeSecondsWithASecondCopy) {
  play([]() -> Script {
    co_yield copies();
    co_yield copies();
    expectCalls(copied(true));
    EXPECT_EQ(title(), confirmation);
    EXPECT_EQ(mainWindow().timer, 3000);
    co_yield timeElapses();
    EXPECT_FALSE(mainWindow().timer);
    // The time is over, so a third copy has no timer to stop.
    co_yield copies();
    expectCalls(copied(false));
  });
}

TEST_F(ClipboardCapture, ComesByKeyAndByCommand) {
  play([]() -> Script {
    const std::string before = describe(transformSettings);
    const std::vector<int> keys{'C', 'O'};
    bool pending = false;
    for (const int key : keys) {
      holdKeys(false, true);
      co_yield keyDown(key);
      expectCalls(copied(pending));
      pending = true;
    }
    co_yield copies();
    expectCalls(copied(true));
    EXPECT_EQ(describe(transformSettings), before);
    EXPECT_EQ(nullDesktop().picturesTaken, 3);
    EXPECT_EQ(nullDesktop().picturesHeld, 0);
  });
}

TEST_F(ClipboardCapture, CopiesWithControlAndOInsteadOfChoosingContrast) {
  play([]() -> Script {
    holdKeys(false, true);
    co_yield keyDown('O');
    EXPECT_EQ(transformSettings.Selected, TransformMode::Protan);
    EXPECT_EQ(nullDesktop().picturesTaken, 1);
    holdKeys(false, false);
    co_yield keyDown('O');
    EXPECT_EQ(transformSettings.Selected, TransformMode::Contrast);
    EXPECT_EQ(nullDesktop().picturesTaken, 1);
  });
}

TEST_F(ClipboardCapture, ConfirmsEvenIfTheClipboardIsNotAvailable) {
  nullDesktop().hasClipboard = false;
  play([]() -> Script {
    co_yield copies();
    expectCalls(copied(false));
    EXPECT_EQ(title(), confirmation);
    EXPECT_EQ(nullDesktop().picturesHeld, 0);
  });
}

TEST_F(ClipboardCapture, CopiesTheMainWindowsClientAreaFromAnyWindow) {
  play([]() -> Script {
    co_yield keyDown('H');
    Event event = copies();
    event.window = &controlWindow();
    co_yield event;
    expectCalls(copied(false));
  });
}

TEST_F(ClipboardCapture, IsConfirmedOnlyUntilTheNextChange) {
  play([]() -> Script {
    co_yield copies();
    co_yield keyDown('G');
    EXPECT_EQ(title(), "Greyscale");
    EXPECT_EQ(mainWindow().timer, 3000);
    co_yield timeElapses();
    expectCalls(joined({otherEffect("Greyscale"), {"stopTimer main"}}));
    EXPECT_EQ(title(), "Greyscale");
  });
}

// When the time elapses, the transform is applied, whether it was on or off.
TEST_F(ClipboardCapture, TurnsTheTransformOnAgainWhenTheTimeElapses) {
  play([]() -> Script {
    co_yield keyDown(9);
    co_yield copies();
    EXPECT_TRUE(transformSettings.transformOff);
    EXPECT_EQ(nullDesktop().colourEffect, identityEffectMatrix);
    co_yield timeElapses();
    EXPECT_FALSE(transformSettings.transformOff);
    EXPECT_NE(nullDesktop().colourEffect, identityEffectMatrix);
    EXPECT_EQ(title(), " Simulation - Protanope 100% severity");
  });
}

TEST_F(ClipboardCapture, GivesACustomTransformItsTitleBack) {
  const ProgramFolder folder;
  folder.writeCustomTransforms("$Soft\n0.5 0 0 0\n0 1 0 0\n0 0 0.5 0\n");
  nullDesktop().commandLine = folder.program();
  nullDesktop().store = Store{{"Selected", 0}, {"ScrollPc", 40}};
  play([]() -> Script {
    co_yield command(53);  // one further, for the one custom transform
    EXPECT_EQ(title(), confirmation);
    co_yield timeElapses();
    EXPECT_EQ(title(), "Soft   40% (mouse-wheel adjusts %)");
    EXPECT_FALSE(mainWindow().timer);
  });
}

}  // namespace
}  // namespace tintora
