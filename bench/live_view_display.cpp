#include "live_view_display.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
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
                                "-displayfd 3 -noreset -nolisten tcp -screen 0 " + std::to_string(width) +
                                    "x" + std::to_string(height) + "x24",
                                "", ends[1]);
  close(ends[1]);
  std::array<char, 16> number{};
  if (read(ends[0], number.data(), number.size() - 1) <= 0) {
    throw std::runtime_error("Xvfb does not start");
  }
  close(ends[0]);
  display_ = ":" + std::to_string(std::atoi(number.data()));
  connection_ = xcb_connect(display_.c_str(), nullptr);
  if (xcb_connection_has_error(connection_) != 0) throw std::runtime_error("no display");
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

xcb_window_t Screen::windowTitled(const std::string& beginning) const {
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
    if (text.starts_with(beginning)) return children[i];
  }
  return XCB_NONE;
}

void Screen::finish() const {
  owned(xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
}

}  // namespace tintora
