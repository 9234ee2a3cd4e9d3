// Random input: whatever the user does, in any order.
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "engine/custom_transforms.h"
#include "engine/effect_matrix.h"
#include "expected_calls.h"
#include "program_run.h"
#include "shell/shell_state.h"
#include "title_grammar.h"

namespace tintora {
namespace {

using platform::Event;
using platform::EventKind;
using platform::nullDesktop;
using platform::Window;
using platform::WindowForm;
using Settings = TransformSettings;

constexpr std::array keysWithMeaning{9,  27, 32, 33, 34, 37,  38,  39,  40,  65, 66,
                                     67, 68, 69, 70, 71, 72,  73,  75,  76,  78, 79,
                                     80, 82, 83, 84, 87, 107, 109, 112, 187, 189};
constexpr std::array commandsOfItems{1,   2,   3,   4,   5,   6,   7,   8,   9,   50,
                                     51,  52,  53,  54,  55,  100, 101, 102, 103, 104,
                                     105, 106, 200, 201, 202, 300, 301, 302, 303, 304,
                                     700, 701, 702, 703, 704, 705, 775, 776, 777};

class Monkey {
 public:
  explicit Monkey(std::uint32_t seed) : random(seed) {}

  Event next() {
    holdKeys(oneIn(8), oneIn(8));
    nullDesktop().cursor = {upTo(4000) - 1000, upTo(3000) - 1000};
    const int choice = upTo(100);
    if (choice < 30) return key();
    if (choice < 45) return turn();
    if (choice < 65) return menu();
    if (choice < 80) return button();
    if (choice < 93) return placing();
    return rest();
  }

 private:
  int upTo(int count) { return std::uniform_int_distribution<int>(0, count - 1)(random); }
  bool oneIn(int count) { return upTo(count) == 0; }

  template <typename Array>
  int oneOf(const Array& array) {
    return static_cast<int>(array[static_cast<std::size_t>(upTo(static_cast<int>(array.size())))]);
  }

  Window& window() {
    const int choice = upTo(4);
    if (choice == 0) return controlWindow();
    if (choice == 1) return colourSpaceWindow();
    return mainWindow();
  }

  Event key() {
    Event event = happens(oneIn(10) ? EventKind::KeyUp : EventKind::KeyDown, window());
    event.key = oneIn(5) ? upTo(256) : oneOf(keysWithMeaning);
    return event;
  }

  Event turn() {
    Event event = happens(EventKind::WheelTurned, window());
    event.wheelUp = oneIn(2);
    return event;
  }

  Event menu() {
    Event event = happens(EventKind::Command, window());
    const int custom = static_cast<int>(customTransforms.size());
    const int choice = upTo(10);
    if (choice < 7) {
      event.command = oneOf(commandsOfItems);
      if (event.command < 100) event.command += custom;
    } else if (choice == 7) {
      event.command = upTo(custom + 2);
    } else {
      event.command = choice == 8 ? upTo(1000) : upTo(65536);
    }
    return event;
  }

  Event button() {
    constexpr std::array kinds{EventKind::LeftDown, EventKind::LeftUp,     EventKind::RightDown,
                               EventKind::RightUp,  EventKind::MouseMoved, EventKind::MouseMoved};
    Event event =
        mouse(static_cast<EventKind>(oneOf(kinds)), window(), upTo(2000) - 500, upTo(2000) - 500);
    event.leftHeld = oneIn(2);
    event.rightHeld = oneIn(3);
    event.shiftHeld = oneIn(3);
    return event;
  }

  // The user moves or sizes a window, down to nothing and off the screen.
  Event placing() {
    constexpr std::array kinds{EventKind::Sized, EventKind::Sizing, EventKind::Moving};
    Window& moved = window();
    Event event = happens(static_cast<EventKind>(oneOf(kinds)), moved);
    const int left = upTo(4000) - 1000;
    const int top = upTo(3000) - 1000;
    moved.bounds = {left, top, left + upTo(2000), top + upTo(1200)};
    if (event.kind == EventKind::Sized) event.maximised = oneIn(5);
    if (&moved == &mainWindow() && moved.form != WindowForm::FullScreen) {
      moved.maximised = event.maximised;
    }
    return event;
  }

  Event rest() {
    switch (upTo(5)) {
      case 0:
        return happens(EventKind::Closing, controlWindow());
      case 1:
        return happens(EventKind::Closing, colourSpaceWindow());
      case 2:
        return happens(EventKind::TimerElapsed, mainWindow());
      case 3:
        return happens(EventKind::FilesDropped, mainWindow());
      default:
        return happens(EventKind::Painting, window());
    }
  }

