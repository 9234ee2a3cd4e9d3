// Sends random input while other programs' windows come and go, for half an hour or as many minutes
// as TINTORA_SOAK_MINUTES says. Prints the program's resources at rest after 1, 10 and all minutes.
// TINTORA_SOAK_SEED chooses another sequence of input.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>

#include "program_run.h"
#include "x_resources.h"

namespace tintora::desktop_test {
namespace {

using Clock = std::chrono::steady_clock;

struct Holdings {
  long kilobytes = 0;
  long descriptors = 0;
  std::map<std::string, std::uint32_t> resources;
};

class Soak : public ProgramTest {
 protected:
  int pick(int count) { return std::uniform_int_distribution<int>(0, count - 1)(random_); }

  // Does one thing that a user or another program might do.
  void act() {
    switch (pick(12)) {
      case 0:
      case 1:
        return come();
      case 2:
        return go();
      case 3:
      case 4:
        return change();
      case 5:
        return turnWheel(pick(2) == 0, 1 + pick(4));
      case 6:
        return dragMouse(300 + pick(600), 200 + pick(400), pick(200) - 100, pick(160) - 80, 3);
      case 7:
        return openMenu();
      default:
        return pressSome();
    }
  }

  // Does once all that holds something from its first use on.
  void useAll() {
    x().moveMouse(view().x + 60, view().y + 60);
    x().click(3);
    settle();
    for (int i = 0; i < 4; ++i) {
      x().press(XK_Down);
      x().press(XK_Right);
    }
    settle();
    for (int i = 0; i < 4; ++i) x().press(XK_Escape);
    settle();
    press(XK_c, {XK_Control_L});
    for (int i = 0; i < 2; ++i) {
      press(XK_f);
      settle();
    }
  }

  // Closes everything temporary, and returns what the program then holds.
  Holdings rest() {
    while (scene().size() > 0) scene().remove(scene().at(0));
    for (int i = 0; i < 3; ++i) x().press(XK_Escape);
    settle();
    if (x().isShown(control())) press(view() == x().screenArea() ? XK_f : XK_h);
    EXPECT_TRUE(showing(control(), false));
    while (x().isShown(colourSpace())) press(XK_w);
    // The title that confirms a copy lasts three seconds.
    std::this_thread::sleep_for(std::chrono::seconds(4));
    settle();
    // While the main window is shown, the view holds pixmaps of the windows beneath it, and which
    // windows of the window manager are there depends on what happened.
    minimise();
    Holdings holdings{.kilobytes = process().memory(),
                      .resources = resourcesOf(x(), process().id())};
    const std::string folder = "/proc/" + std::to_string(process().id()) + "/fd";
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
      static_cast<void>(entry);
      ++holdings.descriptors;
    }
    x().activate(main());
    EXPECT_TRUE(showing(main(), true));
    settle();
    return holdings;
  }

  static void print(int minutes, const Holdings& holdings) {
    std::printf("after %2d min  %7ld kB  %3ld descriptors ", minutes, holdings.kilobytes,
                holdings.descriptors);
    for (const auto& [kind, count] : holdings.resources) {
      std::printf(" %s %u", kind.c_str(), count);
    }
    std::printf("\n");
    std::fflush(stdout);
  }

 private:
  void minimise() {
    constexpr std::uint32_t iconic = 3;
    x().tellManager(main(), "WM_CHANGE_STATE", {iconic});
    EXPECT_TRUE(showing(main(), false));
    settle();
  }
  void come() {
    constexpr std::size_t most = 12;
    if (scene().size() >= most) return go();
    const Area place{pick(1000), pick(600), 40 + pick(300), 40 + pick(250)};
    scene().add({.place = place,
                 .picture = noise(place.width, place.height, static_cast<std::uint32_t>(pick(99))),
                 .managed = pick(3) == 0});
    // Acts like a menu or tip.
    Sheet& sheet = scene().at(scene().size() - 1);
    if (!sheet.managed && pick(2) == 0) x().restack(sheet.window, XCB_STACK_MODE_ABOVE);
  }
  void go() {
    if (scene().size() > 0) scene().remove(someSheet());
  }
  void change() {
    if (scene().size() == 0) return;
    Sheet& sheet = someSheet();
    scene().takeEvents();
    switch (pick(3)) {
      case 0:
        return scene().move(sheet, pick(1000), pick(600));
      case 1:
        return scene().draw(sheet, noise(20, 20, static_cast<std::uint32_t>(pick(99))), pick(20),
                            pick(20));
      default:
        return scene().show(sheet, !sheet.shown);
    }
  }
  Sheet& someSheet() { return scene().at(static_cast<std::size_t>(pick(int(scene().size())))); }
  void openMenu() {
    x().moveMouse(view().x + 60, view().y + 60);
    x().click(3);
    settle();
    for (int i = pick(6); i > 0; --i) x().press(XK_Down);
    for (int i = 0; i < 3; ++i) x().press(XK_Escape);
    settle();
  }
  void pressSome() {
    static constexpr std::array<xcb_keysym_t, 28> keys{
        XK_Tab, XK_space, XK_Escape, XK_Prior, XK_Next, XK_Left, XK_Right, XK_Up,   XK_Down, XK_a,
        XK_b,   XK_d,     XK_e,      XK_f,     XK_g,    XK_h,    XK_i,     XK_k,    XK_l,    XK_n,
        XK_o,   XK_p,     XK_r,      XK_s,     XK_w,    XK_F1,   XK_plus,  XK_minus};
    const xcb_keysym_t key = keys[static_cast<std::size_t>(pick(int(keys.size())))];
    press(key);
    if (pick(20) == 0) press(XK_c, {XK_Control_L});
  }

  static unsigned seed() {
    const char* const given = std::getenv("TINTORA_SOAK_SEED");
    return given != nullptr ? static_cast<unsigned>(std::stoul(given)) : 1931;
  }

  std::mt19937 random_{seed()};
};

TEST_F(Soak, NothingGrows) {
  const char* const given = std::getenv("TINTORA_SOAK_MINUTES");
  const int minutes = given != nullptr ? std::stoi(given) : 30;
  useDisplay({}, Manager::Openbox);
  storeValues({{"Selected", 4}, {"View", 703}, {"ColorSpace", 1}});
  start();
  useAll();
  const auto begin = Clock::now();
  std::map<int, Holdings> marks;
  for (const int mark : {1, 10, minutes}) {
    if (mark > minutes || marks.contains(mark)) continue;
    while (Clock::now() - begin < std::chrono::minutes(mark)) {
      act();
      ASSERT_TRUE(process().isRunning())
          << "The result is " << *process().result() << ". " << readFile(errorsFile());
      if (HasFatalFailure()) return;
    }
    marks[mark] = rest();
    print(mark, marks[mark]);
  }
  const Holdings& first = marks.begin()->second;
  const Holdings& last = marks.rbegin()->second;
  constexpr long kilobytes = 16 * 1024;
  EXPECT_LT(last.kilobytes - first.kilobytes, kilobytes);
  EXPECT_EQ(last.descriptors, first.descriptors);
  EXPECT_EQ(last.resources, first.resources);
  scene().addNoise({view().x + 20, view().y + 20, 300, 200}, 1);
  end();
  EXPECT_EQ(storedValues().size(), 9U);
  EXPECT_EQ(readFile(errorsFile()), "");
}

}  // namespace
}  // namespace tintora::desktop_test
