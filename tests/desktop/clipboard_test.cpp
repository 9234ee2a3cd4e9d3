// The picture that the program puts on the clipboard, and the title that confirms it.
#include <chrono>

#include "clipboard_reader.h"
#include "menu_run.h"

namespace tintora::desktop_test {
namespace {

using Clock = std::chrono::steady_clock;

constexpr const char* copiedTitle = "Image Copied To Clipboard";

class Clipboard : public MenuTest {
 protected:
  void SetUp() override {
    ProgramTest::SetUp();
    begin();
  }
  void begin() {
    storeValues({{"Selected", 5}, {"ColorSpace", 0}});
    start();
    const Area area = view();
    // Fills the view, because compositing managers paint a background of their own.
    scene().addNoise({area.x - 20, area.y - 40, area.width + 40, area.height + 80}, 1);
    ASSERT_TRUE(viewShows(expected::inverted()));
    reader_ = std::make_unique<ClipboardReader>(display().name());
  }
  ClipboardReader& reader() { return *reader_; }
  void expectViewOnClipboard() {
    const Area area = view();
    const std::vector<Colour> beneath = scene().colours(area);
    const Picture copied = reader_->picture();
    ASSERT_EQ(copied.width, area.width);
    ASSERT_EQ(copied.height, area.height);
    for (std::size_t i = 0; i < beneath.size(); ++i) {
      const Colour expected = desktop_test::filtered(beneath[i], expected::inverted());
      const Colour actual = colourOf(copied.pixels[i]);
      for (std::size_t c = 0; c < 3; ++c) ASSERT_LE(std::abs(actual[c] - expected[c]), 1.0) << i;
    }
  }

 private:
  std::unique_ptr<ClipboardReader> reader_;
};

TEST_F(Clipboard, ControlCCopiesTheViewAndNothingElse) {
  press(XK_c, {XK_Control_L});
  EXPECT_TRUE(titleBecomes(copiedTitle));
  expectViewOnClipboard();
  // With Control, the key must not show the colour space window.
  EXPECT_FALSE(x().isShown(colourSpace()));
}

TEST_F(Clipboard, ControlODoesTheSame) {
  press(XK_o, {XK_Control_R});
  EXPECT_TRUE(titleBecomes(copiedTitle));
  expectViewOnClipboard();
}

TEST_F(Clipboard, WhatHasJustChangedIsInThePicture) {
  for (std::uint32_t seed = 2; seed < 6; ++seed) {
    const std::string before = reader().ask("TIMESTAMP");
    scene().draw(scene().at(0), noise(300, 200, seed), 30, 50);
    press(XK_c, {XK_Control_L});
    // Until the timestamp changes, the clipboard still offers the earlier copy.
    ASSERT_TRUE(eventually([&] { return reader().ask("TIMESTAMP") != before; }));
    expectViewOnClipboard();
  }
}

// Compositing managers that fade windows out still show the menu for a while after it has closed.
TEST_F(Clipboard, AMenuThatFadesOutIsNotInThePicture) {
  end();
  useDisplay({}, Manager::Openbox);
  Process compositor({.command = {"picom", "--config", "/dev/null", "--backend", "xrender", "-f"},
                      .environment = {{"DISPLAY", display().name()}}});
  const xcb_atom_t selection = x().atom("_NET_WM_CM_S0");
  ASSERT_TRUE(eventually([&] {
    const Received<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
        x().connection(), xcb_get_selection_owner(x().connection(), selection), nullptr));
    return reply && reply->owner != XCB_NONE;
  }));
  begin();
  choose({"View Options", "Copy"});
  ASSERT_TRUE(titleBecomes(copiedTitle));
  expectViewOnClipboard();
  end();
}

// Requests longer than the server accepts would break the connection.
TEST_F(Clipboard, WithoutSharedMemoryAViewLargerThanAnyRequestIsCopiedToo) {
  end();
  useDisplay({"-extension", "MIT-SHM", "-maxbigreqsize", "1"}, Manager::Openbox, "1600x1000");
  begin();
  x().resize(main(), 1500, 900);
  ASSERT_TRUE(eventually([&] { return view().width == 1500; }));
  ASSERT_TRUE(viewShows(expected::inverted()));
  constexpr int longest = 4 << 20;  // bytes
  ASSERT_GT(4 * view().width * view().height, longest);
  press(XK_c, {XK_Control_L});
  ASSERT_TRUE(titleBecomes(copiedTitle)) << readFile(errorsFile());
  expectViewOnClipboard();
  end();
}

TEST_F(Clipboard, TheTitleComesBackAfterThreeSeconds) {
  const auto begin = Clock::now();
  press(XK_c, {XK_Control_L});
  ASSERT_TRUE(titleBecomes(copiedTitle));
  ASSERT_TRUE(titleBecomes("Invert "));
  const auto taken = Clock::now() - begin;
  EXPECT_GT(taken, std::chrono::milliseconds(2900));
  // The limit is generous for busy machines.
  EXPECT_LT(taken, std::chrono::milliseconds(9000));
}

TEST_F(Clipboard, ASecondCopyBeginsTheThreeSecondsAnew) {
  press(XK_c, {XK_Control_L});
  ASSERT_TRUE(titleBecomes(copiedTitle));
  std::this_thread::sleep_for(std::chrono::milliseconds(1500));
  const auto begin = Clock::now();
  press(XK_c, {XK_Control_L});
  ASSERT_TRUE(titleBecomes("Invert "));
  EXPECT_GT(Clock::now() - begin, std::chrono::milliseconds(2900));
}

}  // namespace
}  // namespace tintora::desktop_test
