#include "shell/commands.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "engine/apply_transform.h"
#include "engine/colour_effects.h"
#include "engine/custom_transforms.h"
#include "engine/transform_display.h"
#include "platform/keys.h"
#include "platform/menu.h"
#include "platform/program.h"
#include "shell/clipboard_capture.h"
#include "shell/colour_space_window.h"
#include "shell/command_ids.h"
#include "shell/control_window.h"
#include "shell/shell_state.h"
#include "shell/view_tracking.h"
#include "shell/window_forms.h"

namespace tintora {

namespace {

namespace keys = platform::keys;

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

// Returns to the deficiency that was applied last, as a simulation or one of its corrections.
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

// The positions that this handler marks, in the order of the commands. The last three are not those
// of the chosen items. That is intended and does not last: applying the transform marks the right
// one at once.
constexpr std::array handlerMarks{1, 4, 2, 3, 5};
static_assert(handlerMarks.size() == std::tuple_size_v<AlgorithmPositions>);
constexpr int algorithmPositionsCleared = 5;

void chooseAlgorithm(int command) {
  const auto algorithm = static_cast<std::uint32_t>(command - command_ids::firstAlgorithm);
  if (algorithm < handlerMarks.size()) {
    platform::Menu* const menu = shellState.menus.alternativeTransforms;
    for (int position = 0; position < algorithmPositionsCleared; ++position) {
      platform::checkMenuItem(menu, position, false);
    }
    transformSettings.Option = SimulationAlgorithm{algorithm};
    platform::checkMenuItem(menu, handlerMarks[algorithm], true);
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

constexpr CommandAction row(int command, void (*run)(int command)) {
  return {command, command, run};
}
constexpr CommandAction row(command_ids::Relative command, void (*run)(int command)) {
  return row(command.offset, run);
}

// Commands counted from the number of custom transforms.
constexpr std::array<CommandAction, 15> relativeCommands{{
    row(command_ids::protan, &plain<&choose<TransformMode::Protan>>),
    row(command_ids::deutan, &plain<&choose<TransformMode::Deutan>>),
    row(command_ids::tritan, &plain<&chooseTritan>),
    row(command_ids::greyscale, &plain<&choose<TransformMode::Greyscale>>),
    row(command_ids::invert, &plain<&choose<TransformMode::Invert>>),
    row(command_ids::brightness, &plain<&choose<TransformMode::Brightness>>),
    row(command_ids::contrast, &plain<&choose<TransformMode::Contrast>>),
    row(command_ids::saturation, &plain<&choose<TransformMode::Saturation>>),
    row(command_ids::circadianLightBlock, &plain<&choose<TransformMode::CircadianLightBlock>>),
    row(command_ids::toggleTransform, &plain<&toggleTransform>),
    row(command_ids::toggleFrame, &plain<&toggleFrameByCommand>),
    row(command_ids::copyToClipboard, &plain<&copyToClipboard>),
    row(command_ids::toggleHitTransparency, &plain<&toggleHitTransparency>),
    row(command_ids::toggleFullScreen, &plain<&toggleFullScreenByCommand>),
    row(command_ids::openUserGuide, &plain<&openUserGuide>),
}};

// The first row that contains the command applies.
constexpr std::array<CommandAction, 12> absoluteCommands{{
    {command_ids::firstFilter, command_ids::lastFilter, &chooseFilter},
    {command_ids::firstAlgorithm, command_ids::lastAlgorithm, &chooseAlgorithm},
    row(command_ids::toggleColourSpace, &plain<&toggleColourSpace>),
    row(command_ids::toggleDocking, &plain<&toggleDocking>),
    row(command_ids::of(ViewCode::ResponseCurves), &plain<&showView<ViewCode::ResponseCurves>>),
    row(command_ids::of(ViewCode::RgbCube), &plain<&showView<ViewCode::RgbCube>>),
    row(command_ids::of(ViewCode::ChromaticityDiagram),
        &plain<&showView<ViewCode::ChromaticityDiagram>>),
    row(command_ids::of(ViewCode::Help), &plain<&toggleHelp>),
    row(command_ids::simulation, &plain<&chooseSimulation>),
    row(command_ids::daltonize, &plain<&chooseDaltonize>),
    row(command_ids::inverseTransform, &plain<&chooseInverse>),
    {command_ids::firstSwap, command_ids::last, &chooseSwap},
}};

template <typename Actions>
void runFrom(const Actions& actions, int place, int command) {
  for (const CommandAction& action : actions) {
    if (place < action.first || place > action.last) continue;
    action.run(command);
    return;
  }
}

// Moves the main window, or with Shift or Control its lower right corner.
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

void copyOr(void (*otherwise)()) {
  if (platform::isControlDown()) {
    copyToClipboard();
  } else {
    otherwise();
  }
}

void stepUp() {
  stepValue(true);
}
void stepDown() {
  stepValue(false);
}

struct KeyAction {
  int key;
  void (*run)();
};

constexpr std::array<KeyAction, 32> keyActions{{
    {keys::tab, &toggleTransform},
    {keys::escape, &restoreFrame},
    {keys::space, &toggleFrame},
    {keys::pageUp, &stepUp},
    {keys::padPlus, &stepUp},
    {keys::plus, &stepUp},
    {keys::pageDown, &stepDown},
    {keys::padMinus, &stepDown},
    {keys::minus, &stepDown},
    {keys::left, [] { nudge(-1, 0); }},
    {keys::up, [] { nudge(0, -1); }},
    {keys::right, [] { nudge(1, 0); }},
    {keys::down, [] { nudge(0, 1); }},
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
    // With Control, O copies as C does. This is intended.
    {'O', [] { copyOr(&choose<TransformMode::Contrast>); }},
    {'P', &choose<TransformMode::Protan>},
    {'R', &showView<ViewCode::RgbCube>},
    {'S', &chooseSimulation},
    {'T', &chooseTritan},
    {'W', &toggleColourSpace},
    {keys::f1, &toggleHelp},
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
  } else if (command < command_ids::firstAbsolute) {
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
