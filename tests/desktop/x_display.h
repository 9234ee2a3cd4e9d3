// An X server on a display number that was free, with a window manager or without one.
#pragma once

#include <csignal>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "process.h"

namespace tintora::desktop_test {

// Fake: this folder's own, which composes the screen, has frames whose borders are not all seen,
// and keeps minimised windows mapped beneath a guard window. FakeLate frames windows only some time
// after it shows them, and composes nothing.
enum class Manager { None, Openbox, Xfwm4, Icewm, Fluxbox, I3, Twm, Fake, FakeLate };

// A compositing manager beside the window manager.
enum class Compositor { None, Picom };

class XDisplay {
 public:
  explicit XDisplay(const std::vector<std::string>& options = {},
                    Manager manager = Manager::Openbox, const std::string& size = "2560x1000",
                    Compositor compositor = Compositor::None);

  const std::string& name() const { return name_; }
  const std::string& folder() const { return folder_.path(); }
  // Starts a window manager; returns when it shows windows.
  void startManager(Manager manager = Manager::Openbox);
  // Starts a compositing manager; returns when it has taken over the screen.
  void startCompositor();
  void endCompositor();
  // Lets it do nothing for a while.
  void holdManager() { manager_->signal(SIGSTOP); }
  void letManagerGoOn() { manager_->signal(SIGCONT); }
  void endServer() { server_->signal(SIGTERM); }

 private:
  std::map<std::string, std::optional<std::string>> environment() const;
  void waitForCompositor() const;

  TemporaryFolder folder_;
  std::string name_;
  std::unique_ptr<Process> server_;
  std::unique_ptr<Process> manager_;
  std::unique_ptr<Process> compositor_;
};

// The one that all tests use that need no other.
XDisplay& sharedDisplay();
void endSharedDisplay();

}  // namespace tintora::desktop_test
