// Runs the whole program, from start-up to shutdown, on the null desktop.
#pragma once

#include <gtest/gtest.h>

#include <coroutine>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "engine/transform_settings.h"
#include "platform/null/null_platform.h"

namespace tintora {

using Calls = std::vector<std::string>;
using Store = std::map<std::string, std::uint32_t>;

// What a user does and sees, as a coroutine. It yields the next event and continues after the
// program has handled it.
class Script {
 public:
  struct promise_type {
    platform::Event event{};
    Script get_return_object() {
      return Script(std::coroutine_handle<promise_type>::from_promise(*this));
    }
    std::suspend_always initial_suspend() noexcept { return {}; }
    std::suspend_always final_suspend() noexcept { return {}; }
    std::suspend_always yield_value(const platform::Event& next) noexcept {
      event = next;
      return {};
    }
    void return_void() {}
    void unhandled_exception() { throw; }
  };

  Script(Script&& other) noexcept : coroutine(std::exchange(other.coroutine, nullptr)) {}
  ~Script() {
    if (coroutine) coroutine.destroy();
  }
  Script(const Script&) = delete;
  Script& operator=(const Script&) = delete;
  Script& operator=(Script&&) = delete;

  // Continues to the next event. Returns nothing at the end.
  std::optional<platform::Event> next() {
    coroutine.resume();
    if (coroutine.done()) return std::nullopt;
    return coroutine.promise().event;
  }

 private:
  explicit Script(std::coroutine_handle<promise_type> handle) : coroutine(handle) {}
  std::coroutine_handle<promise_type> coroutine;
};

// Runs the program with a script and returns the exit status. A meaningless key-up event is added
// at the end, so that the script can examine the outcome of its last event.
int play(const std::function<Script()>& script);

// Runs start-up and shutdown with no event between them.
int playNothing();

// Restores all process-wide records and the desktop to their state when a process starts.
void forgetEverything();

// Does the same but keeps the command line and the stored values, as for a second process.
void restartProcess();

class ShellTest : public testing::Test {
 public:
  ShellTest(const ShellTest&) = delete;
  ShellTest& operator=(const ShellTest&) = delete;
  ShellTest(ShellTest&&) = delete;
  ShellTest& operator=(ShellTest&&) = delete;

 protected:
  ShellTest() { forgetEverything(); }
  ~ShellTest() override { forgetEverything(); }
};

// A folder that pretends to hold the program. It is removed at the end.
class ProgramFolder {
 public:
  ProgramFolder();
  ~ProgramFolder();
  ProgramFolder(const ProgramFolder&) = delete;
  ProgramFolder& operator=(const ProgramFolder&) = delete;
  ProgramFolder(ProgramFolder&&) = delete;
  ProgramFolder& operator=(ProgramFolder&&) = delete;

  void writeCustomTransforms(const std::string& text) const;
  std::string program() const { return path / "Tintora"; }

 private:
  std::filesystem::path path;
};

// The windows of the run.
platform::Window& mainWindow();
platform::Window& controlWindow();
platform::Window& colourSpaceWindow();
std::string title();  // of the main window

platform::Event keyDown(int key);  // to the main window, as are the next two
platform::Event command(int id);
platform::Event wheel(bool up);
platform::Event happens(platform::EventKind kind, const platform::Window& window);
platform::Event mouse(platform::EventKind kind, const platform::Window& window, int x = 0,
                      int y = 0);

void holdKeys(bool shift, bool control);

// Returns the calls since the last event was passed to the program.
Calls callsOfEvent();

// Returns all settings as text.
std::string describe(const TransformSettings& settings);

}  // namespace tintora
