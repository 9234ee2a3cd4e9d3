// The conversation with the portal, and the messages when no picture comes.
#include <filesystem>

#include "mirror_run.h"

namespace tintora::mirror_test {
namespace {

using desktop_test::readFile;

class MirrorPortal : public MirrorTest {
 protected:
  std::string token() const { return readFile(configFolder() + "/tintora/mirror.token"); }

  // Checks that the user can choose again from the message in the view.
  void expectNewChoice(std::uint32_t seed) {
    const std::size_t before = sessionsAsked();
    press(XK_Return);
    EXPECT_TRUE(eventually([&] { return sessionsAsked() > before; }, most));
    showNoise(320, 240, seed);
  }

  // Checks that a window says why nothing can be shown, and that the program ends with it.
  void expectDialog(const std::string& text) {
    prepareMirror();
    desktop_test::Process program(launch());
    xcb_window_t dialog = XCB_NONE;
    const auto appears = [&] {
      for (const xcb_window_t window : x().numbers(x().root(), "_NET_CLIENT_LIST")) {
        if (title(window) == "Tintora" && x().isShown(window)) dialog = window;
      }
      return dialog != XCB_NONE;
    };
    ASSERT_TRUE(eventually(appears, most)) << readFile(errorsFile());
    EXPECT_TRUE(says(text));
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
  session().setBehaviour({{"version", "1"}, {"cursors", "1"}, {"types", "1"}, {"early", "1"}});
  startMirror();
  showNoise(320, 240, 1);
  EXPECT_NE(session().portalCalls().find("SelectSources multiple=false types=1\n"),
            std::string::npos);
  EXPECT_EQ(token(), "");
}

TEST_F(MirrorPortal, WhatDoesNotComeToAPictureIsSaid) {
  struct Case {
    std::map<std::string, std::string> behaviour;
    std::string text;
  };
  const std::vector<Case> cases{
      {{{"answer", "cancel"}}, "No window or screen was chosen."},
      {{{"answer", "refuse"}}, "The desktop did not share a window or screen."},
      {{{"answer", "fail"}}, "The desktop did not share a window or screen."},
      {{{"answer", "grant"}, {"node", "99999"}}, "The desktop has stopped sending the picture."}};
  const std::string node = session().node();
  std::uint32_t seed = 0;
  for (const auto& [behaviour, text] : cases) {
    session().setBehaviour(behaviour);
    startMirror();
    EXPECT_TRUE(says(text));
    session().setBehaviour({{"answer", "grant"}, {"node", node}});
    expectNewChoice(++seed);
    end();
  }
}

TEST_F(MirrorPortal, ItsEndWhileTheUserChoosesIsSaid) {
  session().setBehaviour({{"answer", "nothing"}});
  startMirror();
  ASSERT_TRUE(
      eventually([] { return session().portalCalls().find("Start") != std::string::npos; }));
  session().endPortal();
  EXPECT_TRUE(says("The desktop did not share a window or screen."));
}

TEST_F(MirrorPortal, AWindowThatIsClosedIsSaid) {
  startMirror();
  showNoise(320, 240, 1);
  session().closePortalSessions();
  EXPECT_TRUE(says("The window or screen is shared no longer"));
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
  EXPECT_TRUE(says("The desktop has stopped sending the picture."));
  session().startSource();
  expectNewChoice(2);
}

TEST_F(MirrorPortal, APipeWireThatIsRestartedIsSaid) {
  startMirror();
  showNoise(320, 240, 1);
  session().endPipeWire();
  EXPECT_TRUE(says("PipeWire, which brings the picture, was ended or restarted."));
  session().startPipeWire();
  session().startSource();
  expectNewChoice(2);
}

TEST_F(MirrorPortal, WithoutOneADialogSaysSo) {
  session().endPortal();
  expectDialog("This desktop offers no portal");
}

TEST_F(MirrorPortal, WithoutScreenCastsADialogSaysSo) {
  session().setBehaviour({{"types", "0"}});
  expectDialog("This desktop offers no portal");
}

TEST_F(MirrorPortal, WithoutPipeWireADialogSaysSo) {
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
