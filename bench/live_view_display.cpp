#include "live_view_display.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <xcb/damage.h>
#include <xcb/xtest.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <vector>

namespace tintora {

namespace {

template <typename Reply>
std::unique_ptr<Reply, decltype(&std::free)> owned(Reply* reply) {
  return {reply, &std::free};
}

std::vector<std::string> words(const std::string& text) {
  std::istringstream stream(text);
  std::vector<std::string> result;
  for (std::string word; stream >> word;) result.push_back(word);
  return result;
}

pid_t start(const std::string& program, const std::string& arguments, const std::string& display,
            int displayPipe) {
  const pid_t id = fork();
  if (id != 0) return id;
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  const int nowhere = open("/dev/null", O_RDWR);
  dup2(nowhere, STDIN_FILENO);
  dup2(nowhere, STDOUT_FILENO);
  dup2(nowhere, STDERR_FILENO);
  if (displayPipe >= 0) dup2(displayPipe, 3);
  if (!display.empty()) setenv("DISPLAY", display.c_str(), 1);
  std::vector<std::string> given = words(arguments);
  given.insert(given.begin(), program);
  std::vector<char*> pointers;
  for (std::string& word : given) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  execvp(program.c_str(), pointers.data());
  _exit(127);
}

std::string readLine(int pipe) {
  std::string line;
  for (char next = 0; read(pipe, &next, 1) == 1 && next != '\n';) line += next;
  return line;
}

std::string statusValue(const std::string& path, const std::string& name) {
  std::ifstream file(path);
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with(name)) return line.substr(name.size());
  }
  return "0";
}

}  // namespace

Process::Process(const std::string& program, const std::string& arguments,
                 const std::string& display, int displayPipe)
    : started_(Clock::now()) {
  id_ = start(program, arguments, display, displayPipe);
}

Process::~Process() {
  kill(id_, SIGTERM);
  waitpid(id_, nullptr, 0);
}

double Process::processorSeconds() const {
  double nanoseconds = 0;
  for (const auto& task :
       std::filesystem::directory_iterator("/proc/" + std::to_string(id_) + "/task")) {
    std::ifstream file(task.path() / "schedstat");
    double onProcessor = 0;
    file >> onProcessor;
    nanoseconds += onProcessor;
  }
  return nanoseconds * 1e-9;
}

std::uint64_t Process::contextSwitches() const {
  std::uint64_t switches = 0;
  for (const auto& task :
       std::filesystem::directory_iterator("/proc/" + std::to_string(id_) + "/task")) {
    const std::string status = task.path() / "status";
    switches += std::stoull(statusValue(status, "voluntary_ctxt_switches:"));
    switches += std::stoull(statusValue(status, "nonvoluntary_ctxt_switches:"));
  }
  return switches;
}

double Process::residentMegabytes() const {
  return std::stod(statusValue("/proc/" + std::to_string(id_) + "/status", "VmRSS:")) / 1024;
}

Screen::Screen(int width, int height) : width_(width), height_(height) {
  std::array<int, 2> ends{};
  if (pipe(ends.data()) != 0) throw std::runtime_error("no pipe");
  server_ =
      std::make_unique<Process>("Xvfb",
                                "-displayfd 3 -noreset -nolisten tcp -screen 0 " +
                                    std::to_string(width) + "x" + std::to_string(height) + "x24",
                                "", ends[1]);
  close(ends[1]);
  display_ = ":" + readLine(ends[0]);
  close(ends[0]);
  connection_ = xcb_connect(display_.c_str(), nullptr);
  if (xcb_connection_has_error(connection_) != 0) {
    throw std::runtime_error("the display " + display_ + " cannot be opened");
  }
  screen_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
}

Screen::~Screen() {
  xcb_disconnect(connection_);
}

void Screen::pressKey(xcb_window_t window, std::uint8_t keycode) {
  xcb_set_input_focus(connection_, XCB_INPUT_FOCUS_PARENT, window, XCB_CURRENT_TIME);
  xcb_test_fake_input(connection_, XCB_KEY_PRESS, keycode, 0, XCB_NONE, 0, 0, 0);
  xcb_test_fake_input(connection_, XCB_KEY_RELEASE, keycode, 0, XCB_NONE, 0, 0, 0);
  finish();
}

std::uint32_t Screen::pixel(int x, int y) const {
  const auto reply = owned(xcb_get_image_reply(
      connection_,
      xcb_get_image(connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, root(), static_cast<std::int16_t>(x),
                    static_cast<std::int16_t>(y), 1, 1, ~0U),
      nullptr));
  std::uint32_t value = 0;
  if (reply) std::memcpy(&value, xcb_get_image_data(reply.get()), sizeof value);
  return value & 0xFFFFFFU;
}

xcb_window_t Screen::windowTitled(const std::string& wanted) const {
  const auto tree =
      owned(xcb_query_tree_reply(connection_, xcb_query_tree(connection_, root()), nullptr));
  if (!tree) return XCB_NONE;
  const xcb_window_t* const children = xcb_query_tree_children(tree.get());
  for (int i = 0; i < xcb_query_tree_children_length(tree.get()); ++i) {
    const auto title = owned(xcb_get_property_reply(
        connection_,
        xcb_get_property(connection_, 0, children[i], XCB_ATOM_WM_NAME, XCB_ATOM_ANY, 0, 64),
        nullptr));
    if (!title) continue;
    const std::string text(static_cast<const char*>(xcb_get_property_value(title.get())),
                           static_cast<std::size_t>(xcb_get_property_value_length(title.get())));
    if (text == wanted) return children[i];
  }
  return XCB_NONE;
}

void Screen::finish() const {
  owned(xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
}

DrawingWatch::DrawingWatch(const Screen& screen, xcb_window_t window)
    : connection_(screen.connection()),
      event_(static_cast<std::uint8_t>(
          xcb_get_extension_data(connection_, &xcb_damage_id)->first_event + XCB_DAMAGE_NOTIFY)) {
  xcb_discard_reply(connection_, xcb_damage_query_version(connection_, 1, 1).sequence);
  xcb_damage_create(connection_, xcb_generate_id(connection_), window,
                    XCB_DAMAGE_REPORT_LEVEL_RAW_RECTANGLES);
  screen.finish();
}

std::optional<xcb_rectangle_t> DrawingWatch::next(Clock::time_point until) {
  while (true) {
    const auto event = owned(xcb_poll_for_event(connection_));
    if (event && (event->response_type & 0x7F) == event_) {
      return reinterpret_cast<const xcb_damage_notify_event_t*>(event.get())->area;
    }
    if (event) continue;
    const auto rest =
        std::chrono::duration_cast<std::chrono::nanoseconds>(until - Clock::now()).count();
    if (rest <= 0) return std::nullopt;
    pollfd socket{xcb_get_file_descriptor(connection_), POLLIN, 0};
    const timespec time{rest / 1000000000, rest % 1000000000};
    ppoll(&socket, 1, &time, nullptr);
  }
}

SettingsFolder::SettingsFolder()
    : path_(std::filesystem::temp_directory_path() / "tintora-bench-XXXXXX") {
  if (mkdtemp(path_.data()) == nullptr) throw std::runtime_error("no folder for the settings");
  std::filesystem::create_directories(path_ + "/tintora");
  setenv("XDG_CONFIG_HOME", path_.c_str(), 1);
}

SettingsFolder::~SettingsFolder() {
  std::filesystem::remove_all(path_);
}

void SettingsFolder::write(const std::string& lines) const {
  std::ofstream(path_ + "/tintora/settings.ini") << "[General]\n" << lines;
}

}  // namespace tintora
