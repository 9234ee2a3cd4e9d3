// Two monitors side by side or one above the other, and monitors that change during the run.
#include <array>
#include <utility>

#include "program_run.h"

namespace tintora::desktop_test {
namespace {

struct Monitors {
  const char* name;  // where the primary monitor is
  const char* screen;
  Area primary;
  Area other;
};

void PrintTo(const Monitors& monitors, std::ostream* out) {
  *out << monitors.name;
}

class MonitorTest : public ProgramTest {
 protected:
  // The name is the one that xrandr shows. The server's first output belongs to the primary
  // monitor.
  void setMonitor(const std::string& name, const Area& area, const std::string& output) {
    const auto side = [](int pixels) {
      constexpr int pixelsPerMillimetre = 4;
      return std::to_string(pixels) + "/" + std::to_string(pixels / pixelsPerMillimetre);
    };
    const std::string geometry = side(area.width) + "x" + side(area.height) + "+" +
                                 std::to_string(area.x) + "+" + std::to_string(area.y);
    runXrandr({"--setmonitor", name, geometry, output});
  }
  void deleteMonitor(const std::string& name) { runXrandr({"--delmonitor", name}); }
  void runXrandr(const std::vector<std::string>& arguments) {
    Launch launch{.command = {"xrandr"}, .environment = {{"DISPLAY", display().name()}}};
    launch.command.insert(launch.command.end(), arguments.begin(), arguments.end());
    Process xrandr(launch);
    ASSERT_EQ(xrandr.result(), 0);
  }
  void begin() {
    storeValues({{"Selected", 4}, {"ColorSpace", 0}});
    start();
    const Area screen = x().screenArea();
    scene().addNoise({0, 0, screen.width, screen.height}, 3);
  }
  Area outer() const { return x().outerAreaOf(main()); }
  // Moves the main window's client area to the corner of a place, and returns true once it is
  // there.
  bool moves(const Area& place) {
    x().move(main(), place.x, place.y);
    return eventually([&] {
      const Area client = x().areaOf(main());
      return client.x == place.x && client.y == place.y;
    });
  }
  testing::AssertionResult outerBecomes(const Area& area) const {
    if (eventually([&] { return outer() == area; })) return testing::AssertionSuccess();
    return testing::AssertionFailure()
           << testing::PrintToString(outer()) << " instead of " << testing::PrintToString(area);
  }
  testing::AssertionResult viewBecomes(const Area& area) const {
    if (eventually([&] { return view() == area; })) return testing::AssertionSuccess();
    return testing::AssertionFailure()
           << testing::PrintToString(view()) << " instead of " << testing::PrintToString(area);
  }
  static Area centredOn(const Area& monitor) {
    return {monitor.x + monitor.width / 2 - 250, monitor.y + monitor.height / 2 - 200, 500, 400};
  }
};

class TwoMonitors : public MonitorTest, public testing::WithParamInterface<Monitors> {
 protected:
  void SetUp() override {
    useDisplay({}, Manager::Openbox, GetParam().screen);
    setMonitor("*Primary", GetParam().primary, "screen");
    setMonitor("Other", GetParam().other, "none");
    begin();
  }
};

TEST_P(TwoMonitors, ItStartsInTheMiddleOfThePrimaryOne) {
  EXPECT_TRUE(outerBecomes(centredOn(GetParam().primary)));
  EXPECT_TRUE(viewShows(grey));
}

TEST_P(TwoMonitors, TheViewIsRightOnEitherAndAcrossBoth) {
  for (const Area& monitor : {GetParam().other, GetParam().primary, x().screenArea()}) {
    const Area place = centredOn(monitor);
    ASSERT_TRUE(moves(place));
    EXPECT_TRUE(viewShows(grey)) << testing::PrintToString(monitor);
  }
}

TEST_P(TwoMonitors, ADragFollowsTheMouse) {
  const Area before = outer();
  dragMouse(view().x + 100, view().y + 100, 33, -21);
  EXPECT_TRUE(outerBecomes({before.x + 33, before.y - 21, before.width, before.height}));
  press(XK_Right);
  EXPECT_TRUE(outerBecomes({before.x + 34, before.y - 21, before.width, before.height}));
  EXPECT_TRUE(viewShows(grey));
}

TEST_P(TwoMonitors, FullScreenFillsThePrimaryOne) {
  for (const Area& monitor : {GetParam().primary, GetParam().other}) {
    const Area place = centredOn(monitor);
    ASSERT_TRUE(moves(place));
    settle();
    const Area before = outer();
    press(XK_f);
    EXPECT_TRUE(viewBecomes(GetParam().primary));
    ASSERT_TRUE(showing(control(), true));
    const Area primary = GetParam().primary;
    EXPECT_TRUE(viewShows(grey, {primary.x, primary.y, primary.width, 200}));
    EXPECT_TRUE(viewShows(grey, {primary.x, primary.bottom() - 200, primary.width, 200}));
    const Area small{primary.x + primary.width / 2 - 200, primary.y + primary.height / 2 - 60, 400,
                     120};
    EXPECT_TRUE(eventually([&] { return x().outerAreaOf(control()) == small; }))
        << testing::PrintToString(x().outerAreaOf(control()));
    saveScreen(std::string("full_screen_") + GetParam().name, x().screenArea());
    press(XK_f);
    EXPECT_TRUE(outerBecomes(before));
    EXPECT_TRUE(viewShows(grey));
  }
}

TEST_P(TwoMonitors, TheMenuOpensAtThePointer) {
  x().moveMouse(view().x + 40, view().y + 30);
  settle();
  x().click(3);
  ASSERT_TRUE(eventually([this] { return openMenus().size() == 1; }));
  const Area menu = x().areaOf(openMenus()[0]);
  EXPECT_EQ(menu.x, view().x + 40);
  EXPECT_EQ(menu.y, view().y + 30);
}

INSTANTIATE_TEST_SUITE_P(
    Primary, TwoMonitors,
    testing::Values(Monitors{"Left", "2080x1000", {0, 0, 1280, 1000}, {1280, 0, 800, 1000}},
                    Monitors{"Right", "2080x1000", {800, 0, 1280, 1000}, {0, 0, 800, 1000}},
                    Monitors{"Above", "1280x1700", {0, 0, 1280, 900}, {0, 900, 1280, 800}},
                    Monitors{"Below", "1280x1700", {0, 800, 1280, 900}, {0, 0, 1280, 800}},
                    Monitors{"Shifted", "2080x1300", {800, 300, 1280, 1000}, {0, 0, 800, 1000}}),
    [](const auto& given) { return std::string(given.param.name); });

// Desktops set these scales for Qt's programs. The view must show pixels of the screen regardless.
TEST_F(MonitorTest, ScalesOfTheDesktopLeaveThePixelsAlone) {
  for (const char* const scale : {"1.5", "2"}) {
    for (const char* const name : {"QT_SCALE_FACTOR", "QT_SCREEN_SCALE_FACTORS"}) {
      setenv(name, scale, 1);
      setenv("QT_AUTO_SCREEN_SCALE_FACTOR", "1", 1);
      setenv("QT_ENABLE_HIGHDPI_SCALING", "1", 1);
      begin();
      unsetenv(name);
      unsetenv("QT_AUTO_SCREEN_SCALE_FACTOR");
      unsetenv("QT_ENABLE_HIGHDPI_SCALING");
      EXPECT_TRUE(outerBecomes(centredOn(x().screenArea()))) << name << scale;
      EXPECT_TRUE(viewShows(grey)) << name << scale;
      end();
    }
  }
}

// Sizes are pixels at 96 dpi, but the view shows what is beneath pixel for pixel.
TEST_F(MonitorTest, TheResolutionOfTheDesktopScalesWindowsAndNotTheView) {
  useDisplay({}, Manager::Openbox, "1600x1000");
  const std::array<std::pair<const char*, int>, 4> percents{
      {{"96", 100}, {"144", 150}, {"192", 200}, {"72", 100}}};
  for (const auto& row : percents) {
    const char* const resolution = row.first;
    const int percent = row.second;
    const std::string text =
        std::string("*background: blue\nXft.dpi:\t") + resolution + "\nXft.hinting: 1\n";
    xcb_change_property(x().connection(), XCB_PROP_MODE_REPLACE, x().root(),
                        x().atom("RESOURCE_MANAGER"), XCB_ATOM_STRING, 8,
                        static_cast<std::uint32_t>(text.size()), text.c_str());
    x().sync();
    begin();
    const Area screen = x().screenArea();
    const Area start{(screen.width - 5 * percent) / 2, (screen.height - 4 * percent) / 2,
                     5 * percent, 4 * percent};
    EXPECT_TRUE(outerBecomes(start)) << resolution;
    EXPECT_TRUE(viewShows(grey)) << resolution;

    press(XK_h);
    EXPECT_TRUE(eventually([&] {
      const Area control = x().outerAreaOf(this->control());
      return control.width == 4 * percent && control.height == 120 * percent / 100;
    })) << resolution;
    saveScreen(std::string("resolution_") + resolution, x().screenArea());
    end();
  }
}

TEST_F(MonitorTest, AMonitorThatComesAsThePrimaryOneIsFollowed) {
  useDisplay({}, Manager::Openbox, "2080x1000");
  begin();
  ASSERT_TRUE(outerBecomes(centredOn(x().screenArea())));
  setMonitor("*Primary", {800, 0, 1280, 1000}, "screen");
  setMonitor("Other", {0, 0, 800, 1000}, "none");
  settle();
  dragMouse(view().x + 100, view().y + 100, 60, 40);
  EXPECT_TRUE(viewShows(grey));
  press(XK_f);
  EXPECT_TRUE(viewBecomes({800, 0, 1280, 1000}));
}

TEST_F(MonitorTest, FullScreenFollowsThePrimaryOne) {
  useDisplay({}, Manager::Openbox, "2080x1000");
  setMonitor("*Primary", {0, 0, 1280, 1000}, "screen");
  begin();
  press(XK_f);
  ASSERT_TRUE(viewBecomes({0, 0, 1280, 1000}));
  deleteMonitor("Primary");
  setMonitor("*Primary", {0, 0, 1000, 700}, "screen");
  EXPECT_TRUE(viewBecomes({0, 0, 1000, 700}));
  deleteMonitor("Primary");
  setMonitor("*Primary", {600, 200, 1480, 800}, "screen");
  EXPECT_TRUE(viewBecomes({600, 200, 1480, 800}));
  EXPECT_TRUE(viewShows(grey, {600, 200, 1480, 150}));
}

}  // namespace
}  // namespace tintora::desktop_test
