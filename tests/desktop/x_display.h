// An X server on a display number that was free, with a window manager or without one.
#pragma once

#include <csignal>
#include <memory>
#include <string>
#include <vector>

#include "process.h"

namespace tintora::desktop_test {

enum class Manager { None, Openbox };

class XDisplay {
 public:
  explicit XDisplay(const std::vector<std::string>& options = {},
                    Manager manager = Manager::Openbox, const std::string& size = "2560x1000");

  const std::string& name() const { return name_; }
  const std::string& folder() const { return folder_.path(); }
  // Has the window manager frame windows; returns when it does.
  void startManager();
  // Lets it do nothing for a while.
  void holdManager() { manager_->signal(SIGSTOP); }
  void letManagerGoOn() { manager_->signal(SIGCONT); }
  void endServer() { server_->signal(SIGTERM); }

 private:
  TemporaryFolder folder_;
  std::string name_;
  std::unique_ptr<Process> server_;
  std::unique_ptr<Process> manager_;
};

// The one that all tests use that need no other.
XDisplay& sharedDisplay();
void endSharedDisplay();

}  // namespace tintora::desktop_test
