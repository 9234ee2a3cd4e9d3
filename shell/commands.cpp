#include "shell/commands.h"

#include <algorithm>
#include <array>

#include "engine/apply_transform.h"
#include "engine/colour_effects.h"
#include "engine/custom_transforms.h"
#include "engine/transform_display.h"
#include "platform/menu.h"
#include "platform/program.h"
#include "shell/clipboard_capture.h"
#include "shell/shell_state.h"
#include "shell/view_tracking.h"
#include "shell/window_procedure.h"

namespace tintora {

namespace {

using platform::Rect;

void applyChange() {
  applyTransform();
  paintControlWindow();
}

void chooseMode(TransformMode mode) {
  transformSettings.Selected = mode;
  applyChange();
}

template <TransformMode mode>
void choose() {
  chooseMode(mode);
}

void chooseTritan() {
  if (shellState.tritanEnabled) chooseMode(TransformMode::Tritan);
}

void chooseCustom(int index) {
  transformSettings.Selected = TransformMode::Custom;
  transformSettings.customIndex = index;
  applyCustomTransform(static_cast<std::uint32_t>(index));
  invalidateView();
  paintControlWindow();
}

// Back to the deficiency that the model last held, seen in another way.
void chooseViewing(bool daltonize, bool inversion, int ViewerItemPositions::*item) {
  transformSettings.Daltonize = daltonize;
  transformSettings.Inversion = inversion;
  if (item != nullptr) {
    platform::checkMenuItem(shellState.menus.main, transformDisplay.positions.*item, true);
  }
  const auto type = static_cast<TransformMode>(modelContext.modelCvdType);
  if (isDeficiency(type)) transformSettings.Selected = type;
  applyChange();
}

void chooseSimulation() {
  chooseViewing(false, false, nullptr);
}
void chooseDaltonize() {
  chooseViewing(true, false, &ViewerItemPositions::daltonize);
}
void chooseInverse() {
  chooseViewing(false, true, &ViewerItemPositions::inverseTransform);
}

void toggleTransform() {
  if (!transformSettings.transformOff) {
    transformOffApply();
  } else {
    applyCurrentTransform();
  }
  paintControlWindow();
}

void chooseView(ViewCode view) {
  shellState.view = view;
  layOutColourSpace();
  showColourSpace();
}

template <ViewCode view>
void showView() {
  chooseView(view);
}

void toggleHelp() {
  if (shellState.view == ViewCode::Help && shellState.colourSpaceVisible) {
    hideColourSpace();
  } else {
    chooseView(ViewCode::Help);
  }
}

void toggleColourSpace() {
  ShellState& state = shellState;
  if (state.fullScreen) return;
  if (state.colourSpaceVisible && state.view != ViewCode::Help) {
    hideColourSpace();
    return;
  }
  if (state.view == ViewCode::Help) state.view = ViewCode::RgbCube;
  layOutColourSpace();
  showColourSpace();
}

void restoreFrame() {
  if (!shellState.framed) toggleFrame();
}

void openUserGuide() {
  platform::openPageBesideProgram("guide.html");
}

void chooseFilter(int command) {
  transformSettings.Selected = TransformMode::ColourFilter;
  const auto filter = std::ranges::find(colourFilters, command, &ColourFilter::command);
  if (command == fullRedFilter.command) {
    transformSettings.Selected = TransformMode::RedFilter;
    chooseColourFilter(transformSettings, fullRedFilter);
  } else if (filter != colourFilters.end()) {
    chooseColourFilter(transformSettings, *filter);
  } else {
    transformSettings.Filter = command;
  }
  applyChange();
}

void chooseSwap(int command) {
  transformSettings.Swap = ColourSwap{command};
  chooseMode(TransformMode::ColourSwap);
}

// The item that the handler marks itself. For the last three it is not the one chosen, but applying
// the transform sets the marks right at once.
struct AlgorithmCommand {
  SimulationAlgorithm algorithm;
  int position;
};
constexpr int firstAlgorithmCommand = 300;
constexpr std::array<AlgorithmCommand, 5> algorithmCommands{{
    {SimulationAlgorithm::Judd1948, 1},
    {SimulationAlgorithm::Yang2008, 4},
    {SimulationAlgorithm::Machado2009, 2},
    {SimulationAlgorithm::Vienot1997Approximated, 3},
    {SimulationAlgorithm::Vienot1999, 5},
}};
constexpr int algorithmPositionsCleared = 5;

void chooseAlgorithm(int command) {
  const auto index = static_cast<std::size_t>(command - firstAlgorithmCommand);
  if (index < algorithmCommands.size()) {
    platform::Menu* const menu = shellState.menus.alternativeTransforms;
    for (int position = 0; position < algorithmPositionsCleared; ++position) {
      platform::checkMenuItem(menu, position, false);
    }
    transformSettings.Option = algorithmCommands[index].algorithm;
    platform::checkMenuItem(menu, algorithmCommands[index].position, true);
  }
  applyChange();
}

struct CommandAction {
  int first;
  int last;
  void (*run)(int command);
};

template <void (*action)()>
void plain(int /*command*/) {
  action();
}

// Counted from the number of custom transforms.
constexpr std::array<CommandAction, 15> relativeCommands{{
    {1, 1, &plain<&choose<TransformMode::Protan>>},
    {2, 2, &plain<&choose<TransformMode::Deutan>>},
    {3, 3, &plain<&chooseTritan>},
    {4, 4, &plain<&choose<TransformMode::Greyscale>>},
    {5, 5, &plain<&choose<TransformMode::Invert>>},
    {6, 6, &plain<&choose<TransformMode::Brightness>>},
    {7, 7, &plain<&choose<TransformMode::Contrast>>},
    {8, 8, &plain<&choose<TransformMode::Saturation>>},
    {9, 9, &plain<&choose<TransformMode::CircadianLightBlock>>},
    {50, 50, &plain<&toggleTransform>},
    {51, 51, &plain<&toggleFrameByCommand>},
    {52, 52, &plain<&copyToClipboard>},
    {53, 53, &plain<&toggleHitTransparency>},
    {54, 54, &plain<&toggleFullScreenByCommand>},
    {55, 55, &plain<&openUserGuide>},
}};
constexpr int firstAbsoluteCommand = 100;

// The first row that holds the command counts.
constexpr std::array<CommandAction, 12> absoluteCommands{{
    {100, 199, &chooseFilter},
    {300, 309, &chooseAlgorithm},
    {700, 700, &plain<&toggleColourSpace>},
    {701, 701, &plain<&toggleDocking>},
    {702, 702, &plain<&showView<ViewCode::ResponseCurves>>},
    {703, 703, &plain<&showView<ViewCode::RgbCube>>},
    {704, 704, &plain<&showView<ViewCode::ChromaticityDiagram>>},
    {705, 705, &plain<&toggleHelp>},
    {775, 775, &plain<&chooseSimulation>},
    {776, 776, &plain<&chooseDaltonize>},
    {777, 777, &plain<&chooseInverse>},
    {200, 65535, &chooseSwap},
}};

template <typename Actions>
void runFrom(const Actions& actions, int place, int command) {
  for (const CommandAction& action : actions) {
    if (place < action.first || place > action.last) continue;
    action.run(command);
    return;
  }
}

// The arrow keys move the main window by a pixel, or with Shift or Control its right lower corner.
void nudge(int x, int y) {
  platform::Window* const window = shellState.mainWindow;
  if (platform::isMaximised(window)) return;
  Rect bounds = platform::windowBounds(window);
  bounds.right += x;
  bounds.bottom += y;
  if (!platform::isShiftDown() && !platform::isControlDown()) {
    bounds.left += x;
    bounds.top += y;
  }
  platform::setWindowBounds(window, bounds);
  fitMagnifierToMainWindow();
  updateSource();
}

template <bool up>
void sendWheel() {
  handleEvent(
      {.kind = platform::EventKind::WheelTurned, .window = shellState.mainWindow, .wheelUp = up});
}

void copyOr(void (*otherwise)()) {
  if (platform::isControlDown()) {
    copyToClipboard();
  } else {
    otherwise();
  }
}

struct KeyAction {
  int key;
  void (*run)();
};

constexpr std::array<KeyAction, 32> keyActions{{
    {9, &toggleTransform},    // Tab
    {27, &restoreFrame},      // Esc
    {32, &toggleFrame},       // Space
    {33, &sendWheel<true>},   // Page Up
    {107, &sendWheel<true>},  // numpad plus
    {187, &sendWheel<true>},
    {34, &sendWheel<false>},   // Page Down
    {109, &sendWheel<false>},  // numpad minus
    {189, &sendWheel<false>},
    {37, [] { nudge(-1, 0); }},  // Left
    {38, [] { nudge(0, -1); }},  // Up
    {39, [] { nudge(1, 0); }},   // Right
    {40, [] { nudge(0, 1); }},   // Down
    {'A', &chooseDaltonize},
    {'B', &choose<TransformMode::Brightness>},
    {'C', [] { copyOr(&showView<ViewCode::ChromaticityDiagram>); }},
    {'D', &choose<TransformMode::Deutan>},
    {'E', &showView<ViewCode::ResponseCurves>},
    {'F', &toggleFullScreenByKey},
    {'G', &choose<TransformMode::Greyscale>},
    {'H', &toggleHitTransparency},
    {'I', &choose<TransformMode::Invert>},
    {'K', &toggleDocking},
    {'L', &choose<TransformMode::CircadianLightBlock>},
    {'N', &choose<TransformMode::Saturation>},
    // With Control the same as C, deliberately.
    {'O', [] { copyOr(&choose<TransformMode::Contrast>); }},
    {'P', &choose<TransformMode::Protan>},
    {'R', &showView<ViewCode::RgbCube>},
    {'S', &chooseSimulation},
    {'T', &chooseTritan},
    {'W', &toggleColourSpace},
    {112, &toggleHelp},  // F1
}};

struct WheelValue {
  TransformMode mode;
  double TransformSettings::*value;
  double step;
  double least;
};

constexpr std::array<WheelValue, 3> wheelValues{{
    {TransformMode::Brightness, &TransformSettings::brightness, 0.01, -1.0},
    {TransformMode::Contrast, &TransformSettings::contrast, 0.01, 0.0},
    {TransformMode::Saturation, &TransformSettings::saturation, 0.01, 0.0},
}};
constexpr WheelValue severityValue{{}, &TransformSettings::severity, 0.05, 0.0};

}  // namespace

void applyCurrentTransform() {
  if (transformSettings.Selected == TransformMode::Custom) {
    applyCustomTransform(static_cast<std::uint32_t>(transformSettings.customIndex));
  } else {
    applyTransform();
  }
}

void runCommand(int command) {
  const int customCount = static_cast<int>(customTransforms.size());
  if (command < customCount) {
    chooseCustom(command);
  } else if (command < firstAbsoluteCommand) {
    runFrom(relativeCommands, command - customCount, command);
  } else {
    runFrom(absoluteCommands, command, command);
  }
}

void runKey(int key) {
  const auto action = std::ranges::find(keyActions, key, &KeyAction::key);
  if (action != keyActions.end()) action->run();
}

void stepValue(bool up) {
  const auto own = std::ranges::find(wheelValues, transformSettings.Selected, &WheelValue::mode);
  const WheelValue& wheel = own != wheelValues.end() ? *own : severityValue;
  double& value = transformSettings.*wheel.value;
  value = std::clamp(value + (up ? wheel.step : -wheel.step), wheel.least, 1.0);
  applyTransform();
  invalidateView();
  paintControlWindow();
}

}  // namespace tintora
