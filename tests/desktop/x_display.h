// An X server on a free display number, with or without a window manager.
#pragma once

#include <chrono>
#include <csignal>
#include <future>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "process.h"

namespace tintora::desktop_test {

// Fake is this folder's own: it composes the screen, has frames with invisible borders, and keeps
// minimised windows mapped beneath a guard window. FakeLate frames windows some time after it shows
// them, and composes nothing. In I3FollowingMouse the focus follows the mouse.
enum class Manager {
  None,
  Openbox,
  Xfwm4,
  Icewm,
  Fluxbox,
  I3,
  I3FollowingMouse,
  Twm,
  Fake,
  FakeLate
};

// A compositing manager beside the window manager.
enum class Compositor { None, Picom };

class XDisplay {
 public:
  explicit XDisplay(const std::vector<std::string>& options = {},
                    Manager manager = Manager::Openbox, const std::string& size = "2560x1000",
                    Compositor compositor = Compositor::None);

  const std::string& name() const { return name_; }
  const std::string& folder() const { return folder_.path(); }
  // Starts a window manager, and returns when it shows windows.
  void startManager(Manager kind = Manager::Openbox);
  // Starts a compositing manager, and returns when it composes the screen.
  void startCompositor(const std::vector<std::string>& options = {});
  void endCompositor();
  // Stops the window manager for a while. The future's destructor waits until it goes on.
  [[nodiscard]] std::future<void> holdManager(std::chrono::milliseconds duration);
  // Stops the compositing manager likewise.
  [[nodiscard]] std::future<void> holdCompositor(std::chrono::milliseconds duration);
  void endServer() { server_->signal(SIGTERM); }
  // Waits until the server has handled what it was sent, or has ended.
  void waitForServer();
  // Throws std::runtime_error with the server's last words if it has ended.
  void checkServer();
  // Stops the server for a while. The future's destructor waits until it goes on.
  [[nodiscard]] std::future<void> holdServer(std::chrono::milliseconds duration);

 private:
  std::map<std::string, std::optional<std::string>> environment() const;
  void waitForCompositor() const;
  std::string serverLog() const { return folder_.path() + "/server.log"; }

  TemporaryFolder folder_;
  std::string name_;
  std::unique_ptr<Process> server_;
  std::unique_ptr<Process> manager_;
  std::unique_ptr<Process> compositor_;
};

// Returns the display of all tests that need no special one.
XDisplay& sharedDisplay();
void endSharedDisplay();

}  // namespace tintora::desktop_test
