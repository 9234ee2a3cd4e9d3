// The conversation with the portal, and the messages when no picture comes.
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <vector>

#include "mirror_run.h"
#include "platform/linux/mirror_texts.h"

namespace tintora::mirror_test {
namespace {

using desktop_test::noise;
using desktop_test::readFile;
using desktop_test::solid;
namespace texts = platform::texts;

// Lets a process take only so many bytes more than it has.
void limitMemory(pid_t process, rlim_t more) {
  std::ifstream file("/proc/" + std::to_string(process) + "/statm");
  rlim_t pages = 0;
  file >> pages;
  const rlim_t bytes = pages * static_cast<rlim_t>(sysconf(_SC_PAGESIZE)) + more;
  const rlimit limit{.rlim_cur = bytes, .rlim_max = bytes};
  ASSERT_EQ(prlimit(process, RLIMIT_AS, &limit, nullptr), 0);
}

class MirrorPortal : public MirrorTest {
 protected:
  std::string token() const { return readFile(configFolder() + "/tintora/mirror.token"); }

  // Checks that the view says this, and that standard error has its beginning.
  void expectMessage(const std::string& beginning, const std::string& text) {
    EXPECT_TRUE(text.starts_with(beginning));
    EXPECT_TRUE(prints(beginning));
    EXPECT_TRUE(viewSays(text));
  }

  // Checks that the user can choose again from the message in the view.
  void expectNewChoice(std::uint32_t seed) {
    const std::size_t before = sessionsAsked();
    press(XK_Return);
    EXPECT_TRUE(eventually([&] { return sessionsAsked() > before; }, most));
    showNoise(320, 240, seed);
  }

