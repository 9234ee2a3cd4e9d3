#include <string>
#include <vector>

#include "colour_space/colour_space_view.h"
#include "expected_calls.h"
#include "program_run.h"
#include "shell/shell_state.h"

namespace tintora {
namespace {

using platform::Event;
using platform::EventKind;
using platform::nullDesktop;
using platform::Rect;
using platform::WindowForm;
using FullScreen = ShellTest;

constexpr Rect placed{100, 200, 700, 650};
const std::string fullScreenText = "Full screen mode, press F to exit";
const std::string hitTransparentText = "Hit Transparent, Press H to exit";

// On a screen of 1600 x 900, with the window away from its middle.
void placeWindow() {
  mainWindow().bounds = placed;
}

const Calls coversScreen =
    joined({{"setWindowBounds main 0,0,1600,900", "fitMagnifier magnifier 0,0,1600,900",
             "showWindow main maximised"},
            sourceSet("0,0,1600,900")});
const Calls showsControl{"setWindowBounds control 600,390,1000,510", "showWindow control shown",
                         "setHitTransparent main true"};
const Calls leaves = joined({{"setWindowForm main framed", "setHitTransparent main false",
                              "setWindowBounds main 100,200,700,650", "showWindow main normal",
                              "fitMagnifier magnifier 0,0,584,411"},
                             sourceSet("108,231,700,650"),
                             {"showWindow control hidden"}});

class FullScreenOnASmallScreen : public ShellTest {
 protected:
  FullScreenOnASmallScreen() { nullDesktop().screen = {1600, 900}; }
};

TEST_F(FullScreenOnASmallScreen, IsHitTransparentAtOnceWhenEnteredByKey) {
  play([]() -> Script {
    placeWindow();
    co_yield keyDown('F');
    expectCalls(joined({{"setWindowForm main full screen", "setHitTransparent main true"},
                        coversScreen,
                        showsControl}));
    EXPECT_EQ(shellState.controlText, fullScreenText);
    EXPECT_TRUE(shellState.fullScreen);
    EXPECT_TRUE(shellState.hitTransparent);
    EXPECT_FALSE(shellState.framed);
    EXPECT_FALSE(shellState.docked);
  });
}

TEST_F(FullScreenOnASmallScreen, IsHitTransparentWithTheControlWindowWhenEnteredByCommand) {
  play([]() -> Script {
    placeWindow();
    co_yield command(54);
    expectCalls(joined({{"setWindowForm main full screen"}, coversScreen, showsControl}));
    EXPECT_TRUE(shellState.fullScreen);
    EXPECT_TRUE(shellState.hitTransparent);
    EXPECT_FALSE(shellState.framed);
    EXPECT_FALSE(shellState.docked);
  });
}

// The control window stays where it is, with a new name.
TEST_F(FullScreenOnASmallScreen, LeavesAVisibleControlWindowAlone) {
  play([]() -> Script {
    placeWindow();
    co_yield keyDown('H');
    controlWindow().bounds = {1, 2, 401, 122};
    co_yield keyDown('F');
    expectCalls(joined({{"setWindowForm main full screen", "setHitTransparent main true"},
                        coversScreen,
                        painted(fullScreenText)}));
    EXPECT_EQ(text(controlWindow().bounds), "1,2,401,122");
    co_yield keyDown('F');
    co_yield keyDown('H');
    co_yield command(54);
    expectCalls(
        joined({{"setWindowForm main full screen"}, coversScreen, painted(fullScreenText)}));
  });
}

TEST_F(FullScreenOnASmallScreen, EndsWithAFrameAtTheFormerPlace) {
  const std::vector<Event (*)()> entries{[] { return keyDown('F'); }, [] { return command(54); }};
  const std::vector<Event (*)()> exits{[] { return keyDown('F'); }, [] { return command(54); }};
  for (const auto enter : entries) {
    for (const auto leave : exits) {
      forgetEverything();
      nullDesktop().screen = {1600, 900};
      play([enter, leave]() -> Script {
        placeWindow();
        co_yield enter();
        co_yield leave();
        expectCalls(leaves);
        EXPECT_EQ(mainWindow().bounds, placed);
        EXPECT_FALSE(mainWindow().maximised);
        EXPECT_FALSE(shellState.fullScreen);
        EXPECT_FALSE(shellState.hitTransparent);
        EXPECT_TRUE(shellState.framed);
        EXPECT_FALSE(shellState.docked);
        EXPECT_EQ(shellState.controlText, hitTransparentText);
      });
    }
  }
}

TEST_F(FullScreenOnASmallScreen, EndsWhenTheControlWindowIsClosed) {
  play([]() -> Script {
    placeWindow();
    co_yield keyDown('F');
    co_yield happens(EventKind::Closing, controlWindow());
    expectCalls(joined({{"showWindow control hidden", "setHitTransparent main false"},
                        painted(fullScreenText),
                        leaves}));
    EXPECT_TRUE(nullDesktop().handled);
    EXPECT_FALSE(shellState.fullScreen);
    EXPECT_FALSE(shellState.hitTransparent);
    EXPECT_EQ(shellState.controlText, hitTransparentText);
  });
}

TEST_F(FullScreen, RemembersThePlaceOfEachEntry) {
  play([]() -> Script {
    const std::vector<Rect> places{{10, 20, 510, 420}, {300, 300, 900, 800}};
    for (const Rect& bounds : places) {
      mainWindow().bounds = bounds;
      co_yield keyDown('F');
      EXPECT_EQ(text(mainWindow().bounds), "0,0,1920,1080");
      co_yield keyDown('F');
      EXPECT_EQ(mainWindow().bounds, bounds);
    }
  });
}

// The named keys do nothing; F ends full screen and hit transparency with it.
TEST_F(FullScreen, IsLeftByF) {
  play([]() -> Script {
    co_yield keyDown('F');
    const std::vector<int> ignored{'H', 'W', 32, 27};
    for (const int key : ignored) {
      SCOPED_TRACE(key);
      co_yield keyDown(key);
      expectCalls({});
      EXPECT_TRUE(shellState.fullScreen);
      EXPECT_TRUE(shellState.hitTransparent);
    }
    co_yield command(700);
    expectCalls({});
    co_yield keyDown('F');
    EXPECT_FALSE(shellState.fullScreen);
    EXPECT_FALSE(shellState.hitTransparent);
    EXPECT_FALSE(mainWindow().hitTransparent);
  });
}

TEST_F(FullScreen, AllowsToChooseTheTransformAndTheViews) {
  play([]() -> Script {
    co_yield keyDown('F');
    co_yield keyDown('G');
    EXPECT_EQ(title(), "Greyscale");
    EXPECT_EQ(nullDesktop().painted.texts.at(0).text, "Greyscale");
    co_yield keyDown('R');
    expectCalls(joined({painted(fullScreenText), {"showWindow colour space shown"}}));
    EXPECT_EQ(shellState.view, ViewCode::RgbCube);
  });
}

TEST_F(FullScreen, UndocksTheColourSpaceWindowUntilKDocksItAgain) {
  play([]() -> Script {
    co_yield keyDown('F');
    co_yield keyDown('F');
    co_yield happens(EventKind::Moving, mainWindow());
    expectCalls(sourceSet("718,371,1210,740"));
    co_yield keyDown('K');
    expectCalls(besideMain());
  });
}

// Full screen was never entered, so the window returns to its first bounds.
TEST_F(FullScreen, ReturnsAWindowMaximisedFromTheStartToItsFirstPlace) {
  play([]() -> Script {
    mainWindow().bounds = {0, 0, 1920, 1080};
    mainWindow().maximised = true;
    co_yield keyDown('F');
    EXPECT_EQ(mainWindow().form, WindowForm::Framed);
    EXPECT_EQ(mainWindow().bounds, (Rect{710, 340, 1210, 740}));
    EXPECT_FALSE(mainWindow().maximised);
  });
}

// A window that the user maximised returns to the bounds at which full screen was last entered.
TEST_F(FullScreen, LeavesAMaximisedWindow) {
  play([]() -> Script {
    mainWindow().bounds = placed;
    co_yield keyDown('F');
    co_yield keyDown('F');
    mainWindow().bounds = {0, 0, 1920, 1080};
    mainWindow().maximised = true;
    co_yield keyDown('F');
    EXPECT_EQ(mainWindow().form, WindowForm::Framed);
    EXPECT_EQ(mainWindow().shown, platform::ShowState::Normal);
    EXPECT_EQ(mainWindow().bounds, placed);
    EXPECT_FALSE(shellState.fullScreen);
  });
}

}  // namespace
}  // namespace tintora
