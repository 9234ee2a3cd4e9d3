// Start-up: what the program prints, and what it requires.
#include <array>
#include <csignal>
#include <filesystem>

#include "program_run.h"
#include "x_resources.h"

namespace tintora::desktop_test {
namespace {

class Start : public ProgramTest {
 protected:
  struct Outcome {
    std::optional<int> result;
    std::string output;
    std::string errors;
  };
  // Checks the view while windows are drawn and while its size and the effect change.
  void expectRightView() {
    storeValues({{"Selected", 5}, {"ColorSpace", 0}});
    start();
    Sheet& sheet = scene().addNoise({300, 200, 900, 500}, 1);
    EXPECT_TRUE(viewShows(expected::inverted()));
    scene().draw(sheet, noise(111, 99, 2), 201, 153);
    EXPECT_TRUE(viewShows(expected::inverted()));
    for (const int width : {1111, 317}) {
      x().resize(main(), width, 600);
      EXPECT_TRUE(eventually([&] { return view().width == width; }));
      EXPECT_TRUE(viewShows(expected::inverted()));
    }
    press(XK_g);
    EXPECT_TRUE(viewShows(expected::greyscale()));
    end();
  }
  // Runs a start that opens no window.
  Outcome run(const Launch& launch) const {
    Process process(launch);
    const auto result = process.result(2 * conditionTimeout);
    return {result, readFile(launch.output), readFile(launch.errors)};
  }
  static void expectOneLine(const std::string& text, const std::string& word) {
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1) << text;
    EXPECT_TRUE(text.starts_with("tintora: ")) << text;
    EXPECT_NE(text.find(word), std::string::npos) << text;
  }
  // A user who started the program by a click sees no terminal.
  void expectRefusalInAWindow(const std::string& word) {
    const Launch refused = launch();
    Process process(refused);
    xcb_window_t window = XCB_NONE;
    ASSERT_TRUE(eventually([&] {
      for (const xcb_window_t child : x().children(x().root())) {
        if (x().isShown(child) && x().text(child, "_NET_WM_NAME") == "Tintora") window = child;
      }
      return window != XCB_NONE;
    })) << readFile(refused.errors);
    saveScreen("refusal", x().areaOf(window));
    EXPECT_TRUE(process.isRunning());
    xcb_client_message_event_t close{};
    close.response_type = XCB_CLIENT_MESSAGE;
    close.format = 32;
    close.window = window;
    close.type = x().atom("WM_PROTOCOLS");
    close.data.data32[0] = x().atom("WM_DELETE_WINDOW");
    xcb_send_event(x().connection(), 0, window, XCB_EVENT_MASK_NO_EVENT,
                   reinterpret_cast<const char*>(&close));
    x().sync();
    EXPECT_EQ(process.result(2 * conditionTimeout), 1);
    expectOneLine(readFile(refused.errors), word);
  }
  void expectRefusal(const Launch& launch, const std::string& word) const {
    const Outcome outcome = run(launch);
    EXPECT_EQ(outcome.result, 1);
    EXPECT_EQ(outcome.output, "");
    expectOneLine(outcome.errors, word);
  }
};

TEST_F(Start, HelpIsTold) {
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"--help"}, {"-h"}, {"-st", "--help"}}) {
    const Outcome outcome = run(launch(arguments));
    EXPECT_EQ(outcome.result, 0);
    EXPECT_TRUE(outcome.output.starts_with("Usage: tintora"));
    EXPECT_EQ(outcome.errors, "");
  }
}

TEST_F(Start, TheVersionIsTold) {
  const Outcome outcome = run(launch({"--version"}));
  EXPECT_EQ(outcome.result, 0);
  EXPECT_EQ(outcome.output, "tintora 1.1.4\n");
  EXPECT_EQ(outcome.errors, "");
}

TEST_F(Start, HelpAndVersionNeedNoDisplay) {
  for (const char* const argument : {"--help", "--version"}) {
    Launch without = launch({argument});
    without.environment["DISPLAY"] = std::nullopt;
    EXPECT_EQ(run(without).result, 0);
  }
}

TEST_F(Start, WithoutADisplayItSaysSo) {
  Launch without = launch();
  without.environment["DISPLAY"] = std::nullopt;
  expectRefusal(without, "DISPLAY");
}

TEST_F(Start, OnADisplayThatIsNotThereItSaysSo) {
  for (const char* const name : {":7777", "nonsense", "", ":"}) {
    Launch wrong = launch();
    wrong.environment["DISPLAY"] = name;
    expectRefusal(wrong, name);
  }
}

TEST_F(Start, OnWaylandAloneItSaysSo) {
  Launch wayland = launch();
  wayland.environment["DISPLAY"] = std::nullopt;
  wayland.environment["WAYLAND_DISPLAY"] = "wayland-0";
  expectRefusal(wayland, "Wayland");
}

TEST_F(Start, WithoutTheCompositeExtensionItSaysSo) {
  useDisplay({"-extension", "Composite"}, Manager::None);
  expectRefusalInAWindow("Composite");
}

