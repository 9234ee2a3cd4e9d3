#include <string>
#include <utility>
#include <vector>

#include "expected_calls.h"
#include "program_run.h"
#include "shell/shell_state.h"

namespace tintora {
namespace {

using platform::Event;
using platform::EventKind;
using platform::WindowForm;
using WindowForms = ShellTest;
using FrameToggle = ShellTest;
using HitTransparency = ShellTest;

Event closesControl() {
  return happens(EventKind::Closing, controlWindow());
}

// The user's maximise button.
void maximise() {
  mainWindow().maximised = true;
  mainWindow().form =
      shellState.framed ? WindowForm::FramedMaximised : WindowForm::FramelessMaximised;
}

enum class Do { Nothing, Maximise, Space, Esc, FrameCommand, F, FullScreenCommand, CloseControl };

Event eventOf(Do what) {
  switch (what) {
    case Do::Space:
      return keyDown(32);
    case Do::Esc:
      return keyDown(27);
    case Do::FrameCommand:
      return command(51);
    case Do::F:
      return keyDown('F');
    case Do::FullScreenCommand:
      return command(54);
    case Do::CloseControl:
      return closesControl();
    case Do::Maximise:
    case Do::Nothing:
      break;
  }
  return happens(EventKind::KeyUp, mainWindow());
}

struct FormRow {
  const char* what;
  std::vector<Do> steps;
  WindowForm form;
  bool framed;
  bool hitTransparent = false;
};

const std::vector<FormRow> formRows{
    {"at start", {Do::Nothing}, WindowForm::Framed, true},
    {"Space", {Do::Space}, WindowForm::Frameless, false},
    {"Space twice", {Do::Space, Do::Space}, WindowForm::Framed, true},
    {"Space, Esc", {Do::Space, Do::Esc}, WindowForm::Framed, true},
    {"Space, Esc twice", {Do::Space, Do::Esc, Do::Esc}, WindowForm::Framed, true},
    {"Esc", {Do::Esc}, WindowForm::Framed, true},
    {"command", {Do::FrameCommand}, WindowForm::Frameless, false},
    {"command twice", {Do::FrameCommand, Do::FrameCommand}, WindowForm::Framed, true},
    {"command, Esc", {Do::FrameCommand, Do::Esc}, WindowForm::Framed, true},
    {"maximised, Space", {Do::Maximise, Do::Space}, WindowForm::FramelessMaximised, false},
    {"maximised, Space twice",
     {Do::Maximise, Do::Space, Do::Space},
     WindowForm::FramedMaximised,
     true},
    {"maximised, Space, Esc",
     {Do::Maximise, Do::Space, Do::Esc},
     WindowForm::FramedMaximised,
     true},
    {"frameless, maximised, Space",
     {Do::Space, Do::Maximise, Do::Space},
     WindowForm::FramedMaximised,
     true},
    {"maximised, command", {Do::Maximise, Do::FrameCommand}, WindowForm::Frameless, false},
    {"frameless, maximised, command",
     {Do::Space, Do::Maximise, Do::FrameCommand},
     WindowForm::Framed,
     true},
    {"F", {Do::F}, WindowForm::FullScreen, false, true},
    {"full screen command", {Do::FullScreenCommand}, WindowForm::FullScreen, false, true},
    {"F, Space", {Do::F, Do::Space}, WindowForm::FullScreen, false, true},
    {"F, Esc", {Do::F, Do::Esc}, WindowForm::FullScreen, false, true},
    {"F, command", {Do::F, Do::FrameCommand}, WindowForm::FullScreen, false, true},
    {"F twice", {Do::F, Do::F}, WindowForm::Framed, true},
    {"F, full screen command", {Do::F, Do::FullScreenCommand}, WindowForm::Framed, true},
    {"full screen command, F", {Do::FullScreenCommand, Do::F}, WindowForm::Framed, true},
    {"F, control window closed", {Do::F, Do::CloseControl}, WindowForm::Framed, true},
    {"frameless, F twice", {Do::Space, Do::F, Do::F}, WindowForm::Framed, true},
    // A maximised window counts as one that leaves full screen.
    {"maximised, F", {Do::Maximise, Do::F}, WindowForm::Framed, true},
    {"maximised, full screen command",
     {Do::Maximise, Do::FullScreenCommand},
     WindowForm::Framed,
     true},
    {"maximised, control window closed",
     {Do::Maximise, Do::CloseControl},
     WindowForm::Framed,
     true},
};

TEST_F(WindowForms, FollowFromWhatTheUserDoes) {
  for (const FormRow& row : formRows) {
    SCOPED_TRACE(row.what);
    forgetEverything();
    play([&row]() -> Script {
      for (const Do step : row.steps) {
        if (step == Do::Maximise) maximise();
        co_yield eventOf(step);
      }
      EXPECT_EQ(mainWindow().form, row.form);
      EXPECT_EQ(mainWindow().hitTransparent, row.hitTransparent);
      EXPECT_EQ(shellState.framed, row.framed);
      EXPECT_EQ(shellState.fullScreen, row.form == WindowForm::FullScreen);
    });
  }
}

TEST_F(FrameToggle, KeepsBoundsAndHitTransparency) {
  play([]() -> Script {
    co_yield keyDown('H');
    const platform::Rect bounds = mainWindow().bounds;
    co_yield keyDown(32);
    EXPECT_EQ(mainWindow().bounds, bounds);
    EXPECT_TRUE(mainWindow().hitTransparent);
    co_yield command(51);
    EXPECT_EQ(mainWindow().bounds, bounds);
    EXPECT_TRUE(mainWindow().hitTransparent);
  });
}

TEST_F(FrameToggle, ShowsTheWindowAndFitsTheMagnifierAgain) {
  const Calls frameless = joined({{"setWindowForm main frameless", "showWindow main shown",
                                   "fitMagnifier magnifier 0,0,500,400"},
                                  sourceSet("710,340,1210,740"),
                                  besideMain()});
  const Calls framed = joined(
      {{"setWindowForm main framed", "showWindow main shown", "fitMagnifier magnifier 0,0,484,361"},
       sourceSet("718,371,1210,740"),
       besideMain()});
  const std::vector<std::pair<Do, Do>> ways{{Do::Space, Do::Space},
                                            {Do::Space, Do::Esc},
                                            {Do::FrameCommand, Do::FrameCommand},
                                            {Do::FrameCommand, Do::Space}};
  for (const auto& [off, on] : ways) {
    forgetEverything();
    play([&, off = off, on = on]() -> Script {
      co_yield eventOf(off);
      expectCalls(frameless);
      co_yield eventOf(on);
      expectCalls(framed);
      EXPECT_TRUE(shellState.docked);
    });
  }
}

TEST_F(FrameToggle, OfAMaximisedWindowCoversTheScreen) {
  play([]() -> Script {
    maximise();
    co_yield keyDown(32);
    expectCalls(joined({{"setWindowForm main frameless maximised", "showWindow main shown",
                         "fitMagnifier magnifier 0,0,1920,1080"},
                        sourceSet("710,340,1920,1080"),
                        besideMain()}));
    co_yield keyDown(32);
    expectCalls(joined({{"setWindowForm main framed maximised", "showWindow main shown",
                         "fitMagnifier magnifier 0,0,1920,1080"},
                        sourceSet("718,371,1920,1080"),
                        besideMain()}));
    co_yield command(51);
    expectCalls(joined({{"setWindowForm main frameless", "showWindow main shown",
                         "fitMagnifier magnifier 0,0,500,400"},
                        sourceSet("710,340,1210,740"),
                        besideMain()}));
  });
}

TEST_F(FrameToggle, IsIgnoredInFullScreen) {
  play([]() -> Script {
    co_yield keyDown('F');
    const std::vector<Do> ways{Do::Space, Do::Esc, Do::FrameCommand};
    for (const Do way : ways) {
      co_yield eventOf(way);
      expectCalls({});
      EXPECT_FALSE(shellState.framed);
    }
  });
}

// Every way into hit transparency and every way out of it.
TEST_F(HitTransparency, IsReachedAndLeftByEveryPath) {
  struct Row {
    const char* what;
    std::vector<Event (*)()> into;
    Event (*out)();
  };
  const auto h = [] { return keyDown('H'); };
  const auto hCommand = [] { return command(53); };
  const auto f = [] { return keyDown('F'); };
  const auto fCommand = [] { return command(54); };
  const auto space = [] { return keyDown(32); };
  const std::vector<Row> rows{
      {"H, H", {h}, h},
      {"H, command", {h}, hCommand},
      {"H, closed", {h}, &closesControl},
      {"command, H", {hCommand}, h},
      {"command, command", {hCommand}, hCommand},
      {"command, closed", {hCommand}, &closesControl},
      {"F, F", {f}, f},
      {"F, command", {f}, fCommand},
      {"F, closed", {f}, &closesControl},
      {"full screen command, F", {fCommand}, f},
      {"full screen command, command", {fCommand}, fCommand},
      {"full screen command, closed", {fCommand}, &closesControl},
      {"H and F, F", {h, f}, f},
      {"H and full screen command, F", {h, fCommand}, f},
      {"H and full screen command, closed", {h, fCommand}, &closesControl},
      {"H in a frameless window", {space, h}, h},
      {"H, then frameless", {h, space}, h},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    forgetEverything();
    play([&row]() -> Script {
      for (const auto event : row.into) co_yield event();
      EXPECT_TRUE(mainWindow().hitTransparent);
      EXPECT_TRUE(shellState.hitTransparent);
      EXPECT_EQ(controlWindow().shown, platform::ShowState::Shown);
      co_yield row.out();
      EXPECT_FALSE(mainWindow().hitTransparent);
      EXPECT_FALSE(shellState.hitTransparent);
      EXPECT_FALSE(shellState.fullScreen);
      EXPECT_EQ(controlWindow().shown, platform::ShowState::Hidden);
    });
  }
}

TEST_F(HitTransparency, CentresTheControlWindowOnTheMainWindow) {
  struct Row {
    platform::Rect main;
    const char* control;
  };
  const std::vector<Row> rows{{{100, 200, 600, 600}, "150,340,550,460"},
                              {{0, 0, 1000, 500}, "300,190,700,310"},
                              {{101, 201, 602, 602}, "151,341,551,461"},
                              {{1500, 900, 1600, 1000}, "1350,890,1750,1010"}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.control);
    for (const bool byKey : {true, false}) {
      forgetEverything();
      play([&row, byKey]() -> Script {
        mainWindow().bounds = row.main;
        co_yield byKey ? keyDown('H') : command(53);
        expectCalls(joined({{std::string("setWindowBounds control ") + row.control,
                             "showWindow control shown", "setHitTransparent main true"},
                            painted()}));
        EXPECT_EQ(mainWindow().form, WindowForm::Framed);
        co_yield byKey ? keyDown('H') : command(53);
        expectCalls({"showWindow control hidden", "setHitTransparent main false"});
      });
    }
  }
}

TEST_F(HitTransparency, IsNotToggledInFullScreen) {
  play([]() -> Script {
    co_yield keyDown('F');
    co_yield keyDown('H');
    expectCalls({});
    co_yield command(53);
    expectCalls({});
    EXPECT_TRUE(shellState.hitTransparent);
  });
}

}  // namespace
}  // namespace tintora
