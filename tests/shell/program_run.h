// Whole runs of the program, from start-up to shutdown, on the desktop that is not there.
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

// What a user does and sees: a coroutine that yields the next event and goes on when the program
// has dealt with it.
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

  // Goes on to the next event; none at the end.
  std::optional<platform::Event> next() {
    coroutine.resume();
    if (coroutine.done()) return std::nullopt;
    return coroutine.promise().event;
  }

 private:
  explicit Script(std::coroutine_handle<promise_type> handle) : coroutine(handle) {}
  std::coroutine_handle<promise_type> coroutine;
};

// Runs the program with a script; what the process returns. A last key-up event without a meaning
// lets the script look at the outcome of the event before.
int play(const std::function<Script()>& script);

// Start-up and shutdown with no event between.
int playNothing();

// All process-wide records and the desktop as they are when a process starts...
void forgetEverything();

// ... but with what outlives a process: its command line and the stored values.
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

// A folder in which the program stands, removed at its end.
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

// The calls since the last event was handed over.
Calls callsOfEvent();

// All settings, in words.
std::string describe(const TransformSettings& settings);

}  // namespace tintora
