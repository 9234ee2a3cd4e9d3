// The program under test as a process: where it is, and how it starts and ends.
#pragma once

#include <windows.h>

#include <functional>
#include <string>

namespace tintora::windows_test {

// The limit for every wait, in milliseconds. It is generous for busy machines; only failures use it
// up.
inline constexpr DWORD longestWait = 60000;

// Waits until something becomes true, up to a limit in milliseconds.
bool eventually(const std::function<bool()>& isTrue, ULONGLONG atMost = longestWait);

std::string programPath();

// Returns the program's folder, with a backslash at the end.
std::string programFolder();

// Returns the path of the user's custom transforms.
std::string customFile();

// Parameters for starting the program.
struct Launch {
  std::string arguments{};
  std::string folder = programFolder();  // the current directory
  WORD show = SW_SHOWNORMAL;
  bool pathGiven = true;   // whether the command line begins with the path
  std::wstring program{};  // its path; if empty, that of the program under test
  std::wstring named{};    // the path in the command line; if empty, the program's
};

// A process started by a test. The destructor ends it if it still runs.
class Process {
 public:
  explicit Process(const Launch& launch = {});
  ~Process();
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;

  DWORD id() const { return id_; }
  // Waits for the end. Returns false if it does not come within the limit.
  bool hasEnded() const;
  bool isRunning() const;
  DWORD result() const;

 private:
  HANDLE handle_ = nullptr;
  DWORD id_ = 0;
};

// Removes the Magnification API until it goes out of scope.
class MissingMagnification {
 public:
  MissingMagnification();
  ~MissingMagnification();
  MissingMagnification(const MissingMagnification&) = delete;
  MissingMagnification& operator=(const MissingMagnification&) = delete;
};

}  // namespace tintora::windows_test
