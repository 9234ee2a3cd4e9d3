#include "x_display.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <stdexcept>
#include <thread>

#include "managers.h"
#include "picture.h"
#include "x_client.h"

namespace tintora::desktop_test {

namespace {

std::string readLine(int descriptor) {
  std::string line;
  for (char c = 0; read(descriptor, &c, 1) == 1 && c != '\n';) line += c;
  return line;
}

// Returns true if a new window appears on the screen.
bool showsWindows(const XClient& client) {
  xcb_connection_t* const x = client.connection();
  const xcb_window_t root = client.root();
  const Received<xcb_get_window_attributes_reply_t> attributes(
      xcb_get_window_attributes_reply(x, xcb_get_window_attributes(x, root), nullptr));
  if ((attributes->all_event_masks & XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT) == 0) return false;
  const xcb_window_t window = xcb_generate_id(x);
  xcb_create_window(x, XCB_COPY_FROM_PARENT, window, root, 0, 0, 50, 50, 0,
                    XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
  xcb_map_window(x, window);
  constexpr std::chrono::milliseconds most{500};
  const bool shown = eventually([&] { return client.isShown(window); }, most);
  xcb_destroy_window(x, window);
  client.sync();
  return shown;
}

// Returns true if a half translucent window is blended with the one beneath it. Both are gone from
// the screen then.
bool blendsWindows(const XClient& client) {
  constexpr std::uint32_t beneath = 0xF01030;
  constexpr std::uint32_t above = 0x30F010;
  constexpr std::uint32_t blended = 0x908020;
  xcb_connection_t* const x = client.connection();
  std::vector<xcb_window_t> windows;
  for (const std::uint32_t colour : {beneath, above}) {
    const std::vector<std::uint32_t> looks{colour, 1};
    windows.push_back(xcb_generate_id(x));
    xcb_create_window(x, XCB_COPY_FROM_PARENT, windows.back(), client.root(), 0, 0, 50, 50, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                      XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT, looks.data());
  }
  client.setNumbers(windows[1], "_NET_WM_WINDOW_OPACITY", XCB_ATOM_CARDINAL, {0x80000000U});
  for (const xcb_window_t window : windows) xcb_map_window(x, window);
  constexpr std::chrono::milliseconds most{500};
  const auto shows = [&](std::uint32_t colour) {
    const Colour seen = colourOf(client.read({25, 25, 1, 1}).at(0, 0));
    const Colour wanted = colourOf(colour);
    const auto isNear = [](double a, double b) { return std::abs(a - b) <= 2; };
    return std::ranges::equal(seen, wanted, isNear);
  };
  const bool blends = eventually([&] { return shows(blended); }, most);
  // In this order, so that what shows between is one of the colours too.
  for (const xcb_window_t window : {windows[1], windows[0]}) xcb_destroy_window(x, window);
  client.sync();
  const auto areGone = [&] { return !shows(blended) && !shows(above) && !shows(beneath); };
  return eventually(areGone, most) && blends;
}

std::unique_ptr<XDisplay> shared;

}  // namespace

XDisplay::XDisplay(const std::vector<std::string>& options, Manager manager,
                   const std::string& size, Compositor compositor) {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("No pipe could be made.");
  Launch launch{.command = {"Xvfb", "-displayfd", std::to_string(ends[1]), "-screen", "0",
                            size + "x24", "-nolisten", "tcp", "-noreset"},
                .errors = serverLog(),
                .inherited = ends[1]};
  launch.command.insert(launch.command.end(), options.begin(), options.end());
  server_ = std::make_unique<Process>(launch);
  close(ends[1]);
  const std::string number = readLine(ends[0]);
  close(ends[0]);
  if (number.empty()) throw std::runtime_error("Xvfb did not start.");
  name_ = ":" + number;
  if (manager != Manager::None) startManager(manager);
  if (compositor == Compositor::Picom) startCompositor();
}

void XDisplay::waitForServer() {
  eventually([this] { return !server_->isRunning() || server_->isWaiting(); });
}

void XDisplay::checkServer() {
  const std::optional<int> result = server_->result(std::chrono::milliseconds{0});
  if (!result) return;
  throw std::runtime_error("The X server ended with " + std::to_string(*result) + ":\n" +
                           readFile(serverLog()));
}

std::map<std::string, std::optional<std::string>> XDisplay::environment() const {
  return {{"DISPLAY", name_},
          {"HOME", folder_.path()},
          {"XDG_CONFIG_HOME", folder_.path() + "/none"},
          {"XDG_CACHE_HOME", folder_.path() + "/cache"},
          {"XDG_DATA_HOME", folder_.path() + "/data"},
          {"XDG_RUNTIME_DIR", folder_.path()},
          {"LC_ALL", "C"},
          {"WAYLAND_DISPLAY", std::nullopt},
          {"SESSION_MANAGER", std::nullopt},
          {"DBUS_SESSION_BUS_ADDRESS", std::nullopt}};
}

void XDisplay::startManager(Manager kind) {
  const ManagerCommand manager = commandOf(kind, folder_.path());
  manager_ =
      std::make_unique<Process>(Launch{.command = manager.command, .environment = environment()});
  // Waits for a window to appear. Window managers name themselves on the root window, and even
  // redirect its windows, before they handle windows.
  const XClient client(name_);
  const bool ready = eventually([&] { return showsWindows(client); }, 3 * conditionTimeout);
  if (!ready) throw std::runtime_error(manager.command[0] + " did not start.");
  if (manager.composites) waitForCompositor();
}

namespace {

std::future<void> hold(const Process& process, std::chrono::milliseconds duration) {
  process.signal(SIGSTOP);
  return std::async(std::launch::async, [&process, duration] {
    std::this_thread::sleep_for(duration);
    process.signal(SIGCONT);
  });
}

}  // namespace

std::future<void> XDisplay::holdManager(std::chrono::milliseconds duration) {
  return hold(*manager_, duration);
}

std::future<void> XDisplay::holdServer(std::chrono::milliseconds duration) {
  return hold(*server_, duration);
}

std::future<void> XDisplay::holdCompositor(std::chrono::milliseconds duration) {
  return hold(*compositor_, duration);
}

void XDisplay::startCompositor(const std::vector<std::string>& options) {
  Launch launch{.command = {"picom", "--config", "/dev/null", "--backend", "xrender"},
                .environment = environment()};
  launch.command.insert(launch.command.end(), options.begin(), options.end());
  compositor_ = std::make_unique<Process>(launch);
  waitForCompositor();
}

void XDisplay::endCompositor() {
  compositor_->signal(SIGTERM);
  compositor_->result();
  compositor_.reset();
}

void XDisplay::waitForCompositor() const {
  const XClient client(name_);
  if (!eventually([&] { return blendsWindows(client); }, 3 * conditionTimeout)) {
    throw std::runtime_error("The compositing manager did not start.");
  }
}

XDisplay& sharedDisplay() {
  if (!shared) shared = std::make_unique<XDisplay>();
  return *shared;
}

void endSharedDisplay() {
  shared.reset();
}

}  // namespace tintora::desktop_test
