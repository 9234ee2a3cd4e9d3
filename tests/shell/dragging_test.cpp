#include <string>
#include <vector>

#include "colour_space/camera.h"
#include "colour_space/colour_space_view.h"
#include "expected_calls.h"
#include "program_run.h"
#include "shell/shell_state.h"

namespace tintora {
namespace {

using platform::Event;
using platform::EventKind;
using platform::nullDesktop;
using platform::Window;
using Dragging = ShellTest;
using CubeRotation = ShellTest;

Event press(const Window& window) {
  return mouse(EventKind::LeftDown, window, 11, 12);
}
Event release(const Window& window) {
  return mouse(EventKind::LeftUp, window, 11, 12);
}
Event move(const Window& window, int x = 13, int y = 14) {
  return mouse(EventKind::MouseMoved, window, x, y);
}

void pointAt(int x, int y) {
  nullDesktop().cursor = {x, y};
}

TEST_F(Dragging, MovesTheMainWindowWithTheCursor) {
  play([]() -> Script {
    co_yield keyDown('H');
    pointAt(900, 500);
    co_yield press(mainWindow());
    expectCalls({});
    struct Row {
      int x, y;
      const char* bounds;
      const char* docked;
    };
    const std::vector<Row> rows{{910, 520, "720,360,1220,760", "1224,360,1624,760"},
                                {890, 470, "700,310,1200,710", "1204,310,1604,710"},
                                {0, 0, "-190,-160,310,240", "314,-160,714,240"},
                                {900, 500, "710,340,1210,740", "1214,340,1614,740"}};
    for (const Row& row : rows) {
      SCOPED_TRACE(row.bounds);
      pointAt(row.x, row.y);
      co_yield move(mainWindow());
      EXPECT_EQ(text(mainWindow().bounds), row.bounds);
      // The other window is at the edge already; again they go to the same places.
      co_yield move(mainWindow());
      expectCalls(joined({{std::string("setWindowBounds main ") + row.bounds,
                           std::string("setWindowBounds colour space ") + row.docked},
                          painted()}));
    }
    co_yield release(mainWindow());
    expectCalls({});
    pointAt(1, 1);
    co_yield move(mainWindow());
    expectCalls({});
  });
}

TEST_F(Dragging, EndsInAnyWindowWhereTheButtonIsReleased) {
  nullDesktop().store = Store{{"View", 703}};
  play([]() -> Script {
    pointAt(0, 0);
    co_yield press(mainWindow());
    co_yield release(colourSpaceWindow());
    pointAt(5, 5);
    co_yield move(mainWindow());
    expectCalls({});
  });
}

TEST_F(Dragging, KeepsTheSizeOfTheWindow) {
  play([]() -> Script {
    pointAt(0, 0);
    co_yield press(mainWindow());
    mainWindow().bounds = {710, 340, 1000, 600};
    pointAt(5, 5);
    co_yield move(mainWindow());
    EXPECT_EQ(text(mainWindow().bounds), "715,345,1005,605");
  });
}

TEST_F(Dragging, OfTheControlWindowMovesOnlyIt) {
  play([]() -> Script {
    co_yield keyDown('H');
    pointAt(800, 500);
    co_yield press(controlWindow());
    pointAt(700, 450);
    co_yield move(controlWindow());
    expectCalls(joined({{"setWindowBounds control 660,430,1060,550"}, besideMain(), painted()}));
    EXPECT_EQ(text(mainWindow().bounds), "710,340,1210,740");
    co_yield release(controlWindow());
    pointAt(0, 0);
    co_yield move(controlWindow());
    expectCalls({});
    // It stays there and does not follow the main window.
    mainWindow().bounds = {0, 0, 500, 400};
    co_yield happens(EventKind::Moving, mainWindow());
    co_yield happens(EventKind::Sized, mainWindow());
    EXPECT_EQ(text(controlWindow().bounds), "660,430,1060,550");
  });
}

TEST_F(Dragging, NeedsTheButton) {
  play([]() -> Script {
    const std::vector<Window*> windows{&mainWindow(), &controlWindow(), &colourSpaceWindow()};
    for (Window* const window : windows) {
      SCOPED_TRACE(window->name);
      pointAt(3, 4);
      co_yield move(*window);
      expectCalls({});
      co_yield mouse(EventKind::RightDown, *window);
      pointAt(30, 40);
      co_yield move(*window);
      expectCalls({});
    }
  });
}

TEST_F(Dragging, DoesNotBeginInTheColourSpaceWindow) {
  for (const std::uint32_t view : {702U, 703U, 704U, 705U}) {
    SCOPED_TRACE(view);
    forgetEverything();
    nullDesktop().store = Store{{"View", view}};
    play([]() -> Script {
      co_yield press(colourSpaceWindow());
      EXPECT_FALSE(shellState.drag.active);
      pointAt(100, 100);
      co_yield move(colourSpaceWindow());
      co_yield move(mainWindow());
      EXPECT_EQ(text(colourSpaceWindow().bounds), "0,0,400,400");
      EXPECT_EQ(text(mainWindow().bounds), "710,340,1210,740");
    });
  }
}

// The view as a move of the mouse leaves it when it reaches the renderer.
ColourSpaceView afterMove(const ColourSpaceView& before, const DragKeys& held,
                          const platform::Point& place) {
  const ColourSpaceView now = colourSpaceView;
  const Calls calls = nullDesktop().calls;
  colourSpaceView = before;
  rotateByMouse(held, place.x, place.y);
  ColourSpaceView after = colourSpaceView;
  colourSpaceView = now;
  nullDesktop().calls = calls;
  return after;
}

void expectSameCamera(const ColourSpaceView& actual, const ColourSpaceView& expected) {
  EXPECT_EQ(actual.viewMatrix, expected.viewMatrix);
  EXPECT_EQ(actual.lastMouseX, expected.lastMouseX);
  EXPECT_EQ(actual.lastMouseY, expected.lastMouseY);
  EXPECT_EQ(actual.firstDragMove, expected.firstDragMove);
  EXPECT_EQ(actual.lockHorizontal, expected.lockHorizontal);
}

TEST_F(CubeRotation, BeginsWithTheLeftButton) {
  nullDesktop().store = Store{{"View", 703}};
  play([]() -> Script {
    co_yield mouse(EventKind::LeftDown, colourSpaceWindow(), 120, 80);
    expectCalls({});
    EXPECT_EQ(colourSpaceView.lastMouseX, 120);
    EXPECT_EQ(colourSpaceView.lastMouseY, 80);
    EXPECT_TRUE(colourSpaceView.firstDragMove);
    colourSpaceView.firstDragMove = false;
    co_yield mouse(EventKind::LeftUp, colourSpaceWindow(), 120, 80);
    expectCalls({});
    co_yield mouse(EventKind::RightDown, colourSpaceWindow(), 130, 70);
    expectCalls({});
    EXPECT_EQ(colourSpaceView.lastMouseX, 120);
    EXPECT_EQ(colourSpaceView.lastMouseY, 80);
    EXPECT_FALSE(colourSpaceView.firstDragMove);
  });
}

TEST_F(CubeRotation, TakesEveryMoveOfTheMouse) {
  nullDesktop().store = Store{{"View", 703}};
  play([]() -> Script {
    for (int held = 0; held < 8; ++held) {
      const bool left = (held & 1) != 0;
      const bool right = (held & 2) != 0;
      const bool shift = (held & 4) != 0;
      Event event = move(colourSpaceWindow(), 100 + held, 200 - held);
      event.leftHeld = left;
      event.rightHeld = right;
      event.shiftHeld = shift;
      beginDrag(40, 30);
      const ColourSpaceView before = colourSpaceView;
      co_yield event;
      expectCalls(left || right ? frameDrawn() : Calls{});
      expectSameCamera(colourSpaceView, afterMove(before, {left, right, shift}, event.position));
    }
  });
}

TEST_F(CubeRotation, TurnsTheCubeOnly) {
  for (const std::uint32_t view : {702U, 704U, 705U, 999U}) {
    SCOPED_TRACE(view);
    forgetEverything();
    nullDesktop().store = Store{{"View", view}};
    play([]() -> Script {
      co_yield press(colourSpaceWindow());
      expectCalls({});
      Event event = move(colourSpaceWindow());
      event.leftHeld = true;
      co_yield event;
      expectCalls({});
      co_yield release(colourSpaceWindow());
      expectCalls({});
    });
  }
}

}  // namespace
}  // namespace tintora
