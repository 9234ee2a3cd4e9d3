// A private session in a folder: a message bus, PipeWire with its session manager, a stand-in for
// the desktop portal and a source of known frames. The machine's own session is not touched.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "../desktop/picture.h"
#include "../desktop/process.h"

namespace tintora::mirror_test {

using desktop_test::Area;
using desktop_test::Launch;
using desktop_test::Process;

using Variables = std::map<std::string, std::optional<std::string>>;

class MediaSession {
 public:
  // Root cannot run a compositor, so another user runs its session.
  enum class User { Own, Ordinary };
  explicit MediaSession(User user = User::Own);

  // Returns the variables for programs of this session.
  Variables variables() const;
  std::string folder() const { return folder_.path(); }

  void startPipeWire();
  void endPipeWire();
  void startPortal();
  void endPortal() { portal_.reset(); }
  // Sets how the portal answers from now on; see stand_in_portal.cpp.
  void setBehaviour(const std::map<std::string, std::string>& values);
  // Returns the portal's calls so far, one a line.
  std::string portalCalls() const;
  void closePortalSessions() const;

  // Starts a Wayland compositor without a screen, with its own X server. Returns its reason if it
  // does not start, else nothing.
  std::string startCompositor();
  // Returns the additional variables for programs of the compositor's desktop.
  Variables desktop() const;
  // Starts a program on the compositor's desktop.
  void startClient(const std::vector<std::string>& command);

  // Starts a source of frames, which the portal will grant.
  void startSource();
  void endSource() { source_.reset(); }
  std::string node() const { return behaviour_.at("node"); }
  // Sends a command to the source; see frame_source.cpp.
  void send(const std::string& command) const;
  // Returns what the source has printed so far.
  std::string sourceOutput() const;

 private:
  std::unique_ptr<Process> start(const std::vector<std::string>& command, const std::string& name,
                                 const Variables& besides = {}) const;
  std::vector<std::string> asUser(std::vector<std::string> command) const;
  std::string output(const std::string& name) const;

  desktop_test::TemporaryFolder folder_;
  bool anotherUser_ = false;
  std::map<std::string, std::string> behaviour_;
  std::unique_ptr<Process> bus_;
  std::unique_ptr<Process> pipeWire_;
  std::unique_ptr<Process> sessionManager_;
  std::unique_ptr<Process> compositor_;
  std::unique_ptr<Process> client_;
  std::unique_ptr<Process> portal_;
  std::unique_ptr<Process> source_;
};

}  // namespace tintora::mirror_test
