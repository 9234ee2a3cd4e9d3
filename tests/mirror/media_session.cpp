#include "media_session.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <stdexcept>

namespace tintora::mirror_test {

namespace {

using desktop_test::eventually;
using desktop_test::readFile;
using desktop_test::writeFile;

constexpr std::chrono::seconds most{120};
constexpr unsigned int nobody = 65534;
constexpr const char* waylandName = "wayland-tests";

// Leaves out the machine's services, which would be started for names that nobody owns.
constexpr const char* busRules =
    "<busconfig><type>session</type><listen>unix:path=%</listen><auth>EXTERNAL</auth>"
    "<policy context=\"default\"><allow user=\"*\"/><allow send_destination=\"*\" "
    "eavesdrop=\"true\"/>"
    "<allow eavesdrop=\"true\"/><allow own=\"*\"/></policy></busconfig>";

template <typename Condition>
void await(const std::string& what, Condition condition) {
  if (!eventually(condition, most)) throw std::runtime_error(what + " did not start.");
}

// Returns true if a server listens there. Its file exists a moment before.
bool accepts(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.size() >= sizeof address.sun_path) return false;
  path.copy(address.sun_path, path.size());
  const int client = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const bool accepted =
      connect(client, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
  close(client);
  return accepted;
}

}  // namespace

MediaSession::MediaSession(User user) : anotherUser_(user == User::Ordinary && geteuid() == 0) {
  if (anotherUser_ && chown(folder().c_str(), nobody, nobody) != 0) {
    throw std::runtime_error("No other user can have the folder.");
  }
  const std::string path = folder() + "/bus";
  std::string rules = busRules;
  rules.replace(rules.find('%'), 1, path);
  writeFile(folder() + "/bus.conf", rules);
  bus_ = start(asUser({"dbus-daemon", "--nofork", "--config-file=" + folder() + "/bus.conf"}),
               "daemon");
  await("The message bus", [&] { return accepts(path); });
}

Variables MediaSession::variables() const {
  return {{"XDG_RUNTIME_DIR", folder()},
          {"DBUS_SESSION_BUS_ADDRESS", "unix:path=" + folder() + "/bus"},
          {"DBUS_SYSTEM_BUS_ADDRESS", "unix:path=" + folder() + "/no-system-bus"},
          {"HOME", folder()},
          {"XDG_CONFIG_HOME", folder() + "/none"},
          {"XDG_STATE_HOME", folder() + "/state"},
          {"PIPEWIRE_REMOTE", std::nullopt},
          {"PIPEWIRE_RUNTIME_DIR", std::nullopt}};
}

void MediaSession::startPipeWire() {
  pipeWire_ = start(asUser({"pipewire"}), "pipewire");
  await("PipeWire", [&] { return accepts(folder() + "/pipewire-0"); });
  sessionManager_ = start(asUser({"wireplumber"}), "wireplumber");
}

void MediaSession::endPipeWire() {
  sessionManager_.reset();
  pipeWire_.reset();
  std::filesystem::remove(folder() + "/pipewire-0");
}

std::string MediaSession::startCompositor() {
  compositor_ = start(asUser({"mutter", "--headless", "--virtual-monitor", "1280x800",
                              "--wayland-display", waylandName}),
                      "mutter");
  const bool started = eventually(
      [&] {
        return !compositor_->isRunning() ||
               (std::filesystem::exists(folder() + '/' + waylandName) && desktop().size() == 3);
      },
      most);
  return started && compositor_->isRunning() ? "" : readFile(folder() + "/mutter.errors") + '.';
}

Variables MediaSession::desktop() const {
  Variables variables{{"WAYLAND_DISPLAY", waylandName}};
  const std::string said = readFile(output("mutter")) + readFile(folder() + "/mutter.errors");
  const std::string words = "public X11 display ";
  const std::size_t at = said.find(words);
  if (at == std::string::npos) return variables;
  const std::size_t start = at + words.size();
  variables["DISPLAY"] = said.substr(start, said.find(',', start) - start);
  for (const auto& file : std::filesystem::directory_iterator(folder())) {
    const std::string path = file.path().string();
    if (path.find("/.mutter-Xwaylandauth") != std::string::npos) variables["XAUTHORITY"] = path;
  }
  return variables;
}

void MediaSession::startClient(const std::vector<std::string>& command) {
  client_ = start(asUser(command), "client", desktop());
}

void MediaSession::startPortal() {
  endPortal();
  // While the bus still gives the portal's name to the one before, a new one ends at once.
  await("The portal", [&] {
    if (portal_ == nullptr || !portal_->isRunning()) {
      portal_ = start({TINTORA_STAND_IN_PORTAL, folder() + "/behaviour"}, "portal");
    }
    return portalCalls().starts_with("ready");
  });
}

void MediaSession::setBehaviour(const std::map<std::string, std::string>& values) {
  for (const auto& [name, value] : values) behaviour_[name] = value;
  std::string text;
  for (const auto& [name, value] : behaviour_) text += name + '=' + value + '\n';
  writeFile(folder() + "/behaviour.new", text);
  std::filesystem::rename(folder() + "/behaviour.new", folder() + "/behaviour");
}

std::string MediaSession::portalCalls() const {
  return readFile(output("portal"));
}

void MediaSession::closePortalSessions() const {
  portal_->signal(SIGUSR1);
}

void MediaSession::startSource() {
  const std::string commands = folder() + "/commands";
  std::filesystem::remove(commands);
  if (mkfifo(commands.c_str(), 0600) != 0) throw std::runtime_error("No pipe could be made.");
  source_ = start({TINTORA_FRAME_SOURCE, commands}, "source");
  const std::string line = "node ";
  await("The source of frames", [&] { return readFile(output("source")).ends_with("\n"); });
  const std::string text = readFile(output("source"));
  setBehaviour(
      {{"answer", "grant"}, {"node", text.substr(line.size(), text.find('\n') - line.size())}});
}

void MediaSession::send(const std::string& command) const {
  const std::string line = command + '\n';
  // Does not wait for a reader that has ended.
  int pipe = -1;
  eventually([&] {
    pipe = open((folder() + "/commands").c_str(), O_WRONLY | O_CLOEXEC | O_NONBLOCK);
    return pipe >= 0;
  });
  const ssize_t written = write(pipe, line.data(), line.size());
  close(pipe);
  if (written != static_cast<ssize_t>(line.size())) throw std::runtime_error("No command is read.");
}

std::string MediaSession::sourceOutput() const {
  return readFile(output("source"));
}

std::vector<std::string> MediaSession::asUser(std::vector<std::string> command) const {
  if (!anotherUser_) return command;
  const std::string id = std::to_string(nobody);
  const std::vector<std::string> prefix{"setpriv", "--reuid=" + id, "--regid=" + id,
                                        "--clear-groups"};
  command.insert(command.begin(), prefix.begin(), prefix.end());
  return command;
}

std::unique_ptr<Process> MediaSession::start(const std::vector<std::string>& command,
                                             const std::string& name,
                                             const Variables& besides) const {
  Launch launch{.command = command,
                .environment = variables(),
                .output = output(name),
                .errors = folder() + '/' + name + ".errors"};
  launch.environment["DISPLAY"] = std::nullopt;
  launch.environment["WAYLAND_DISPLAY"] = std::nullopt;
  for (const auto& [variable, value] : besides) launch.environment[variable] = value;
  std::filesystem::remove(launch.output);
  return std::make_unique<Process>(launch);
}

std::string MediaSession::output(const std::string& name) const {
  return folder() + '/' + name + ".output";
}

}  // namespace tintora::mirror_test
