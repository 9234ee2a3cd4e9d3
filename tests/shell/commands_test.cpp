#include <string>
#include <vector>

#include "expected_calls.h"
#include "program_run.h"
#include "shell/shell_state.h"

namespace tintora {
namespace {

using platform::nullDesktop;
using Settings = TransformSettings;
using Mode = TransformMode;

// What a command does. The situation: a deutan simulation at 60%, the main window framed and
// hit-transparent, so that repainting the control window can be seen, and the RGB cube docked.
struct Outcome {
  Calls calls{};
  Settings settings;
  int view = 703;
};

void change(Outcome& outcome, const Calls& application) {
  outcome.calls = joined({application, painted()});
}

template <Mode mode, int type>
void deficiency(Outcome& outcome, int /*id*/) {
  outcome.settings.Selected = mode;
  const std::string word = type == 1 ? "Protanomalous" : "Deuteranomalous";
  change(outcome, simulated(type, " Simulation - " + word + " 60% severity"));
}

template <Mode mode>
void effect(Outcome& outcome, const char* title) {
  outcome.settings.Selected = mode;
  change(outcome, otherEffect(title));
}

void nothing(Outcome& /*outcome*/, int /*id*/) {}

void custom(Outcome& outcome, int id) {
  const std::vector<Calls> titles{
      {"setTitle main Warm"}, {"setTitle main Soft"}, {"setTitle main Bare"}};
  const Calls& name = titles.at(static_cast<std::size_t>(id));
  const Calls strength =
      id == 1 ? Calls{"setTitle main Soft   60% (mouse-wheel adjusts %)"} : Calls{};
  outcome.calls =
      joined({name, {"setColourEffect magnifier"}, strength, magnifierInvalidated(), painted()});
  outcome.settings.Selected = Mode::Custom;
  outcome.settings.customIndex = id;
}

void toggleTransform(Outcome& outcome, int /*id*/) {
  outcome.settings.transformOff = true;
  change(outcome, switchedOff());
}

void toggleFrame(Outcome& outcome, int /*id*/) {
  outcome.calls = joined({{"setWindowForm main frameless", "showWindow main shown",
                           "fitMagnifier magnifier 0,0,500,400"},
                          sourceSet("710,340,1210,740"),
                          besideMain(),
                          painted()});
}

void copy(Outcome& outcome, int /*id*/) {
  outcome.calls = {
      "showCursor false",     "handleWaitingEvents", "captureClientArea main",
      "putOnClipboard main",  "deletePicture",       "setTitle main Image Copied To Clipboard",
      "startTimer main 3000", "showCursor true",     "handleWaitingEvents"};
}

void endHitTransparency(Outcome& outcome, int /*id*/) {
  outcome.calls = {"showWindow control hidden", "setHitTransparent main false"};
}

void enterFullScreen(Outcome& outcome, int /*id*/) {
  outcome.calls = joined({{"setWindowForm main full screen", "setWindowBounds main 0,0,1920,1080",
                           "fitMagnifier magnifier 0,0,1920,1080", "showWindow main maximised"},
                          sourceSet("0,0,1920,1080"),
                          painted("Full screen mode, press F to exit")});
}

void openGuide(Outcome& outcome, int /*id*/) {
  outcome.calls = {"openPageBesideProgram guide.html"};
}

void filter(Outcome& outcome, int id) {
  struct Filter {
    const char* name;
    double red, green, blue;
  };
  const std::vector<Filter> filters{{"Red", 1, 0, 0},    {"Green", 0, 1, 0},   {"Blue", 0, 0, 1},
                                    {"Yellow", 1, 1, 0}, {"Magenta", 1, 0, 1}, {"Cyan", 0, 1, 1}};
  const Filter& chosen = filters.at(static_cast<std::size_t>(id - 100));
  Settings& settings = outcome.settings;
  settings.Selected = Mode::ColourFilter;
  settings.Filter = id;
  settings.filterName = chosen.name;
  settings.filterRed = chosen.red;
  settings.filterGreen = chosen.green;
  settings.filterBlue = chosen.blue;
  change(outcome, otherEffect(std::string("60% ") + chosen.name + " Filter"));
}

void fullRedFilter(Outcome& outcome, int /*id*/) {
  filter(outcome, 100);
  outcome.settings.Selected = Mode::RedFilter;
  outcome.settings.Filter = 106;
  change(outcome, otherEffect("Red Filter"));
}

// The colour stays that of the filter before: yellow in this situation.
void filterWithoutColour(Outcome& outcome, int id) {
  outcome.settings.Selected = Mode::ColourFilter;
  outcome.settings.Filter = id;
  change(outcome, otherEffect("60% Yellow Filter"));
}

void swap(Outcome& outcome, int id) {
  outcome.settings.Selected = Mode::ColourSwap;
  outcome.settings.Swap = ColourSwap{id};
  const std::vector<std::string> titles{"Swap 60% Red and Blue", "Swap 60% Red and Green",
                                        "Swap 60% Green and Blue", "Swap Red and Blue"};
  const auto place = static_cast<std::size_t>(id - 200);
  const std::string title = place < titles.size() ? titles[place] : "60% severity";
  const int item =
      id == 200 ? itemsWithoutLetters.swapRedAndBlue : itemsWithoutLetters.otherColourEffects;
  change(outcome, otherEffect(title, item));
}

// First the handler's own marks, then those of the application.
void algorithm(Outcome& outcome, int id) {
  struct Algorithm {
    SimulationAlgorithm option;
    int handlersMark;
    int item;
  };
  const std::vector<Algorithm> algorithms{
      {SimulationAlgorithm{0}, 1, 1}, {SimulationAlgorithm{1}, 4, 4},
      {SimulationAlgorithm{2}, 2, 5}, {SimulationAlgorithm{3}, 3, 2},
      {SimulationAlgorithm{4}, 5, 3},
  };
  const Algorithm& chosen = algorithms.at(static_cast<std::size_t>(id - 300));
  outcome.settings.Option = chosen.option;
  const Calls again = applied({.title = " Simulation - Deuteranomalous 60% severity",
                               .viewerItem = itemsWithoutLetters.simulation,
                               .typeItem = 2,
                               .algorithmItem = chosen.item,
                               .refreshesViews = true});
  outcome.calls = joined({algorithmMark(0, false), algorithmMark(1, false), algorithmMark(2, false),
                          algorithmMark(3, false), algorithmMark(4, false),
                          algorithmMark(chosen.handlersMark, true), again, painted()});
}

void applyAgain(Outcome& outcome, int /*id*/) {
  change(outcome, simulated(2, " Simulation - Deuteranomalous 60% severity"));
}

void hideColourSpace(Outcome& outcome, int /*id*/) {
  outcome.calls = {"showWindow colour space hidden"};
}

void undock(Outcome& outcome, int /*id*/) {
  outcome.calls = painted();
}

void view(Outcome& outcome, int id) {
  outcome.calls = joined({besideMain(), painted(), shownBesideMain()});
  outcome.view = id;
}

void simulation(Outcome& outcome, int /*id*/) {
  applyAgain(outcome, 775);
}

void daltonize(Outcome& outcome, int /*id*/) {
  const int item = itemsWithoutLetters.daltonize;
  outcome.settings.Daltonize = true;
  change(outcome, joined({mainMark(item, true),
                          simulated(2, " Daltonize - Deuteranomalous 60% severity", item)}));
}

void inverse(Outcome& outcome, int /*id*/) {
  const int item = itemsWithoutLetters.inverseTransform;
  outcome.settings.Inversion = true;
  change(outcome,
         joined({mainMark(item, true),
                 simulated(2, " Inverse Transform - Deuteranomalous 60% severity", item)}));
}

struct CommandRow {
  int first;
  int last;
  bool relative;  // to the number of custom transforms
  void (*expect)(Outcome& outcome, int id);
};

constexpr bool relative = true;
constexpr bool absolute = false;

const std::vector<CommandRow> commandRows{
    {1, 1, relative, &deficiency<Mode::Protan, 1>},
    {2, 2, relative, &deficiency<Mode::Deutan, 2>},
    {3, 3, relative, &nothing},  // Tritan, without its letter
    {4, 4, relative, [](Outcome& o, int) { effect<Mode::Greyscale>(o, "Greyscale"); }},
    {5, 5, relative, [](Outcome& o, int) { effect<Mode::Invert>(o, "Invert "); }},
    {6, 6, relative, [](Outcome& o, int) { effect<Mode::Brightness>(o, "Brightness +0%"); }},
    {7, 7, relative, [](Outcome& o, int) { effect<Mode::Contrast>(o, "Contrast 100%"); }},
    {8, 8, relative, [](Outcome& o, int) { effect<Mode::Saturation>(o, "Saturation 100%"); }},
    {9, 9, relative,
     [](Outcome& o, int) {
       effect<Mode::CircadianLightBlock>(o, "Circadian Light Block, Brightness 60%");
     }},
    {50, 50, relative, &toggleTransform},
    {51, 51, relative, &toggleFrame},
    {52, 52, relative, &copy},
    {53, 53, relative, &endHitTransparency},
    {54, 54, relative, &enterFullScreen},
    {55, 55, relative, &openGuide},
    {100, 105, absolute, &filter},
    {106, 106, absolute, &fullRedFilter},
    {107, 199, absolute, &filterWithoutColour},
    {200, 299, absolute, &swap},
    {300, 304, absolute, &algorithm},
    {305, 309, absolute, &applyAgain},
    {310, 699, absolute, &swap},
    {700, 700, absolute, &hideColourSpace},
    {701, 701, absolute, &undock},
    {702, 705, absolute, &view},
    {706, 774, absolute, &swap},
    {775, 775, absolute, &simulation},
    {776, 776, absolute, &daltonize},
    {777, 777, absolute, &inverse},
    {778, 65535, absolute, &swap},
};

Outcome expectedOutcome(int id, int customCount, const Settings& before) {
  Outcome outcome{.settings = before};
  if (id < customCount) {
    custom(outcome, id);
    return outcome;
  }
  for (const CommandRow& row : commandRows) {
    const int place = row.relative ? id - customCount : id;
    if (place >= row.first && place <= row.last) row.expect(outcome, id);
  }
  return outcome;
}

class Commands : public ShellTest {
 protected:
  // A run that has N custom transforms.
  void start(int customCount) const {
    forgetEverything();
    if (customCount != 0) nullDesktop().commandLine = folder.program();
    nullDesktop().store = Store{{"Selected", static_cast<std::uint32_t>(customCount) + 2},
                                {"ScrollPc", 60},
                                {"Filter", 103},
                                {"Swap", 202},
                                {"View", 703}};
  }

