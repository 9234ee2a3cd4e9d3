#include "shell/main.h"

#include <string_view>

#include "colour_space/colour_space_view.h"
#include "colour_space/frame.h"
#include "colour_space/renderer.h"
#include "engine/apply_transform.h"
#include "engine/custom_transforms.h"
#include "engine/cvd_transforms.h"
#include "engine/effect_matrix.h"
#include "engine/transform_display.h"
#include "platform/magnifier.h"
#include "platform/program.h"
#include "platform/window.h"
#include "shell/clipboard_capture.h"
#include "shell/colour_space_window.h"
#include "shell/commands.h"
#include "shell/control_window.h"
#include "shell/menus.h"
#include "shell/settings_store.h"
#include "shell/shell_state.h"
#include "shell/view_tracking.h"
#include "shell/window_procedure.h"

namespace tintora {

const char* const programVersionText = TINTORA_VERSION " 64-bit";
ShellState shellState;

namespace {

using platform::Rect;
using platform::ShowState;
using platform::WindowKind;

// Switches on optional commands by letters among the first characters of the arguments.
void readArguments() {
  constexpr std::size_t read = 10;
  for (const char letter : platform::programArguments().substr(0, read)) {
    if (letter == 's') shellState.simulationOptionsEnabled = true;
    if (letter == 't') shellState.tritanEnabled = true;
  }
}

void connectEngine() {
  transformDisplay.showEffectMatrix = [](const EffectMatrix& matrix) {
    platform::setColourEffect(shellState.magnifier, matrix);
  };
  transformDisplay.showTitle = [](std::string_view title) {
    platform::setTitle(shellState.mainWindow, std::string(title));
  };
  transformDisplay.checkMenuItem = [](TransformMenu menu, int position, bool checked) {
    const ShellMenus& menus = shellState.menus;
    platform::checkMenuItem(menu == TransformMenu::Main ? menus.main : menus.alternativeTransforms,
                            position, checked);
  };
  transformDisplay.refreshTransformViews = &refreshTransformViews;
}

// Fills the model's tables and computes a first matrix from the loaded settings.
void initialiseModel() {
  initialiseModelContext(modelContext);
  const TransformSettings& settings = transformSettings;
  const CvdType type = isDeficiency(settings.Selected) ? static_cast<CvdType>(settings.Selected)
                                                       : modelContext.modelCvdType;
  computeSimulationMatrix(type, settings.severity, settings.Option, settings.Inversion,
                          settings.Daltonize);
}

bool createWindows() {
  ShellState& state = shellState;
  platform::registerWindowKinds(&handleEvent);
  state.boundsBeforeFullScreen = state.mainBounds;
  state.mainWindow = platform::createWindow(
      WindowKind::Main, "Help: Right-click to select; Tab to toggle on/off", state.mainBounds);
  state.magnifier = platform::createMagnifier(
      state.mainWindow, "MagnifierWindow",
      {0, state.magnifierTopOffset, state.mainBounds.width() - state.magnifierRightMargin,
       state.mainBounds.height()});
  if (state.magnifier == nullptr) return false;
  if (!createControlWindow()) return false;
  constexpr int colourSpaceSize = 400;
  const int size = platform::scaled(colourSpaceSize, platform::screenScale());
  state.colourSpaceWindow =
      platform::createWindow(WindowKind::ColourSpace, "Color Space", {0, 0, size, size});
  return state.colourSpaceWindow != nullptr;
}

void createRenderer() {
  ShellState& state = shellState;
  const Rect client = platform::clientArea(state.colourSpaceWindow);
  state.colourSpaceClientSize = {client.width(), client.height()};
  state.colourSpaceScale = platform::windowScale(state.colourSpaceWindow);
  createDevice(state.colourSpaceWindow, client.width(), client.height(), true);
  colourSpaceView.viewCode = state.view;
}

bool startUp() {
  createEmptyMenus();
  if (!platform::startMagnifier()) return false;
  readArguments();
  connectEngine();
  loadCustomTransforms(platform::customTransformFile());
  loadSettings();
  initialiseModel();
  if (!createWindows()) return false;
  createRenderer();
  platform::acceptDroppedFiles(shellState.mainWindow, true);
  platform::setUnmagnified(shellState.magnifier);
  applyCurrentTransform();
  buildMenus();

  platform::showWindow(shellState.mainWindow, ShowState::AsStarted);
  updateSource();
  applyTransform();
  if (shellState.colourSpaceVisible) {
    platform::showWindow(shellState.colourSpaceWindow, ShowState::AsStarted);
  }
  return true;
}

void shutDown() {
  saveSettings();
  stopTitleTimer();
  platform::stopMagnifier();
  destroyMenus();
  platform::acceptDroppedFiles(shellState.mainWindow, false);
  platform::unregisterWindowKinds();
  releaseDevice();
}

}  // namespace

int runProgram() {
  if (!startUp()) return 0;
  while (platform::handleNextEvent()) {
    updateSource();
    renderColourSpace();
  }
  shutDown();
  return platform::quitResult();
}

}  // namespace tintora