  std::mt19937 random;
};

bool within(double value, double least, double most) {
  return value >= least && value <= most;
}

// Alpha stays unchanged and does not depend on the colours.
bool keepsAlpha(const EffectMatrix& matrix) {
  for (std::size_t i = 0; i < 5; ++i) {
    const auto row = i == 3 ? 1.0F : 0.0F;
    if (matrix[3][i] != row || matrix[i][3] != row) return false;
    if (matrix[i][4] != (i == 4 ? 1.0F : 0.0F)) return false;
  }
  return true;
}

bool isInRange(const Settings& settings) {
  const int customCount = std::max(1, static_cast<int>(customTransforms.size()));
  return within(settings.severity, 0.0, 1.0) && within(settings.brightness, -1.0, 1.0) &&
         within(settings.contrast, 0.0, 1.0) && within(settings.saturation, 0.0, 1.0) &&
         within(static_cast<int>(settings.Selected), 0, 13) &&
         within(settings.customIndex, 0, customCount - 1) && within(settings.Filter, 100, 199) &&
         within(static_cast<int>(settings.Swap), 200, 65535) &&
         within(static_cast<int>(settings.Option), 0, 4) &&
         !(settings.Daltonize && settings.Inversion);
}

bool showsWhatTheEngineMade() {
  return std::memcmp(&nullDesktop().colourEffect, &effectMatrix, sizeof(effectMatrix)) == 0;
}

// Expects the shell's state of the windows to agree with the desktop's.
bool agreesWithTheDesktop() {
  const ShellState& state = shellState;
  const Window& main = mainWindow();
  const bool controlShown = controlWindow().shown != platform::ShowState::Hidden;
  const bool colourSpaceShown = colourSpaceWindow().shown != platform::ShowState::Hidden;
  return state.hitTransparent == main.hitTransparent && state.hitTransparent == controlShown &&
         state.colourSpaceVisible == colourSpaceShown &&
         state.fullScreen == (main.form == WindowForm::FullScreen) &&
         (!state.fullScreen || (main.maximised && state.hitTransparent)) &&
         state.framed ==
             (main.form == WindowForm::Framed || main.form == WindowForm::FramedMaximised) &&
         state.titleTimerPending == main.timer.has_value();
}

class RandomUse : public ShellTest {
 protected:
  // Returns the first fault after an event, or nothing if all is well.
  std::string fault() {
    if (!keepsAlpha(effectMatrix)) return "alpha";
    if (!isInRange(transformSettings)) return "settings: " + describe(transformSettings);
    if (!showsWhatTheEngineMade()) return "matrix";
    if (!agreesWithTheDesktop()) return "windows";
    if (nullDesktop().picturesHeld != 0) return "a picture is left";
    if (!nullDesktop().cursorShown) return "the cursor is hidden";
    if (nullDesktop().menus.size() != 9) return "menus";
    if (!knownTitles.contains(title())) {
      if (!canBeTitle(title(), customNames)) return "title: " + title();
      knownTitles.insert(title());
    }
    return {};
  }

  void use(std::uint32_t seed, int events) {
    nullDesktop().arguments = "-st";
    play([this, seed, events]() -> Script {
      Monkey monkey(seed);
      for (int i = 0; i < events; ++i) {
        const Event event = monkey.next();
        nullDesktop().calls.clear();
        co_yield event;
        const std::string wrong = fault();
        if (wrong.empty()) continue;
        ADD_FAILURE() << wrong << " after event " << i << " of kind "
                      << static_cast<int>(event.kind) << ", key " << event.key << ", command "
                      << event.command;
        co_return;
      }
    });
    EXPECT_TRUE(nullDesktop().menus.empty());
    // The title has changed during the run.
    EXPECT_GT(knownTitles.size(), 300U);
  }

  std::vector<std::string> customNames;

 private:
  std::set<std::string> knownTitles;
};

TEST_F(RandomUse, LeavesEverythingInOrder) {
  use(20240131, 100000);
}

TEST_F(RandomUse, LeavesEverythingInOrderWithCustomTransforms) {
  const ProgramFolder folder;
  folder.writeCustomTransforms(
      "Warm\n1 0 0 0\n0 1 0 0\n0 0 0.5 0\n"
      "$Soft\n0.5 0 0 0.2\n0 0.5 0 0.2\n0 0 0.5 0.2\n"
      "$Endless\ninf 0 0 nan\n0 1e38 0 0\n0 0 -1 0\n");
  nullDesktop().commandLine = folder.program();
  customNames = {"Warm", "Soft", "Endless"};
  use(7, 100000);
}

}  // namespace
}  // namespace tintora