TEST_F(Start, WithoutTheDamageExtensionItSaysSo) {
  useDisplay({"-extension", "DAMAGE"}, Manager::None);
  expectRefusalInAWindow("Damage");
}

TEST_F(Start, OnAScreenOfAnotherDepthItSaysSo) {
  useDisplay({"-screen", "0", "800x600x16"}, Manager::None);
  expectRefusalInAWindow("24 bits");
}

TEST_F(Start, ADisplayNamedByAPlatformOfQtsIsNotTaken) {
  Launch odd = launch();
  odd.environment["QT_QPA_PLATFORM"] = "offscreen";
  odd.environment["DISPLAY"] = std::nullopt;
  expectRefusal(odd, "DISPLAY");
}

TEST_F(Start, WithoutSharedMemoryTheViewIsRightToo) {
  useDisplay({"-extension", "MIT-SHM"}, Manager::Openbox);
  expectRightView();
}

TEST_F(Start, WithoutSharedPixmapsTheViewIsRightToo) {
  preload(TINTORA_IMAGES_ONLY);
  expectRightView();
  EXPECT_TRUE(std::filesystem::exists(folder() + "/images-only"));
}

// Each change is a narrow part of the view, next to the last one.
TEST_F(Start, WithoutSharedPixmapsNarrowChangesAreSeen) {
  preload(TINTORA_IMAGES_ONLY);
  storeValues({{"Selected", 5}, {"ColorSpace", 0}});
  start();
  const Area area = view();
  Sheet& sheet = scene().addNoise({area.x + 10, area.y + 10, 400, 300}, 1);
  ASSERT_TRUE(viewShows(expected::inverted()));
  for (int i = 0; i < 8; ++i) {
    scene().draw(sheet, noise(17, 90, static_cast<std::uint32_t>(i + 2)), 20 + 40 * i, 15 * i);
    scene().draw(sheet, noise(60, 3, static_cast<std::uint32_t>(i + 12)), 300 - 30 * i, 200);
    EXPECT_TRUE(viewShows(expected::inverted())) << i;
  }
}

TEST_F(Start, AServerWithOtherMemoryGetsNone) {
  preload(TINTORA_FOREIGN_MEMORY);
  storeValues({{"Selected", 5}, {"ColorSpace", 0}});
  start();
  const Area area = view();
  scene().addNoise({area.x + 10, area.y + 10, 400, 300}, 1);
  EXPECT_TRUE(viewShows(expected::inverted()));
  end();
  EXPECT_EQ(readFile(folder() + "/foreign-memory"), "untouched");
}

// A window that is listed twice would be followed twice.
TEST_F(Start, AWindowThatComesAtTheStartIsListedOnce) {
  useDisplay({}, Manager::None);
  preload(TINTORA_EARLY_WINDOW);
  storeValues({{"Selected", 5}, {"ColorSpace", 0}});
  start();
  xcb_window_t early = XCB_NONE;
  for (const xcb_window_t window : x().children(x().root())) {
    if (x().text(window, "WM_NAME") == "early") early = window;
  }
  ASSERT_NE(early, xcb_window_t{XCB_NONE});
  x().restack(main(), XCB_STACK_MODE_ABOVE);
  const Picture background = x().read({1, 1, 1, 1});
  scene().setBackdrop(solid(1, 1, 0xE06010));
  ASSERT_TRUE(viewShows(expected::inverted(), x().areaOf(early)));
  const auto followed = [this] { return resourcesOf(x(), process().id())["DamageExt"]; };
  const std::uint32_t before = followed();
  xcb_destroy_window(x().connection(), early);
  x().sync();
  scene().setBackdrop(background);
  EXPECT_TRUE(viewShows(expected::inverted()));
  EXPECT_EQ(before - followed(), 1U);
}

TEST_F(Start, WithoutAWindowManagerItWorks) {
  useDisplay({}, Manager::None);
  storeValues({{"Selected", 5}});
  start();
  EXPECT_EQ(x().outerAreaOf(main()), (Area{390, 200, 500, 400}));
  Sheet& sheet = scene().addNoise({300, 150, 500, 300}, 1);
  EXPECT_TRUE(viewShows(expected::inverted()));
  press(XK_g);
  EXPECT_TRUE(titleBecomes("Greyscale"));
  EXPECT_TRUE(viewShows(expected::greyscale()));
  press(XK_Right);
  EXPECT_TRUE(eventually([this] { return view().x == 391; }));
  scene().draw(sheet, noise(100, 100, 2), 120, 130);
  EXPECT_TRUE(viewShows(expected::greyscale()));
  press(XK_h);
  EXPECT_TRUE(showing(control(), true));
  press(XK_h);
  EXPECT_TRUE(showing(control(), false));
  end();
}

