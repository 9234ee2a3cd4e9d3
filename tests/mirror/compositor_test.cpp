// The real program in a real Wayland session: a compositor with Xwayland records a Wayland
// program's window or its monitor.
#include <cstdlib>
#include <filesystem>

#include "mirror_run.h"

namespace tintora::mirror_test {
namespace {

using desktop_test::readFile;
using desktop_test::XClient;

constexpr std::array<std::uint32_t, 5> stripes{0xE04020, 0x20C040, 0x3060F0, 0xE0E010, 0x808890};

class MirrorCompositor : public testing::Test {
 protected:
  void SetUp() override {
    session_.startPipeWire();
    const std::string obstacle = session_.startCompositor();
    if (!obstacle.empty()) GTEST_SKIP() << "mutter does not start here: " << obstacle;
    desktop_ = session_.desktop();
    setenv("XAUTHORITY", desktop_["XAUTHORITY"]->c_str(), 1);
    x_ = std::make_unique<XClient>(*desktop_["DISPLAY"]);
  }
  void TearDown() override {
    program_.reset();
    x_.reset();
    unsetenv("XAUTHORITY");
  }

  // Starts a terminal that shows nothing but stripes of colour.
  void startTerminal() {
    std::string text = "printf '\\033[?25l";
    for (const std::uint32_t colour : stripes) {
      char stripe[80];
      std::snprintf(stripe, sizeof stripe, "\\033[48;2;%u;%u;%um\\033[K\\n\\033[K\\n\\033[K\\n",
                    colour >> 16, colour >> 8 & 0xFF, colour & 0xFF);
      text += stripe;
    }
    text += "'; touch " + session_.folder() + "/drawn; sleep 600";
    // The user of the session may not be allowed into the folder of the tests.
    session_.startClient({"foot", "--config=/dev/null", "--working-directory=" + session_.folder(),
                          "-o", "csd.preferred=none", "-o", "pad=0x0", "-o",
                          "initial-window-size-pixels=500x400", "sh", "-c", text});
    ASSERT_TRUE(
        eventually([&] { return std::filesystem::exists(session_.folder() + "/drawn"); }, most))
        << readFile(session_.folder() + "/client.errors");
  }

  void startProgram(const std::string& record) {
    session_.setBehaviour({{"record", record}, {"answer", "mutter"}});
    session_.startPortal();
    ASSERT_TRUE(eventually(
        [&] { return session_.portalCalls().find("recorded") != std::string::npos; }, most))
        << session_.portalCalls();
    desktop_test::Launch launch{.command = {desktop_test::programPath},
                                .environment = session_.variables(),
                                .errors = session_.folder() + "/program.errors"};
    for (const auto& [name, value] : desktop_) launch.environment[name] = value;
    launch.environment["XDG_CONFIG_HOME"] = session_.folder() + "/config";
    desktop_test::writeFile(session_.folder() + "/config/tintora/settings.ini",
                            "[General]\nSelected=5\nColorSpace=0\n");
    program_ = std::make_unique<desktop_test::Process>(launch);
  }

  // Returns the program's main window, or none. Searches by title, because Xwayland's root does not
  // show the contents of its windows.
  xcb_window_t main() const {
    const auto search = [&](const auto& self, xcb_window_t window, int depth) -> xcb_window_t {
      for (const xcb_window_t child : x_->children(window)) {
        if (x_->text(child, "_NET_WM_NAME").starts_with("Invert")) return child;
        const xcb_window_t found = depth > 0 ? self(self, child, depth - 1) : XCB_NONE;
        if (found != XCB_NONE) return found;
      }
      return XCB_NONE;
    };
    return search(search, x_->root(), 1);
  }

  Picture viewed() const {
    const xcb_window_t window = main();
    if (window == XCB_NONE) return {};
    const Area area = x_->areaOf(window);
    return x_->read(window, {0, 0, area.width, area.height});
  }

  // Returns true if a column of the view contains all stripes, inverted, from top to bottom.
  static bool holdsStripes(const Picture& picture) {
    for (int x = 0; x < picture.width; x += 10) {
      std::size_t next = 0;
      int rows = 0;
      for (int y = 0; y < picture.height && next < stripes.size(); ++y) {
        const std::uint32_t wanted = 0xFFFFFF - stripes[next];
        rows = (picture.at(x, y) & 0xFFFFFF) == wanted ? rows + 1 : 0;
        if (rows == 30) ++next;
      }
      if (next == stripes.size()) return true;
    }
    return false;
  }

  MediaSession session_{MediaSession::User::Ordinary};
  Variables desktop_;
  std::unique_ptr<XClient> x_;
  std::unique_ptr<desktop_test::Process> program_;
};

// The stream's frames are as large as the monitor; the crop says which part is the window.
TEST_F(MirrorCompositor, AWaylandWindowIsShown) {
  startTerminal();
  startProgram("window");
  Picture picture;
  EXPECT_TRUE(eventually(
      [&] {
        picture = viewed();
        return picture.width == 500 && picture.height == 400 && holdsStripes(picture);
      },
      most))
      << picture.width << "x" << picture.height << ' '
      << readFile(session_.folder() + "/program.errors");
  if (const char* const folder = std::getenv("TINTORA_PICTURES")) {
    savePicture(picture, std::string(folder) + "/mirror-mutter-window.png");
  }
}

TEST_F(MirrorCompositor, AMonitorIsShown) {
  startTerminal();
  startProgram("monitor");
  Picture picture;
  EXPECT_TRUE(eventually(
      [&] {
        picture = viewed();
        return picture.width > 600 && picture.width <= 1280 && picture.height <= 800;
      },
      most))
      << picture.width << "x" << picture.height << ' '
      << readFile(session_.folder() + "/program.errors");
  // The program's own window is on the monitor too, and covers a part of the terminal.
  EXPECT_NEAR(picture.width * 800.0, picture.height * 1280.0, 1280);
}

}  // namespace
}  // namespace tintora::mirror_test
