#include <algorithm>
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
using ViewTracking = ShellTest;
using Sizing = ShellTest;

// The bounds of the magnifier's source, in words.
std::string source() {
  return text(nullDesktop().magnifierSource);
}

TEST_F(ViewTracking, AimsAtTheClientAreaAfterEveryEvent) {
  play([]() -> Script {
    struct Row {
      Rect bounds;
      const char* source;
    };
    const std::vector<Row> rows{{{100, 200, 600, 700}, "108,231,600,700"},
                                {{-300, -20, 10, 400}, "-292,11,10,400"},
                                {{1800, 1000, 2000, 1200}, "1808,1031,2000,1200"}};
    const std::vector<EventKind> kinds{
        EventKind::KeyDown,  EventKind::KeyUp,     EventKind::Command,      EventKind::LeftDown,
        EventKind::LeftUp,   EventKind::RightDown, EventKind::RightUp,      EventKind::MouseMoved,
        EventKind::Painting, EventKind::Moving,    EventKind::FilesDropped, EventKind::TimerElapsed,
        EventKind::Closing};
    for (const EventKind kind : kinds) {
      for (const Row& row : rows) {
        SCOPED_TRACE(std::to_string(static_cast<int>(kind)) + ' ' + row.source);
        mainWindow().bounds = row.bounds;
        nullDesktop().magnifierSource = {};
        co_yield happens(kind, mainWindow());
        EXPECT_EQ(source(), row.source);
        EXPECT_EQ(shellState.mainBounds, mainWindow().bounds);
      }
    }
  });
}

TEST_F(ViewTracking, FollowsTheClientAreaOfEveryForm) {
  play([]() -> Script {
    mainWindow().bounds = {100, 200, 600, 700};
    struct Row {
      WindowForm form;
      bool maximised;
      const char* source;
    };
    const std::vector<Row> rows{{WindowForm::Framed, false, "108,231,600,700"},
                                {WindowForm::Frameless, false, "100,200,600,700"},
                                {WindowForm::FramedMaximised, true, "108,231,1920,1080"},
                                {WindowForm::FramelessMaximised, true, "100,200,1920,1080"},
                                {WindowForm::FullScreen, true, "100,200,1920,1080"}};
    for (const Row& row : rows) {
      SCOPED_TRACE(row.source);
      mainWindow().form = row.form;
      mainWindow().maximised = row.maximised;
      co_yield happens(EventKind::KeyUp, mainWindow());
      expectCalls({});
      EXPECT_EQ(source(), row.source);
    }
  });
}

// The source ends with the primary screen, unless nothing of the window lies before that end.
TEST_F(ViewTracking, AimsAtAWindowMaximisedOnAnotherMonitor) {
  play([]() -> Script {
    struct Row {
      Rect bounds;
      const char* source;
    };
    const std::vector<Row> rows{{{-1920, 0, 0, 1080}, "-1920,0,1920,1080"},
                                {{1919, 0, 3839, 1080}, "1919,0,1920,1080"},
                                {{1920, 0, 3840, 1080}, "1920,0,3840,1080"},
                                {{0, 1079, 1920, 2159}, "0,1079,1920,1080"},
                                {{0, 1080, 1920, 2160}, "0,1080,1920,2160"}};
    mainWindow().form = WindowForm::FramelessMaximised;
    mainWindow().maximised = true;
    for (const Row& row : rows) {
      mainWindow().bounds = row.bounds;
      co_yield happens(EventKind::KeyUp, mainWindow());
      EXPECT_EQ(source(), row.source);
    }
  });
}

TEST_F(ViewTracking, KeepsTheLastSourceWhileTheClientAreaIsEmpty) {
  play([]() -> Script {
    for (const Rect& bounds : {Rect{100, 200, 108, 700}, Rect{100, 200, 600, 231}}) {
      mainWindow().bounds = {100, 200, 109, 232};
      co_yield happens(EventKind::KeyUp, mainWindow());
      EXPECT_EQ(source(), "108,231,109,232");
      mainWindow().bounds = bounds;
      co_yield happens(EventKind::KeyUp, mainWindow());
      EXPECT_EQ(source(), "108,231,109,232");
    }
  });
}

TEST_F(ViewTracking, FollowsTheWindowWhileItIsDragged) {
  play([]() -> Script {
    for (int step = 1; step <= 20; ++step) {
      const Rect bounds{710 - 7 * step, 340 + 3 * step, 1210 - 7 * step, 740 + 3 * step};
      mainWindow().bounds = bounds;
      co_yield happens(EventKind::Moving, mainWindow());
      EXPECT_FALSE(nullDesktop().handled);
      EXPECT_EQ(source(),
                text(Rect{bounds.left + 8, bounds.top + 31, bounds.right, bounds.bottom}));
      EXPECT_EQ(text(colourSpaceWindow().bounds),
                text(Rect{bounds.right + 4, bounds.top, bounds.right + 404, bounds.top + 400}));
    }
  });
}