TEST_F(Start, AWindowManagerThatComesLaterIsNoHarm) {
  useDisplay({}, Manager::None);
  storeValues({{"Selected", 4}, {"ColorSpace", 0}});
  start();
  Sheet& sheet = scene().addNoise({200, 100, 900, 600}, 1);
  ASSERT_TRUE(viewShows(expected::greyscale()));
  display().startManager();
  // The window manager lists the windows that it has finished framing.
  ASSERT_TRUE(eventually([this] {
    const std::string list = x().property(x().root(), x().atom("_NET_CLIENT_LIST"));
    return x().topLevelOf(main()) != main() && !list.empty();
  }));
  // The window manager may put the frame anywhere among unmanaged windows.
  x().restack(sheet.window, XCB_STACK_MODE_BELOW, x().topLevelOf(main()));
  EXPECT_TRUE(viewShows(expected::greyscale()));
  press(XK_i);
  EXPECT_TRUE(viewShows(expected::inverted()));
}

TEST_F(Start, AWindowManagerTooSlowToTellItsFramesMakesNoWindowLarger) {
  useDisplay({}, Manager::Openbox);
  const auto held = display().holdManager(std::chrono::milliseconds(800));
  start();
  const Area screen = x().screenArea();
  const Area bounds{screen.width / 2 - 250, screen.height / 2 - 200, 500, 400};
  EXPECT_TRUE(eventually([&] { return x().outerAreaOf(main()) == bounds; }))
      << testing::PrintToString(x().outerAreaOf(main()));
  press(XK_h);
  ASSERT_TRUE(showing(control(), true));
  const auto controlSize = [&] {
    const Area area = x().outerAreaOf(control());
    return std::array{area.width, area.height};
  };
  EXPECT_TRUE(eventually([&] {
    return controlSize() == std::array{400, 120};
  })) << testing::PrintToString(controlSize());
}

TEST_F(Start, ItsWindowsBearItsName) {
  start();
  for (const xcb_window_t window : {main(), control(), colourSpace()}) {
    EXPECT_EQ(x().text(window, "WM_CLASS"), std::string("tintora\0tintora\0", 16));
    EXPECT_NE(x().text(window, "_NET_WM_ICON"), "");
  }
  EXPECT_EQ(title(main()), " Simulation - Protanope 100% severity");
  EXPECT_EQ(x().text(main(), "WM_NAME"), " Simulation - Protanope 100% severity");
}

TEST_F(Start, TwoAtOnceLive) {
  storeValues({{"Selected", 4}, {"ColorSpace", 0}});
  start();
  scene().addNoise({1000, 280, 500, 400}, 1);
  ASSERT_TRUE(viewShows(expected::greyscale()));
  Process other(launch());
  // The second program opens at the same place, above or below the first.
  ASSERT_TRUE(eventually([&] {
    int framed = 0;
    for (const xcb_window_t window : x().numbers(x().root(), "_NET_CLIENT_LIST")) {
      framed += x().isShown(window) ? 1 : 0;
    }
    return framed == 2;
  }));
  settle();
  EXPECT_TRUE(other.isRunning());
  x().move(main(), 300, 300);
  ASSERT_TRUE(eventually([this] { return view().x < 400; }));
  scene().addNoise({280, 280, 540, 440}, 2);
  EXPECT_TRUE(viewShows(expected::greyscale()));
  other.signal(SIGTERM);
  EXPECT_EQ(other.result(), 0);
  EXPECT_TRUE(viewShows(expected::greyscale()));
  end();
}

TEST_F(Start, TheServersEndIsItsEnd) {
  useDisplay({}, Manager::Openbox);
  start();
  display().endServer();
  const auto result = process().result();
  ASSERT_TRUE(result.has_value()) << "The program did not end. It has used "
                                  << process().processorSeconds() << " s.";
}

// The program shows the view over a connection of its own.
TEST_F(Start, TheEndOfTheViewsConnectionIsSaidAndLosesNoSettings) {
  storeValues({{"Selected", 1}});
  start();
  press(XK_g);
  ASSERT_TRUE(titleBecomes("Greyscale"));
  xcb_kill_client(x().connection(), viewWindow());
  x().sync();
  EXPECT_EQ(process().result(2 * conditionTimeout), 1);
  EXPECT_EQ(readFile(errorsFile()), "tintora: the connection to the X server broke (error 1).\n");
  EXPECT_EQ(storedValues()["Selected"], 4);
}

TEST_F(Start, NothingIsTalkedAboutInANormalRun) {
  start();
  press(XK_r);
  press(XK_f);
  press(XK_f);
  end();
  EXPECT_EQ(readFile(errorsFile()), "");
  EXPECT_EQ(readFile(folder() + "/output"), "");
}

TEST_F(Start, WhereNothingHappensNothingRuns) {
  storeValues({{"Selected", 4}, {"ColorSpace", 0}});
  start();
  settle();
  // On a busy machine, Qt's work after the start may take a while.
  EXPECT_TRUE(eventually([&] {
    const double before = process().processorSeconds();
    std::this_thread::sleep_for(std::chrono::seconds(1));
    // Allows a few clock ticks for Qt's own activity.
    return process().processorSeconds() - before < 0.05;
  }));
}

}  // namespace
}  // namespace tintora::desktop_test
