// The screen as a whole: wide ones, and compositing managers.
#include <csignal>

#include "program_run.h"

namespace tintora::desktop_test {
namespace {

class Screen : public ProgramTest {
 protected:
  void begin() {
    storeValues({{"Selected", 4}, {"ColorSpace", 0}});
    start();
    const Area screen = x().screenArea();
    scene().addNoise({0, 0, screen.width, screen.height}, 1);
    ASSERT_TRUE(viewShows(grey));
  }
  std::unique_ptr<Process> startCompositor(const std::vector<std::string>& command) {
    auto compositor =
        std::make_unique<Process>(Launch{.command = command,
                                         .environment = {{"DISPLAY", display().name()},
                                                         {"HOME", folder()},
                                                         {"XDG_CONFIG_HOME", folder() + "/none"},
                                                         {"XDG_RUNTIME_DIR", folder()}},
                                         .output = folder() + "/compositor",
                                         .errors = folder() + "/compositor_errors"});
    // A running compositing manager owns this selection.
    const xcb_atom_t name = x().atom("_NET_WM_CM_S0");
    EXPECT_TRUE(eventually([&] {
      const Received<xcb_get_selection_owner_reply_t> owner(xcb_get_selection_owner_reply(
          x().connection(), xcb_get_selection_owner(x().connection(), name), nullptr));
      return owner && owner->owner != XCB_NONE;
    })) << readFile(folder() + "/compositor_errors");
    return compositor;
  }
  void viewIsLive(std::uint32_t seed) {
    EXPECT_TRUE(viewShows(grey));
    const Area area = view();
    scene().draw(scene().at(0), noise(60, 40, seed), area.x + 30, area.y + 30);
    EXPECT_TRUE(viewShows(grey));
  }
  void compositorComesAndGoes(const std::vector<std::string>& command) {
    begin();
    for (std::uint32_t round = 0; round < 2; ++round) {
      const auto compositor = startCompositor(command);
      viewIsLive(10 + round);
      const int left = 200 + 100 * static_cast<int>(round);
      x().move(main(), left, 150);
      ASSERT_TRUE(eventually([&] { return view().x == left && view().y == 150; }));
      viewIsLive(20 + round);
      compositor->signal(SIGTERM);
      ASSERT_TRUE(compositor->result());
      viewIsLive(30 + round);
    }
    end();
  }
};

TEST_F(Screen, TheViewIsRightFarToTheRight) {
  begin();
  ASSERT_GT(x().screenArea().width, 2400);
  x().move(main(), 2000, 500);
  ASSERT_TRUE(eventually([this] { return view().x > 1920; }));
  viewIsLive(2);
}

TEST_F(Screen, PicomComesAndGoes) {
  useDisplay({}, Manager::Openbox);
  compositorComesAndGoes({"picom", "--backend", "xrender", "--config", "/dev/null"});
}

TEST_F(Screen, XcompmgrComesAndGoes) {
  useDisplay({}, Manager::Openbox);
  compositorComesAndGoes({"xcompmgr", "-n"});
}

}  // namespace
}  // namespace tintora::desktop_test