  Commands() {
    folder.writeCustomTransforms(
        "Warm\n1 0 0 0\n0 1 0 0\n0 0 0.5 0\n"
        "$Soft\n0.5 0 0 0.2\n0 0.5 0 0.2\n0 0 0.5 0.2\n"
        "Bare\n1 0 0 0\n0 1 0 0\n0 0 1 0\n");
  }

  ProgramFolder folder;
};

TEST_F(Commands, DoTheirTasks) {
  std::vector<int> ids;
  for (int id = 0; id <= 1000; ++id) ids.push_back(id);
  ids.push_back(65535);
  for (const int customCount : {0, 3}) {
    for (const int id : ids) {
      SCOPED_TRACE("command " + std::to_string(id) + " with " + std::to_string(customCount));
      start(customCount);
      play([id, customCount]() -> Script {
        co_yield keyDown('H');
        const Outcome outcome = expectedOutcome(id, customCount, transformSettings);
        co_yield command(id);
        expectCalls(outcome.calls);
        EXPECT_TRUE(nullDesktop().handled);
        EXPECT_EQ(describe(transformSettings), describe(outcome.settings));
        EXPECT_EQ(static_cast<int>(shellState.view), outcome.view);
      });
    }
  }
}

TEST_F(Commands, ComeFromTheMenuOfAnyWindow) {
  start(0);
  play([]() -> Script {
    const std::vector<platform::Window*> windows{&controlWindow(), &colourSpaceWindow(),
                                                 &mainWindow()};
    for (platform::Window* const window : windows) {
      SCOPED_TRACE(window->name);
      co_yield command(5);
      platform::Event event = command(4);
      event.window = window;
      co_yield event;
      EXPECT_EQ(title(), "Greyscale");
    }
  });
}

TEST_F(Commands, ProtanIsTheFirstWithoutCustomTransforms) {
  start(0);
  play([]() -> Script {
    co_yield command(1);
    EXPECT_EQ(transformSettings.Selected, Mode::Protan);
    co_yield command(0);
    expectCalls({});
  });
}

TEST_F(Commands, TritanIsACommandOnlyIfEnabled) {
  for (const int customCount : {0, 3}) {
    start(customCount);
    nullDesktop().arguments = "-t";
    play([customCount]() -> Script {
      co_yield command(customCount + 3);
      expectCalls(applied({.title = " Simulation - Tritanomalous 60% severity",
                           .viewerItem = itemsWithTritan.simulation,
                           .typeItem = 3,
                           .refreshesViews = true},
                          itemsWithTritan));
      EXPECT_EQ(transformSettings.Selected, Mode::Tritan);
    });
  }
}

TEST_F(Commands, AlgorithmsLeaveTheModeAlone) {
  start(0);
  play([]() -> Script {
    co_yield keyDown('G');
    co_yield command(301);
    EXPECT_EQ(transformSettings.Selected, Mode::Greyscale);
    EXPECT_EQ(transformSettings.Option, SimulationAlgorithm::Yang2008);
    EXPECT_EQ(title(), "Greyscale");
  });
}

TEST_F(Commands, SimulationTurnsDaltonizeAndInversionOff) {
  start(0);
  play([]() -> Script {
    co_yield command(776);
    EXPECT_TRUE(transformSettings.Daltonize);
    co_yield command(777);
    EXPECT_FALSE(transformSettings.Daltonize);
    EXPECT_TRUE(transformSettings.Inversion);
    co_yield command(776);
    EXPECT_TRUE(transformSettings.Daltonize);
    EXPECT_FALSE(transformSettings.Inversion);
    co_yield command(777);
    co_yield command(775);
    EXPECT_FALSE(transformSettings.Daltonize);
    EXPECT_FALSE(transformSettings.Inversion);
    EXPECT_EQ(title(), " Simulation - Deuteranomalous 60% severity");
  });
}

}  // namespace
}  // namespace tintora