  // Checks that a window says why nothing can be shown, and that the program ends with it.
  void expectDialog(const std::string& text, const Variables& variables = {}) {
    prepareMirror();
    Launch started = launch();
    for (const auto& [name, value] : variables) started.environment[name] = value;
    desktop_test::Process program(started);
    xcb_window_t dialog = XCB_NONE;
    const auto appears = [&] {
      for (const xcb_window_t window : x().numbers(x().root(), "_NET_CLIENT_LIST")) {
        if (title(window) == "Tintora" && x().isShown(window)) dialog = window;
      }
      return dialog != XCB_NONE;
    };
    ASSERT_TRUE(eventually(appears, most)) << readFile(errorsFile());
    EXPECT_TRUE(prints(text));
    const auto isAlone = [&] {
      return std::ranges::none_of(
          x().numbers(x().root(), "_NET_CLIENT_LIST"),
          [&](xcb_window_t window) { return window != dialog && x().isShown(window); });
    };
    EXPECT_TRUE(eventually(isAlone));
    saveScreen("mirror-dialog", x().screenArea());
    x().close(dialog);
    EXPECT_EQ(program.result(most), 1);
  }
};

TEST_F(MirrorPortal, ItIsAskedForAWindowOrScreenOnce) {
  startMirror();
  showNoise(320, 240, 1);
  char parent[32];
  std::snprintf(parent, sizeof parent, "%x", main());
  EXPECT_EQ(session().portalCalls(),
            "ready\nCreateSession\n"
            "SelectSources cursor_mode=2 multiple=false persist_mode=2 types=3\n"
            "Start parent=x11:" +
                std::string(parent) + "\nOpenPipeWireRemote\n");
  end();
  EXPECT_TRUE(eventually([] { return session().portalCalls().ends_with("\nClose\n"); }, most));
  EXPECT_EQ(readFile(errorsFile()), "");
}

TEST_F(MirrorPortal, TheChoiceIsRemembered) {
  startMirror();
  showNoise(320, 240, 1);
  EXPECT_EQ(token(), "token-1");
  using std::filesystem::perms;
  EXPECT_EQ(std::filesystem::status(configFolder() + "/tintora/mirror.token").permissions(),
            perms::owner_read | perms::owner_write);
  end();
  startMirror();
  showNoise(320, 240, 2);
  EXPECT_NE(session().portalCalls().find("restore_token=token-1"), std::string::npos);
  EXPECT_EQ(token(), "token-2");
  end();
  startMirror({"--choose"});
  showNoise(320, 240, 3);
  EXPECT_EQ(session().portalCalls().find("restore_token=token-2"), std::string::npos);
  EXPECT_EQ(token(), "token-3");
}

TEST_F(MirrorPortal, AnOldOneIsAskedForLess) {
  session().setBehaviour({{"version", "1"}, {"cursors", "1"}, {"types", "1"}, {"paths", "own"}});
  startMirror();
  showNoise(320, 240, 1);
  EXPECT_NE(session().portalCalls().find("SelectSources multiple=false types=1\n"),
            std::string::npos);
  EXPECT_EQ(token(), "");
}

TEST_F(MirrorPortal, ItMayAnswerBeforeItReplies) {
  std::uint32_t seed = 0;
  for (const char* const paths : {"", "own"}) {
    session().setBehaviour({{"early", "1"}, {"paths", paths}});
    startMirror();
    showNoise(320, 240, ++seed);
    end();
  }
}

TEST_F(MirrorPortal, WhatDoesNotComeToAPictureIsSaid) {
  struct Case {
    std::map<std::string, std::string> behaviour;
    std::string beginning;
    std::string text;
  };
  const std::vector<Case> cases{
      {{{"answer", "cancel"}}, "No window or screen was chosen.", texts::cancelled},
      {{{"answer", "refuse"}}, "The desktop did not share a window or screen.", texts::refused},
      {{{"answer", "fail"}}, "The desktop did not share a window or screen.", texts::refused},
      {{{"answer", "grant"}, {"node", "99999"}},
       "The desktop has stopped sending the picture.",
       texts::streamEnded}};
  const std::string node = session().node();
  std::uint32_t seed = 0;
  for (const auto& [behaviour, beginning, text] : cases) {
    session().setBehaviour(behaviour);
    startMirror();
    expectMessage(beginning, text);
    session().setBehaviour({{"answer", "grant"}, {"node", node}});
    expectNewChoice(++seed);
    end();
  }
}

TEST_F(MirrorPortal, NothingIsStartedAfterARefusal) {
  session().setBehaviour({{"select", "2"}});
  startMirror();
  expectMessage("The desktop did not share a window or screen.", texts::refused);
  EXPECT_EQ(session().portalCalls().find("Start"), std::string::npos);
}

TEST_F(MirrorPortal, ItsEndWhileTheUserChoosesIsSaid) {
  session().setBehaviour({{"answer", "nothing"}});
  startMirror();
  ASSERT_TRUE(
      eventually([] { return session().portalCalls().find("Start") != std::string::npos; }));
  EXPECT_TRUE(viewSays(texts::choosing));
  session().endPortal();
  expectMessage("The desktop did not share a window or screen.", texts::refused);
}

TEST_F(MirrorPortal, ItsEndBeforeTheStreamIsSaid) {
  session().setBehaviour({{"remote", "end"}});
  startMirror();
  expectMessage("The desktop did not share a window or screen.", texts::refused);
  session().setBehaviour({{"remote", ""}});
  session().startPortal();
  expectNewChoice(1);
}

TEST_F(MirrorPortal, ItsEndDoesNotEndAStream) {
  startMirror();
  showNoise(320, 240, 1);
  session().endPortal();
  settle();
  showNoise(300, 200, 2);
  EXPECT_EQ(readFile(errorsFile()), "");
}

TEST_F(MirrorPortal, AWindowThatIsClosedIsSaid) {
  startMirror();
  showNoise(320, 240, 1);
  session().closePortalSessions();
  expectMessage("The window or screen is shared no longer", texts::closed);
  settle();
  saveScreen("mirror-closed", x().outerAreaOf(main()));
  const std::size_t before = sessionsAsked();
  clickOnView();
  EXPECT_TRUE(eventually([&] { return sessionsAsked() > before; }, most));
  showNoise(320, 240, 2);
  end();
}

TEST_F(MirrorPortal, ASourceThatEndsIsSaid) {
  startMirror();
  showNoise(320, 240, 1);
  session().endSource();
  expectMessage("The desktop has stopped sending the picture.", texts::streamEnded);
  session().startSource();
  expectNewChoice(2);
}

TEST_F(MirrorPortal, APipeWireThatIsRestartedIsSaid) {
  startMirror();
  showNoise(320, 240, 1);
  session().endPipeWire();
  expectMessage("PipeWire, which brings the picture, was ended or restarted.", texts::pipeWireGone);
  session().startPipeWire();
  session().startSource();
  expectNewChoice(2);
  // The user need not choose again.
  EXPECT_NE(session().portalCalls().find("restore_token=token-1"), std::string::npos);
}

TEST_F(MirrorPortal, AStreamWithoutFramesIsSaidAndShownOnceItHasThem) {
  startMirror();
  EXPECT_TRUE(viewSays(texts::noFrame));
  EXPECT_TRUE(process().rests(std::chrono::seconds(2), most));
  showNoise(320, 240, 1);
  EXPECT_EQ(readFile(errorsFile()), "");
}

TEST_F(MirrorPortal, AFirstFrameThatGetsLostIsAskedForAgain) {
  startMirror();
  session().send("format BGRx 320 240 0 0 0 0 0 0");
  session().send("lost 1 1");
  EXPECT_TRUE(viewHas(noise(320, 240, 1), expected::greyscale()));
  EXPECT_EQ(readFile(errorsFile()), "");
}

// Its pictures are parts of larger frames, so that the program's own memory is what it lacks: more
// than the 64 MB that a thread may have in reserve.
TEST_F(MirrorPortal, AFrameTooLargeForTheMemoryIsSkipped) {
  startMirror();
  session().send("buffers 2");
  session().send("format BGRx 5000 4000 0 0 100 50 320 240");
  session().send("solid 4227327");
  ASSERT_TRUE(viewHas(solid(320, 240, 4227327), expected::greyscale()));
  limitMemory(process().id(), 20'000'000);
  session().send("format BGRx 5000 4000 0 0 0 0 5000 4000");
  session().send("solid 8421504");
  session().send("format BGRx 5000 4000 0 0 100 50 320 240");
  session().send("solid 65280");
  EXPECT_TRUE(viewHas(solid(320, 240, 65280), expected::greyscale()));
}

TEST_F(MirrorPortal, WithoutOneADialogSaysSo) {
  session().endPortal();
  expectDialog("This desktop offers no portal");
}

TEST_F(MirrorPortal, WithoutAMessageBusADialogSaysSo) {
  expectDialog("This desktop offers no portal",
               {{"DBUS_SESSION_BUS_ADDRESS", "unix:path=" + folder() + "/none"}});
}

TEST_F(MirrorPortal, WithoutScreenCastsADialogSaysSo) {
  session().setBehaviour({{"types", "0"}});
  expectDialog("This desktop offers no portal");
}

TEST_F(MirrorPortal, WithoutPipeWireADialogSaysSo) {
  expectDialog("PipeWire, which brings the picture", {{"PIPEWIRE_CONFIG_DIR", folder() + "/none"}});
  session().setBehaviour({{"remote", "none"}});
  expectDialog("PipeWire, which brings the picture");
}

TEST_F(MirrorPortal, TheOptionForX11ShowsWhatLiesBeneath) {
  storeValues({{"Selected", 5}, {"ColorSpace", 0}});
  startMirror({"--x11"});
  scene().addNoise({300, 200, 900, 500}, 1);
  EXPECT_TRUE(viewShows(expected::inverted()));
  EXPECT_EQ(sessionsAsked(), 0U);
}

}  // namespace
}  // namespace tintora::mirror_test
