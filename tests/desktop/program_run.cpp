#include "program_run.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <sstream>
#include <stdexcept>

namespace tintora::desktop_test {

std::string programPath;

namespace {

constexpr std::uint32_t backgroundColour = 0x5A8CC8;

struct Difference {
  int x;
  int y;
  std::uint32_t seen;
  Colour expected;
};

std::optional<Difference> firstDifference(const Picture& seen,
                                          const std::vector<Colour>& expected) {
  if (seen.pixels.empty()) return Difference{};
  for (int y = 0; y < seen.height; ++y) {
    for (int x = 0; x < seen.width; ++x) {
      const Colour& wanted =
          expected[static_cast<std::size_t>(y) * static_cast<std::size_t>(seen.width) +
                   static_cast<std::size_t>(x)];
      const Colour actual = colourOf(seen.at(x, y));
      for (std::size_t i = 0; i < 3; ++i) {
        if (std::abs(actual[i] - std::round(wanted[i])) > 1) {
          return Difference{x, y, seen.at(x, y), wanted};
        }
      }
    }
  }
  return std::nullopt;
}

// Returns true for a menu, which window managers do not manage.
bool isMenu(const XClient& x, xcb_window_t window) {
  const Received<xcb_get_window_attributes_reply_t> attributes(xcb_get_window_attributes_reply(
      x.connection(), xcb_get_window_attributes(x.connection(), window), nullptr));
  return attributes && attributes->override_redirect != 0;
}

}  // namespace

ProgramTest::~ProgramTest() = default;

void ProgramTest::SetUp() {
  display().checkServer();
  client_ = std::make_unique<XClient>(display().name());
  setBackground(backgroundColour);
  x().moveMouse(1, 1);
}

void ProgramTest::TearDown() {
  if (process_ && process_->isRunning()) {
    // Xvfb 21.1.7 crashes on a request to share memory if its sender is gone.
    process_->signal(SIGSTOP);
    display().waitForServer();
  }
  process_.reset();
  scene_.reset();
  if (!client_ || xcb_connection_has_error(x().connection()) != 0) return;
  xcb_delete_property(x().connection(), x().root(), x().atom("_XROOTPMAP_ID"));
  x().sync();
}

void ProgramTest::useDisplay(const std::vector<std::string>& serverOptions, Manager manager,
                             const std::string& size) {
  useDisplay(std::make_shared<XDisplay>(serverOptions, manager, size));
}

void ProgramTest::useDisplay(std::shared_ptr<XDisplay> display) {
  client_.reset();
  ownDisplay_ = std::move(display);
  ProgramTest::SetUp();
}

void ProgramTest::setBackground(std::uint32_t colour) {
  xcb_change_window_attributes(x().connection(), x().root(), XCB_CW_BACK_PIXEL, &colour);
  xcb_clear_area(x().connection(), 0, x().root(), 0, 0, 0, 0);
  x().sync();
}

void ProgramTest::storeValues(const StoredValues& values) {
  std::string text = "[General]\n";
  for (const auto& [name, value] : values) text += name + "=" + std::to_string(value) + "\n";
  writeFile(settingsFile(), text);
}

StoredValues ProgramTest::storedValues() const {
  StoredValues values;
  std::istringstream lines(readFile(settingsFile()));
  for (std::string line; std::getline(lines, line);) {
    const std::size_t sign = line.find('=');
    if (sign != std::string::npos) values[line.substr(0, sign)] = std::stoll(line.substr(sign + 1));
  }
  return values;
}

Launch ProgramTest::launch(const std::vector<std::string>& arguments) const {
  Launch launch{
      .command = {programPath},
      .environment = {{"DISPLAY", ownDisplay_ ? ownDisplay_->name() : sharedDisplay().name()},
                      {"HOME", folder()},
                      {"XDG_CONFIG_HOME", configFolder()},
                      {"XDG_RUNTIME_DIR", folder()},
                      {"WAYLAND_DISPLAY", std::nullopt},
                      {"SESSION_MANAGER", std::nullopt},
                      {"DBUS_SESSION_BUS_ADDRESS", std::nullopt}},
      .output = folder() + "/output",
      .errors = errorsFile()};
  for (const auto& [name, value] : variables_) launch.environment[name] = value;
  std::string libraries = preloaded_;
  if (const char* const library = std::getenv("TINTORA_PRELOAD")) {
    libraries += std::string(" ") + library;
  }
  if (!libraries.empty()) launch.environment["LD_PRELOAD"] = libraries;
  launch.command.insert(launch.command.end(), arguments.begin(), arguments.end());
  return launch;
}

void ProgramTest::start(const std::vector<std::string>& arguments) {
  process_ = std::make_unique<Process>(launch(arguments));
  const bool appeared = eventually([this] {
    windows_ = findWindows(false);
    return windows_.size() == 3 && x().isShown(main()) && !title(main()).starts_with("Help:");
  });
  // Throws, because the test cannot continue.
  if (!appeared) throw std::runtime_error("The program did not appear. " + readFile(errorsFile()));
  scene_ = std::make_unique<Scene>(display().name(), main());
  scene_->setBackdrop(solid(1, 1, backgroundColour));
  focus(main());
  // Presses a key now, because a server's first synthetic key changes the keyboard mapping.
  x().press(XK_Shift_L);
  settle();
}

void ProgramTest::end() {
  x().close(main());
  expectNormalEnd();
}

void ProgramTest::expectNormalEnd() {
  const auto result = process().result(2 * conditionTimeout);
  ASSERT_TRUE(result.has_value()) << "The program did not end.";
  const std::string errors = readFile(errorsFile());
  // LeakSanitizer crashes now and then on a thread that is just ending. It has then reported no
  // leak, and its exit status has taken the place of the program's.
  if (errors.find("Tracer caught signal") != std::string::npos &&
      errors.find("detected memory leaks") == std::string::npos) {
    return;
  }
  EXPECT_EQ(*result, 0) << errors;
}

std::vector<xcb_window_t> ProgramTest::findWindows(bool menus) const {
  std::vector<xcb_window_t> found;
  const auto search = [&](const auto& self, xcb_window_t window, int depth) -> void {
    for (const xcb_window_t child : x().children(window)) {
      const auto owner = x().numbers(child, "_NET_WM_PID");
      const bool own = owner == std::vector{static_cast<std::uint32_t>(process_->id())} &&
                       x().text(child, "WM_CLASS").starts_with("tintora");
      if (own && isMenu(x(), child) == menus && (!menus || x().isShown(child))) {
        found.push_back(child);
      }
      if (!own && depth > 1) self(self, child, depth - 1);
    }
  };
  // Some frames contain a second window around the program's.
  constexpr int deepest = 3;
  search(search, x().root(), menus ? 1 : deepest);
  // Sorts by the order of creation.
  std::ranges::sort(found);
  return found;
}

xcb_window_t ProgramTest::viewWindow() const {
  const auto children = x().children(main());
  return children.empty() ? xcb_window_t{XCB_NONE} : children.back();
}

testing::AssertionResult ProgramTest::titleBecomes(const std::string& wanted) const {
  if (eventually([&] { return title(main()) == wanted; })) return testing::AssertionSuccess();
  return testing::AssertionFailure()
         << "The title is \"" << title(main()) << "\", not \"" << wanted << "\".";
}

testing::AssertionResult ProgramTest::showing(xcb_window_t window, bool shown) const {
  if (eventually([&] { return x().isShown(window) == shown; })) return testing::AssertionSuccess();
  return testing::AssertionFailure() << "The window is " << (shown ? "hidden." : "shown.");
}

void ProgramTest::focus(xcb_window_t window) {
  xcb_set_input_focus(x().connection(), XCB_INPUT_FOCUS_POINTER_ROOT, window, XCB_CURRENT_TIME);
  EXPECT_TRUE(eventually([&] { return x().focus() == window; }));
}

void ProgramTest::press(xcb_keysym_t symbol, const std::vector<xcb_keysym_t>& holding) {
  pressIn(main(), symbol, holding);
}

void ProgramTest::pressIn(xcb_window_t window, xcb_keysym_t symbol,
                          const std::vector<xcb_keysym_t>& holding) {
  if (x().focus() != window) focus(window);
  x().press(symbol, holding);
  settle();
}

void ProgramTest::turnWheel(bool up, int times) {
  for (int i = 0; i < times; ++i) x().click(up ? 4 : 5);
}

void ProgramTest::dragMouse(int fromX, int fromY, int byX, int byY, int steps) {
  x().moveMouse(fromX, fromY);
  x().button(1, true);
  settle();
  for (int i = 1; i <= steps; ++i) {
    x().moveMouse(fromX + byX * i / steps, fromY + byY * i / steps);
    settle();
  }
  x().button(1, false);
  settle();
}

testing::AssertionResult ProgramTest::dragTitle(xcb_window_t window, int byX, int byY) {
  const Area before = x().outerAreaOf(window);
  const Area wanted{before.x + byX, before.y + byY, before.width, before.height};
  const int left = before.x + 120;
  const int top = before.y + 8;
  x().moveMouse(left, top);
  x().button(1, true);
  // Repeats the last steps, because the window manager takes the first of them as the beginning.
  const bool moved = eventually([&] {
    x().moveMouse(left + byX - 1, top + byY);
    x().moveMouse(left + byX, top + byY);
    return x().outerAreaOf(window) == wanted;
  });
  // Holds the button until the program knows of the move, because it asks who holds the window.
  settle();
  x().button(1, false);
  settle();
  if (moved) return testing::AssertionSuccess();
  return testing::AssertionFailure() << testing::PrintToString(x().outerAreaOf(window))
                                     << " instead of " << testing::PrintToString(wanted);
}

std::vector<xcb_window_t> ProgramTest::openMenus() const {
  return findWindows(true);
}

// Waits until the program has handled everything sent before. It answers a window manager's ping in
// its turn. The view is drawn and mouse events are handled at the end of a turn of the loop, so a
// second ping waits for the next turn.
void ProgramTest::settle() {
  const std::uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
  xcb_change_window_attributes(x().connection(), x().root(), XCB_CW_EVENT_MASK, &events);
  static std::uint32_t time = 1;
  for (int turn = 0; turn < 2; ++turn) {
    ++time;
    xcb_client_message_event_t ping{};
    ping.response_type = XCB_CLIENT_MESSAGE;
    ping.format = 32;
    ping.window = main();
    ping.type = x().atom("WM_PROTOCOLS");
    ping.data.data32[0] = x().atom("_NET_WM_PING");
    ping.data.data32[1] = time;
    ping.data.data32[2] = main();
    xcb_send_event(x().connection(), 0, main(), XCB_EVENT_MASK_NO_EVENT,
                   reinterpret_cast<const char*>(&ping));
    bool answered = false;
    ASSERT_TRUE(eventually([&] {
      x().sync();
      x().takeEvents([&](const xcb_generic_event_t& event) {
        const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
        answered |= (event.response_type & 0x7F) == XCB_CLIENT_MESSAGE &&
                    message.data.data32[0] == ping.data.data32[0] && message.data.data32[1] == time;
      });
      return answered;
    })) << "The program does not answer. "
        << readFile(errorsFile());
    ASSERT_TRUE(eventually([&] { return process().isWaiting(); }));
  }
}

testing::AssertionResult ProgramTest::viewShows(const ColourEffect& effect) const {
  return viewShows(effect, [this] { return view(); });
}

testing::AssertionResult ProgramTest::viewShows(const ColourEffect& effect,
                                                const Area& part) const {
  return viewShows(effect, [&part] { return part; });
}

// Reads the area each time, because the window may still be moving to where the window manager puts
// it.
testing::AssertionResult ProgramTest::viewShows(const ColourEffect& effect,
                                                const std::function<Area()>& part) const {
  Area area;
  std::vector<Colour> expected;
  std::optional<Difference> difference;
  const bool right = eventually([&] {
    scene_->takeEvents();
    const Area now = common(part(), x().screenArea());
    if (now != area) {
      area = now;
      expected = scene_->colours(area);
      for (Colour& colour : expected) colour = filtered(colour, effect);
    }
    if (expected.empty()) return false;
    difference = firstDifference(x().read(area), expected);
    return !difference;
  });
  if (right) return testing::AssertionSuccess();
  if (!difference) return testing::AssertionFailure() << "There are no pixels to compare.";
  char text[160];
  std::snprintf(text, sizeof text, "At (%d, %d) of the view: #%06X instead of (%.1f, %.1f, %.1f).",
                difference->x, difference->y, difference->seen & 0xFFFFFFU, difference->expected[0],
                difference->expected[1], difference->expected[2]);
  return testing::AssertionFailure() << text;
}

void ProgramTest::saveScreen(const std::string& name, const Area& area) const {
  const char* const folder = std::getenv("TINTORA_PICTURES");
  if (folder != nullptr) savePicture(x().read(area), std::string(folder) + "/" + name + ".png");
}

}  // namespace tintora::desktop_test