TEST_F(ViewTracking, FollowsAMovingMainWindowOnly) {
  play([]() -> Script {
    co_yield keyDown('H');
    mainWindow().bounds = {100, 200, 600, 700};
    co_yield happens(EventKind::Moving, mainWindow());
    expectCalls(joined({sourceSet("108,231,600,700"),
                        {"setWindowBounds colour space 604,200,1004,600"},
                        painted()}));
    co_yield happens(EventKind::Moving, controlWindow());
    expectCalls({});
    EXPECT_FALSE(nullDesktop().handled);
    EXPECT_TRUE(shellState.docked);
  });
}

TEST_F(Sizing, FitsTheMagnifierAndAimsItAndLaysOut) {
  play([]() -> Script {
    co_yield keyDown('H');
    const std::vector<EventKind> kinds{EventKind::Sized, EventKind::Sizing};
    for (const EventKind kind : kinds) {
      mainWindow().bounds = {100, 200, 800, 900};
      co_yield happens(kind, mainWindow());
      expectCalls(joined({{"fitMagnifier magnifier 0,0,684,661"},
                          sourceSet("108,231,800,900"),
                          {"setWindowBounds colour space 804,200,1204,600"},
                          painted()}));
      EXPECT_FALSE(nullDesktop().handled);
      EXPECT_TRUE(shellState.docked);
    }
  });
}

TEST_F(Sizing, FitsTheMagnifierToTheScreenWhenMaximised) {
  play([]() -> Script {
    mainWindow().maximised = true;
    Event event = happens(EventKind::Sized, mainWindow());
    event.maximised = true;
    co_yield event;
    expectCalls(joined({{"fitMagnifier magnifier 0,0,1920,1080"}, sourceSet("718,371,1920,1080")}));
    EXPECT_FALSE(shellState.docked);
  });
}

TEST_F(Sizing, OfTheControlWindowChangesNothing) {
  play([]() -> Script {
    co_yield keyDown('H');
    const std::vector<EventKind> kinds{EventKind::Sized, EventKind::Sizing};
    for (const EventKind kind : kinds) {
      controlWindow().bounds = {0, 0, 300, 300};
      co_yield happens(kind, controlWindow());
      expectCalls({});
      EXPECT_FALSE(nullDesktop().handled);
    }
  });
}

TEST_F(Sizing, OfTheColourSpaceWindowResizesTheRenderer) {
  play([]() -> Script {
    co_yield keyDown('H');
    const std::vector<EventKind> kinds{EventKind::Sized, EventKind::Sizing};
    int width = 600;
    for (const EventKind kind : kinds) {
      SCOPED_TRACE(width);
      const std::string right = std::to_string(1214 + width);
      colourSpaceWindow().bounds = {1214, 340, 1214 + width, 840};
      co_yield happens(kind, colourSpaceWindow());
      expectCalls(joined({{"fitMagnifier magnifier 0,0,484,361"},
                          sourceSet("718,371,1210,740"),
                          {"setWindowBounds colour space 1214,340," + right + ",840"},
                          {"releaseGraphicsDevice"},
                          deviceCreated(width - 16, 461),
                          viewsRefreshed(),
                          painted()}));
      EXPECT_EQ(colourSpaceView.width, width - 16);
      EXPECT_EQ(colourSpaceView.height, 461);
      width += 100;
    }
    // Nothing is asked for again if the size is the same.
    co_yield happens(EventKind::Sized, colourSpaceWindow());
    expectCalls(joined({{"fitMagnifier magnifier 0,0,484,361"},
                        sourceSet("718,371,1210,740"),
                        {"setWindowBounds colour space 1214,340,1914,840"},
                        painted()}));
  });
}

TEST_F(Sizing, RemembersASizeThatTheRendererRefuses) {
  play([]() -> Script {
    colourSpaceWindow().bounds = {0, 0, 20, 400};
    co_yield happens(EventKind::Sized, colourSpaceWindow());
    EXPECT_EQ(shellState.colourSpaceClientSize, (platform::Size{4, 361}));
    EXPECT_EQ(colourSpaceView.width, 384);
    EXPECT_EQ(colourSpaceView.height, 361);
  });
}

// The margins are 0 in this version; they are taken off wherever the magnifier is placed.
TEST_F(ViewTracking, LeavesTheMarginsOut) {
  shellState.magnifierTopOffset = 20;
  shellState.magnifierRightMargin = 30;
  play([]() -> Script {
    co_yield happens(EventKind::Sized, mainWindow());
    const Calls calls = callsOfEvent();
    EXPECT_EQ(calls.at(0), "fitMagnifier magnifier 0,20,454,381");
    EXPECT_EQ(calls.at(1), "setMagnifierSource magnifier 718,391,1180,740");
    mainWindow().maximised = true;
    co_yield happens(EventKind::Sized, mainWindow());
    const Calls maximised = callsOfEvent();
    EXPECT_EQ(maximised.at(0), "fitMagnifier magnifier 0,20,1920,1100");
    EXPECT_EQ(maximised.at(1), "setMagnifierSource magnifier 718,391,1920,1080");
  });
  EXPECT_EQ(std::ranges::count(nullDesktop().calls, "createMagnifier MagnifierWindow 0,20,470,400"),
            1);
}

}  // namespace
}  // namespace tintora
