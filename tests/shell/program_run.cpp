#include "program_run.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <system_error>

#include "colour_space/colour_space_view.h"
#include "engine_records.h"
#include "shell/main.h"
#include "shell/shell_state.h"

namespace tintora {

namespace {

using platform::Event;
using platform::EventKind;
using platform::nullDesktop;
using platform::Window;

struct ProcessRecords {
  EngineRecords engine;
  ShellState shell = shellState;
  ColourSpaceView view = colourSpaceView;
};

// The records as they were before the first test that could change them.
const ProcessRecords& recordsAtStart() {
  static const ProcessRecords records;
  return records;
}

std::size_t callsBeforeEvent = 0;

void addStep(Script& script) {
  nullDesktop().script.emplace_back([&script] {
    const std::optional<Event> event = script.next();
    callsBeforeEvent = nullDesktop().calls.size();
    if (event) addStep(script);
    return event.value_or(Event{.kind = EventKind::KeyUp});
  });
}

}  // namespace

int play(const std::function<Script()>& script) {
  Script events = script();
  addStep(events);
  return runProgram();
}

int playNothing() {
  return runProgram();
}

void forgetEverything() {
  const ProcessRecords& start = recordsAtStart();
  restore(start.engine);
  shellState = start.shell;
  colourSpaceView = start.view;
  platform::resetNullDesktop();
  callsBeforeEvent = 0;
}

void restartProcess() {
  const std::string commandLine = nullDesktop().commandLine;
  const std::string arguments = nullDesktop().arguments;
  const std::optional<Store> store = nullDesktop().store;
  forgetEverything();
  nullDesktop().commandLine = commandLine;
  nullDesktop().arguments = arguments;
  nullDesktop().store = store;
}

ProgramFolder::ProgramFolder() {
  std::string name = std::filesystem::temp_directory_path() / "tintora-shell-XXXXXX";
  if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
  path = name;
}

ProgramFolder::~ProgramFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path, ignored);
}

void ProgramFolder::writeCustomTransforms(const std::string& text) const {
  std::ofstream(path / "Tintora_custom.txt", std::ios::binary) << text;
}

Window& mainWindow() {
  return *nullDesktop().window("main");
}
Window& controlWindow() {
  return *nullDesktop().window("control");
}
Window& colourSpaceWindow() {
  return *nullDesktop().window("colour space");
}

std::string title() {
  return mainWindow().title;
}

Event happens(EventKind kind, const Window& window) {
  return {.kind = kind, .window = nullDesktop().window(window.name)};
}

Event keyDown(int key) {
  Event event = happens(EventKind::KeyDown, mainWindow());
  event.key = key;
  return event;
}

Event command(int id) {
  Event event = happens(EventKind::Command, mainWindow());
  event.command = id;
  return event;
}

Event wheel(bool up) {
  Event event = happens(EventKind::WheelTurned, mainWindow());
  event.wheelUp = up;
  return event;
}

Event mouse(EventKind kind, const Window& window, int x, int y) {
  Event event = happens(kind, window);
  event.position = {x, y};
  return event;
}

void holdKeys(bool shift, bool control) {
  nullDesktop().shiftDown = shift;
  nullDesktop().controlDown = control;
}

Calls callsOfEvent() {
  const Calls& calls = nullDesktop().calls;
  return {std::next(calls.begin(), static_cast<std::ptrdiff_t>(callsBeforeEvent)), calls.end()};
}

std::string describe(const TransformSettings& settings) {
  std::ostringstream words;
  words.precision(12);
  words << "mode " << static_cast<int>(settings.Selected) << ", custom " << settings.customIndex
        << ", severity " << settings.severity << ", brightness " << settings.brightness
        << ", contrast " << settings.contrast << ", saturation " << settings.saturation
        << ", filter " << settings.Filter << ' ' << settings.filterName << ' ' << settings.filterRed
        << settings.filterGreen << settings.filterBlue << ", swap "
        << static_cast<int>(settings.Swap) << ", option "
        << static_cast<std::uint32_t>(settings.Option) << (settings.Daltonize ? ", daltonize" : "")
        << (settings.Inversion ? ", inversion" : "") << (settings.transformOff ? ", off" : "");
  return words.str();
}

}  // namespace tintora
