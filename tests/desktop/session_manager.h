// A session manager for one program, which it can tell that the session ends.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace tintora::desktop_test {

class SessionManager {
 public:
  SessionManager();
  ~SessionManager();
  SessionManager(const SessionManager&) = delete;
  SessionManager& operator=(const SessionManager&) = delete;

  // Returns the value of SESSION_MANAGER for the program.
  const std::string& address() const { return address_; }
  // Tells the program to save everything, because the session ends.
  void announceEnd() { endAnnounced_ = true; }
  // Tells the program to end.
  void endProgram() { programEnds_ = true; }
  // Returns how often the program has answered that it has saved everything.
  int timesSaved() const { return timesSaved_; }
  // Returns the command that the program wants to be started by in the next session.
  std::vector<std::string> restartCommand() const;

 private:
  struct Protocol;
  void run();

  std::unique_ptr<Protocol> protocol_;
  std::string address_;
  mutable std::mutex mutex_;
  std::vector<std::string> restartCommand_;
  std::atomic<int> timesSaved_ = 0;
  std::atomic<bool> endAnnounced_ = false;
  std::atomic<bool> programEnds_ = false;
  std::atomic<bool> stopped_ = false;
  std::thread thread_;
};

}  // namespace tintora::desktop_test
