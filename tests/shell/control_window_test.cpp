#include <string>
#include <vector>

#include "expected_calls.h"
#include "program_run.h"
#include "shell/shell_state.h"

namespace tintora {
namespace {

using platform::Canvas;
using platform::Colour;
using platform::Event;
using platform::EventKind;
using platform::nullDesktop;
using platform::Point;
using ControlWindow = ShellTest;

constexpr Colour black{0, 0, 0};
constexpr Colour white{255, 255, 255};

struct TextRow {
  Point place;
  Colour colour;
  std::string text;
};

// The shadows first, then the texts one pixel up and left.
std::vector<TextRow> textRows(const std::string& title) {
  return {
      {{15, 11}, black, title},
      {{18, 31}, black, "Main window is now Hit-Transparent"},
      {{18, 51}, black, "Use this window to access options (right-click/mouse-wheel)"},
      {{14, 10}, white, title},
      {{17, 30}, white, "Main window is now Hit-Transparent"},
      {{17, 50}, white, "Use this window to access options (right-click/mouse-wheel)"},
  };
}

void expectPainted(const std::string& title) {
  const Canvas& canvas = nullDesktop().painted;
  EXPECT_EQ(canvas.window, &controlWindow());
  EXPECT_EQ(canvas.filled, (Colour{80, 100, 120}));
  const std::vector<TextRow> rows = textRows(title);
  ASSERT_EQ(canvas.texts.size(), rows.size());
  for (std::size_t i = 0; i < rows.size(); ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(canvas.texts[i].place, rows[i].place);
    EXPECT_EQ(canvas.texts[i].colour, rows[i].colour);
    EXPECT_EQ(canvas.texts[i].text, rows[i].text);
  }
}

TEST_F(ControlWindow, IsPaintedWithTheTitleInForce) {
  play([]() -> Script {
    co_yield keyDown('H');
    expectPainted(" Simulation - Protanope 100% severity");
    co_yield wheel(false);
    expectPainted(" Simulation - Protanomalous 95% severity");
    co_yield keyDown(9);
    expectPainted("Transform off, press Tab to turn transform back on");
    co_yield keyDown('I');
    expectPainted("Invert ");
  });
}

TEST_F(ControlWindow, IsNotPaintedUnlessHitTransparent) {
  play([]() -> Script {
    const std::vector<Event> events{keyDown('G'),
                                    wheel(false),
                                    command(103),
                                    command(301),
                                    keyDown(9),
                                    keyDown('K'),
                                    happens(EventKind::Painting, controlWindow()),
                                    happens(EventKind::Painting, mainWindow()),
                                    happens(EventKind::FilesDropped, mainWindow())};
    for (const Event& event : events) {
      co_yield event;
      for (const std::string& call : callsOfEvent()) EXPECT_NE(call, "beginPainting control");
    }
    EXPECT_EQ(nullDesktop().painted.window, nullptr);
  });
}

TEST_F(ControlWindow, IsNamedByHowToLeave) {
  play([]() -> Script {
    EXPECT_EQ(controlWindow().title, "Hit Transparent, Press H to exit");
    co_yield keyDown('H');
    EXPECT_EQ(controlWindow().title, "Hit Transparent, Press H to exit");
    co_yield keyDown('F');
    EXPECT_EQ(controlWindow().title, "Full screen mode, press F to exit");
    co_yield keyDown('F');
    co_yield keyDown('H');
    EXPECT_EQ(controlWindow().title, "Hit Transparent, Press H to exit");
  });
}

// Entered by F alone it is first painted, and named, with the next event that paints it.
TEST_F(ControlWindow, IsNamedWhenFirstPaintedInFullScreen) {
  play([]() -> Script {
    co_yield keyDown('F');
    co_yield happens(EventKind::Painting, controlWindow());
    expectCalls(painted("Full screen mode, press F to exit"));
    EXPECT_EQ(controlWindow().title, "Full screen mode, press F to exit");
    expectPainted(" Simulation - Protanope 100% severity");
  });
}

TEST_F(ControlWindow, IsRepaintedWhenAnyWindowIsPainted) {
  play([]() -> Script {
    co_yield keyDown('H');
    const std::vector<platform::Window*> windows{&mainWindow(), &controlWindow(),
                                                 &colourSpaceWindow()};
    for (platform::Window* const window : windows) {
      SCOPED_TRACE(window->name);
      co_yield happens(EventKind::Painting, *window);
      expectCalls(painted());
      // The desktop's own handling follows.
      EXPECT_FALSE(nullDesktop().handled);
    }
  });
}

TEST_F(ControlWindow, IsHiddenAndRepaintedOnceMoreWhenClosed) {
  play([]() -> Script {
    co_yield keyDown('H');
    co_yield happens(EventKind::Closing, controlWindow());
    expectCalls(joined({{"showWindow control hidden", "setHitTransparent main false"}, painted()}));
    EXPECT_TRUE(nullDesktop().handled);
    EXPECT_FALSE(shellState.hitTransparent);
    EXPECT_FALSE(mainWindow().hitTransparent);
    // From then on nothing is painted.
    co_yield happens(EventKind::Painting, controlWindow());
    expectCalls({});
    co_yield happens(EventKind::Closing, controlWindow());
    expectCalls({"showWindow control hidden", "setHitTransparent main false"});
  });
}

TEST_F(ControlWindow, ShowsTwoHundredCharactersOfTheTitle) {
  const ProgramFolder folder;
  const std::string name = std::string(150, 'a') + std::string(150, 'b');
  folder.writeCustomTransforms(name + "\n1 0 0 0\n0 1 0 0\n0 0 1 0\n");
  nullDesktop().commandLine = folder.program();
  nullDesktop().store = Store{{"Selected", 0}};
  play([]() -> Script {
    co_yield keyDown('H');
    expectPainted(std::string(150, 'a') + std::string(50, 'b'));
  });
}

}  // namespace
}  // namespace tintora
